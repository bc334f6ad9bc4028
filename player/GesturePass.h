// GesturePass - one evaluation of a player's gestures, and the layout of the
// result records it writes. For every active gesture in turn the pass
// measures the gesture and segment times and hands them to the player's
// pool, checks the segment the gesture waits in, writes the gesture's record
// and then moves its progress on. Records are packed little-endian 32-bit
// fields: finished, gesture index (8 bytes); then segment index, succeeded
// (16 bytes); then gesture time, segment time (24 bytes).
// Thread-safety: none; run by the thread that updates the player.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/Pelmora.h"
#include "gesture/GestureProgram.h"

namespace PelmoraLib {

class GestureTable;
class IdentifyValues;
class PlayerGestureInfo;

class GesturePass {
public:
    // The bytes of one record; 0 for a type that has no record.
    static uint64_t RecordSize(eReturnInfoType type);

    // `table` null checks no gesture. `pool` is the pool this pass's
    // processing found (null for none): the times go to its "GestureTime"
    // and "SegmentTime" values. `trace` checks each gesture with its
    // printout instead of through the program.
    GesturePass(GestureTable* table, const IdentifyValues* pool, int playerIndex, bool trace);

    // Checks every active gesture of `infos` and writes one record of
    // `recordSize` bytes per checked gesture at `records`, counting them in
    // `written`. True when a gesture finished.
    bool Run(std::vector<PlayerGestureInfo>& infos, uint64_t recordSize, char* records, uint64_t& written) const;

private:
    template <class Times, class Check>
    bool RunWith(const Times& times, const Check& check, std::vector<PlayerGestureInfo>& infos, uint64_t recordSize,
                 char* records, uint64_t& written) const;
    bool FindTimeStorage(const IdentifyValues* pool);

    GestureTable* m_Table;
    GestureProgram::View m_Program;
    int m_PlayerIndex;
    bool m_Trace;
    // Where the times go when found once for the whole pass; otherwise each
    // gesture looks them up and reports what it cannot find.
    bool m_TimesFound = false;
    int32_t* m_GestureTime = nullptr;
    int32_t* m_SegmentTime = nullptr;
};

}  // namespace PelmoraLib
