#include "player/GesturePass.h"

#include <cstdio>
#include <cstring>

#include "engine/Clock.h"
#include "gesture/GestureTable.h"
#include "player/PlayerGestureInfo.h"
#include "values/IdentifyValues.h"

namespace PelmoraLib {

namespace {

char* PutField(char* cursor, uint32_t value) {
    memcpy(cursor, &value, sizeof value);
    return cursor + sizeof value;
}

// A size fixed at compile time, so that the pass's loop decides nothing per
// record. Gesture time comes before segment time here, unlike in the
// progress record: that order is part of the record layout.
template <uint64_t Size>
char* WriteRecord(char* cursor, const PlayerGestureInfo& info, bool succeeded, bool finished) {
    cursor = PutField(cursor, finished ? 1u : 0u);
    cursor = PutField(cursor, info.m_GestureIndex);
    if (Size < 16) return cursor;
    cursor = PutField(cursor, info.m_SegmentIndex);
    cursor = PutField(cursor, succeeded ? 1u : 0u);
    if (Size < 24) return cursor;
    cursor = PutField(cursor, info.m_GestureTime);
    return PutField(cursor, info.m_SegmentTime);
}

// ---- How the times reach the pool.

// The storage found once for the pass; the clock's source is taken once too,
// each gesture still reading the clock itself.
struct FoundTimes {
    int32_t* gestureTime;
    int32_t* segmentTime;
    Clock::Reader clock;

    void Update(PlayerGestureInfo& info) const {
        info.MeasureTimes(clock.Now());
        info.PublishTimes(gestureTime, segmentTime);
    }
};

// Looked up gesture by gesture, with a message for what is missing.
struct LookedUpTimes {
    int playerIndex;

    void Update(PlayerGestureInfo& info) const { info.UpdateTime(playerIndex); }
};

// ---- How a gesture is checked.

struct ProgramCheck {
    GestureProgram::View program;

    Qualification::Result operator()(size_t gesture, size_t segment) const { return program.Check(gesture, segment); }
};

struct TracedCheck {
    GestureTable* table;

    Qualification::Result operator()(size_t gesture, size_t segment) const {
        return table->GestureAt(gesture)->DoCheckAndPrint(segment);
    }
};

// The policies and the program's addresses arrive as copies of their own, so
// that the compiler may keep them in registers while records are written.
template <uint64_t RecordSize, class Times, class Check>
bool CheckGestures(const Times times, const Check check, const GestureProgram::View program,
                   std::vector<PlayerGestureInfo>& infos, char* cursor, uint64_t& written) {
    bool anyFinished = false;
    uint64_t records = 0;
    for (PlayerGestureInfo& info : infos) {
        // The invalid index is beyond every program's gesture count.
        const size_t index = static_cast<size_t>(info.m_GestureIndex);
        if (!info.m_IsActive || index >= program.GestureCount()) continue;
        times.Update(info);
        const Qualification::Result result = check(index, info.m_SegmentIndex);
        // Most gestures wait in their segment: record, and nothing moves.
        if (result == Qualification::Failed) {
            cursor = WriteRecord<RecordSize>(cursor, info, false, false);
            ++records;
            continue;
        }
        if (static_cast<unsigned>(result) > Qualification::Succeed_Finish) {
            printf("Error Qualification Result: %d\n", static_cast<int>(result));
            continue;
        }
        // Otherwise the record, then the progress.
        const bool advances = result == Qualification::Succeed && info.m_SegmentIndex + 1ull < program.SegmentCount(index);
        const bool finished = result == Qualification::Succeed_Finish || (result == Qualification::Succeed && !advances);
        cursor = WriteRecord<RecordSize>(cursor, info, result == Qualification::Succeed || finished, finished);
        ++records;
        if (advances) {
            ++info.m_SegmentIndex;
            info.ResetSegmentTime();
            continue;
        }
        info.Reset();
        anyFinished = anyFinished || finished;
    }
    written = records;
    return anyFinished;
}

}  // namespace

uint64_t GesturePass::RecordSize(eReturnInfoType type) {
    switch (type) {
        case ReturnInfo8: return 8;
        case ReturnInfo16: return 16;
        case ReturnInfo24: return 24;
    }
    return 0;
}

GesturePass::GesturePass(GestureTable* table, const IdentifyValues* pool, int playerIndex, bool trace)
    : m_Table(table), m_PlayerIndex(playerIndex), m_Trace(trace) {
    // Without a table no gesture is checked; its program has one entry per
    // gesture of the table.
    if (table) m_Program = table->Program(pool).GetView();
    m_TimesFound = FindTimeStorage(pool);
}

// The storage of "GestureTime" and "SegmentTime" in `pool`, looked up the way
// each gesture's UpdateTime would but once. False when that lookup would
// print something (no pool, an index outside the pool): the gestures then
// take the printing route one by one.
bool GesturePass::FindTimeStorage(const IdentifyValues* pool) {
    if (!pool) return false;
    const size_t gestureIndex = static_cast<size_t>(static_cast<uint32_t>(PlayerGestureInfo::ms_GestureTimeIndex));
    const size_t segmentIndex = static_cast<size_t>(static_cast<uint32_t>(PlayerGestureInfo::ms_SegmentTimeIndex));
    if (gestureIndex >= pool->GetValueCount()) return false;
    BaseValue* gestureTime = pool->GetValue(gestureIndex);
    m_GestureTime = gestureTime ? gestureTime->GetValue().i : nullptr;
    m_SegmentTime = nullptr;
    if (!gestureTime) return true;
    if (segmentIndex >= pool->GetValueCount()) return false;
    BaseValue* segmentTime = pool->GetValue(segmentIndex);
    m_SegmentTime = segmentTime ? segmentTime->GetValue().i : nullptr;
    return true;
}

template <class Times, class Check>
bool GesturePass::RunWith(const Times& times, const Check& check, std::vector<PlayerGestureInfo>& infos,
                          uint64_t recordSize, char* records, uint64_t& written) const {
    switch (recordSize) {
        case 24: return CheckGestures<24>(times, check, m_Program, infos, records, written);
        case 16: return CheckGestures<16>(times, check, m_Program, infos, records, written);
        default: return CheckGestures<8>(times, check, m_Program, infos, records, written);
    }
}

bool GesturePass::Run(std::vector<PlayerGestureInfo>& infos, uint64_t recordSize, char* records,
                      uint64_t& written) const {
    // Without a gesture time neither time is published; without a segment
    // time, the gesture time alone.
    int32_t unread[2] = {0, 0};
    const FoundTimes found{m_GestureTime ? m_GestureTime : &unread[0], m_SegmentTime ? m_SegmentTime : &unread[1],
                           Clock::Reader()};
    const LookedUpTimes lookedUp{m_PlayerIndex};
    if (m_Trace) {
        const TracedCheck traced{m_Table};
        if (m_TimesFound) return RunWith(found, traced, infos, recordSize, records, written);
        return RunWith(lookedUp, traced, infos, recordSize, records, written);
    }
    const ProgramCheck program{m_Program};
    if (m_TimesFound) return RunWith(found, program, infos, recordSize, records, written);
    return RunWith(lookedUp, program, infos, recordSize, records, written);
}

}  // namespace PelmoraLib
