#include "tools/Replay.h"

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <thread>

#include "engine/Pelmora.h"
#include "gesture/GestureTable.h"
#include "tools/ConfigDocument.h"
#include "tools/FailureTracker.h"
#include "tools/LibrarySession.h"
#include "tools/ProgressBar.h"
#include "values/IdentifyValues.h"

namespace PelmoraTool {

namespace {

using PelmoraLib::BaseValue;

const std::chrono::seconds kWorkerTimeout(10);
const double kLongestWaitMs = 1e12;  // about 31 years

uint32_t ReadClock(void* clock) { return static_cast<std::atomic<uint32_t>*>(clock)->load(); }

// The library's clock wraps at 32 bits and only differences matter, so
// timestamps of any size map onto it.
uint32_t Ticks(double timeMs) { return static_cast<uint32_t>(static_cast<int64_t>(std::llround(timeMs))); }

// The recording is read twice, so it must be there for the second time.
void RefusePipe(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && S_ISFIFO(info.st_mode))
        throw std::runtime_error(path + ": a replay reads the recording twice, so it cannot come from a pipe");
}

bool SelectsAll(const std::vector<std::string>& names) {
    return names.empty() || (names.size() == 1 && names[0] == "all");
}

std::vector<std::vector<QualificationEntry>> Qualifications(const GestureEntry& gesture) {
    std::vector<std::vector<QualificationEntry>> segments;
    for (const SegmentEntry& segment : gesture.segments) segments.push_back(segment.qualifications);
    return segments;
}

// What each qualification of the lane compares, read from the player's pool.
std::vector<std::vector<OperandPair>> Operands(PelmoraLib::IdentifyValues& pool, const GestureLane& lane) {
    std::vector<std::vector<OperandPair>> segments;
    for (const std::vector<QualificationEntry>& segment : lane.qualifications) {
        segments.emplace_back();
        for (const QualificationEntry& q : segment)
            segments.back().push_back({Operand::Named(pool, q.value1), Operand::Named(pool, q.value2)});
    }
    return segments;
}

}  // namespace

Replay::Replay(const std::string& recordingPath, const ReplayOptions& options, EventSink sink)
    : m_Path(recordingPath), m_Options(options), m_Sink(std::move(sink)) {}

Timeline Replay::Run(const std::string& configPath) {
    RefusePipe(m_Path);
    RecordingReader scan(m_Path);
    m_Summary = scan.Summarise();
    m_Joints = scan.Joints();
    if (m_Summary.frames == 0) throw std::runtime_error(m_Path + ": the recording has no frames");
    const int players = static_cast<int>(m_Summary.players.size());
    LibrarySession session(players + (m_Options.worker ? 1 : 0), m_Joints, m_Options.worker);
    SetTimeSource(&ReadClock, &m_Clock);
    m_Clock = Ticks(m_Summary.firstMs);
    session.LoadAndCompile(configPath);
    ChooseGestures();
    m_Players.resize(m_Summary.players.size());
    for (int p = 0; p < players; ++p) m_Players[p].records.resize(std::max<uint64_t>(1, GetGestureNum(p)));
    if (m_Options.keepTimeline) PrepareTimeline(configPath);
    RecordingReader reader(m_Path);
    m_Start = std::chrono::steady_clock::now();
    if (m_Options.worker) {
        RunWorker(reader);
    } else {
        RunImmediate(reader);
    }
    for (PlayerTimeline& player : m_Timeline.players) player.EndRecording();
    return m_Timeline;
}

void Replay::ChooseGestures() {
    const uint32_t count = static_cast<uint32_t>(GetGestureNum(0));
    for (uint32_t g = 0; g < count; ++g) m_GestureNames.push_back(GetGestureName(0, g));
    m_LaneOf.assign(count, -1);
    if (SelectsAll(m_Options.gestures)) {
        for (uint32_t g = 0; g < count; ++g) m_Enabled.push_back(g);
    } else {
        for (const std::string& name : m_Options.gestures) m_Enabled.push_back(GestureNamed(name));
    }
    // The library would report "SegmentIndex Out of range!!" on every frame.
    PelmoraLib::GestureTable* table = PelmoraLib::Pelmora::Get()->GetGestureTable(0);
    for (uint32_t g : m_Enabled) {
        if (table->GetGesture(static_cast<size_t>(g))->GetSegmentSize() == 0)
            throw std::runtime_error("gesture \"" + m_GestureNames[g] + "\" has no segments");
    }
    for (size_t lane = 0; lane < m_Enabled.size(); ++lane) m_LaneOf[m_Enabled[lane]] = static_cast<int>(lane);
}

uint32_t Replay::GestureNamed(const std::string& name) const {
    const uint32_t g = GetGestureIndex(0, name.c_str());
    if (g == PELMORA_NO_GESTURE) throw std::runtime_error("the configuration has no gesture \"" + name + "\"");
    return g;
}

int Replay::PlayerIndex(long long player) const {
    const std::vector<RecordedPlayer>& players = m_Summary.players;
    const auto found = std::lower_bound(players.begin(), players.end(), player,
                                        [](const RecordedPlayer& entry, long long number) { return entry.number < number; });
    return static_cast<int>(found - players.begin());
}

void Replay::PrepareTimeline(const std::string& configPath) {
    const ConfigDocument document = ConfigDocument::Load(configPath);
    PelmoraLib::GestureTable* table = PelmoraLib::Pelmora::Get()->GetGestureTable(0);
    m_Timeline.config = configPath;
    for (size_t p = 0; p < m_Summary.players.size(); ++p) {
        PelmoraLib::IdentifyValues& pool = *PelmoraLib::Pelmora::Get()->GetIdentifyValue(static_cast<int>(p));
        PlayerTimeline player;
        player.player = m_Summary.players[p].number;
        player.startMs = m_Summary.players[p].firstMs;
        player.endMs = m_Summary.players[p].lastMs;
        player.buckets = TimeBuckets(player.startMs, player.endMs);
        for (uint32_t g : m_Enabled) {
            GestureLane lane;
            lane.name = m_GestureNames[g];
            lane.segmentCount = static_cast<uint32_t>(table->GetGesture(static_cast<size_t>(g))->GetSegmentSize());
            if (g < document.gestures.size()) lane.qualifications = Qualifications(document.gestures[g]);
            lane.buckets = player.buckets;
            lane.progress = SampledSeries(player.buckets);
            lane.progress.Add(player.startMs, 0.0);
            m_Players[p].operands.push_back(Operands(pool, lane));
            player.lanes.push_back(lane);
        }
        for (const std::string& name : m_Options.plots) {
            m_Players[p].plots.push_back(PlotSource(static_cast<int>(p), name));
            player.plots.push_back({name, SampledSeries(player.buckets)});
        }
        m_Timeline.players.push_back(player);
    }
}

// A value, or a component of a vector, that holds one number.
Operand Replay::PlotSource(int player, const std::string& name) const {
    const std::string reference = name.rfind('@', 0) == 0 ? name : "@" + name;
    BaseValue::SubType sub = BaseValue::SubWhole;
    BaseValue* value = PelmoraLib::Pelmora::Get()->GetIdentifyValue(player)->GetValueFromString(reference.c_str(), sub, true);
    if (!value) throw std::runtime_error("--plot " + name + ": the configuration has no such value");
    BaseValue* part = value->GetSubValue(sub);
    if (sub != BaseValue::SubWhole && part == value) {
        const size_t dot = name.rfind('.');
        throw std::runtime_error("--plot " + name + ": " + name.substr(0, dot) + " has no component " + name.substr(dot + 1));
    }
    if (part->GetType() != BaseValue::Int && part->GetType() != BaseValue::Float)
        throw std::runtime_error("--plot " + name + ": not a number; name a component such as " + name + ".y");
    return Operand(part);
}

void Replay::RunImmediate(RecordingReader& reader) {
    for (size_t p = 0; p < m_Players.size(); ++p) {
        SetPlayerImmediate(static_cast<int>(p), true);
        for (uint32_t g : m_Enabled) SetPlayerGestureImmediate(static_cast<int>(p), g, true);
    }
    const int32_t slots = static_cast<int32_t>(m_Joints.size());
    ProgressBar progress(m_Summary.frames);
    RecordedFrame frame;
    for (size_t row = 0; reader.Next(frame); ++row) {
        const int p = Feed(row, frame);
        Advance(frame.timeMs);
        uint32_t count = 0;
        if (UpdateSketonDataImmediate(p, frame.joints.data(), slots, m_Players[p].records.data(), &count))
            Deliver(p, frame.timeMs, count);
        progress.Update(row + 1);
    }
}

// The worker evaluates all rows of one time in one pass.
void Replay::RunWorker(RecordingReader& reader) {
    WarmUpPassMarker();
    EnableQueued();
    const int32_t slots = static_cast<int32_t>(m_Joints.size());
    ProgressBar progress(m_Summary.frames);
    RecordedFrame frame;
    size_t row = 0;
    for (bool more = reader.Next(frame); more;) {
        const double timeMs = frame.timeMs;
        Advance(timeMs);
        do {
            const int p = Feed(row++, frame);
            UpdateSketonData(p, frame.joints.data(), slots);
            if (!m_Players[p].inPass) m_PassOrder.push_back(p);
            m_Players[p].inPass = true;
            more = reader.Next(frame);
        } while (more && frame.timeMs == timeMs);
        OnIdle();
        WaitForPass();
        // In row order, as immediate mode reports them; then the players
        // whose last frame was evaluated again.
        for (int p : m_PassOrder) Collect(p, timeMs);
        for (size_t p = 0; p < m_Players.size(); ++p) Collect(static_cast<int>(p), timeMs);
        for (int p : m_PassOrder) m_Players[p].inPass = false;
        m_PassOrder.clear();
        progress.Update(row);
    }
}

// Notes the row as the player's newest and returns the player.
int Replay::Feed(size_t row, const RecordedFrame& frame) {
    const int p = PlayerIndex(frame.player);
    PlayerState& state = m_Players[p];
    state.lastFrame = row;
    state.lastLabel = frame.label;
    state.fed = true;
    if (m_Options.keepTimeline) m_Timeline.players[p].AddFrame(frame.timeMs, frame.label);
    return p;
}

// Takes the player's results of the pass, once.
void Replay::Collect(int player, double timeMs) {
    uint32_t count = 0;
    PlayerState& state = m_Players[player];
    if (state.fed && GetPlayerGestureState(player, state.records.data(), &count))
        Deliver(player, timeMs, count);
}

void Replay::EnableQueued() {
    for (size_t p = 0; p < m_Players.size(); ++p) {
        SetPlayer(static_cast<int>(p), true);
        for (uint32_t g : m_Enabled) SetPlayerGesture(static_cast<int>(p), g, true);
    }
}

// The marker player (the last one) gets a frame that every pass accepts and
// answers with a result set. It is warmed up with two immediate frames while
// the worker still waits for its first pass.
void Replay::WarmUpPassMarker() {
    const int marker = static_cast<int>(m_Players.size());
    const std::vector<Point3> frame(m_Joints.size(), Point3{0.0f, 0.0f, 1.0f});
    const int32_t slots = static_cast<int32_t>(frame.size());
    const uint32_t start = m_Clock;
    m_MarkerRecords.resize(std::max<uint64_t>(1, GetGestureNum(marker)));
    SetPlayerImmediate(marker, true);
    uint32_t count = 0;
    for (uint32_t before : {2u, 1u}) {
        m_Clock = start - before;
        UpdateSketonDataImmediate(marker, frame.data(), slots, m_MarkerRecords.data(), &count);
    }
    m_Clock = start;
    UpdateSketonData(marker, frame.data(), slots);
}

void Replay::WaitForPass() {
    const int marker = static_cast<int>(m_Players.size());
    const auto deadline = std::chrono::steady_clock::now() + kWorkerTimeout;
    uint32_t count = 0;
    while (!GetPlayerGestureState(marker, m_MarkerRecords.data(), &count)) {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("the library's worker did not finish a pass within 10 s");
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
}

void Replay::Advance(double timeMs) {
    m_Clock = Ticks(timeMs);
    if (!m_Options.realtime) return;
    // Capped so that the wait stays within the clock's range of nanoseconds.
    const double sinceFirst = std::min(timeMs - m_Summary.firstMs, kLongestWaitMs);
    std::this_thread::sleep_until(m_Start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                                std::chrono::duration<double, std::milli>(sinceFirst)));
}

void Replay::Deliver(int player, double timeMs, uint32_t count) {
    for (uint32_t k = 0; k < count; ++k) HandleRecord(player, timeMs, m_Players[player].records[k]);
    SamplePlots(player, timeMs);
}

void Replay::HandleRecord(int player, double timeMs, const PelmoraResult24& record) {
    const uint32_t gesture = static_cast<uint32_t>(record.gestureIndex);
    const uint32_t segment = static_cast<uint32_t>(record.segmentIndex);
    uint32_t waitingIn = 0;
    if (record.finished) {
        Emit(player, timeMs, gesture, EventKind::Finished, segment);
    } else if (record.succeeded) {
        Emit(player, timeMs, gesture, EventKind::Advanced, segment);
        waitingIn = segment + 1;
    } else {
        waitingIn = HandleFailure(player, timeMs, record);
        if (waitingIn == 0 && segment > 0) Emit(player, timeMs, gesture, EventKind::Reset, segment);
    }
    if (GestureLane* lane = Lane(player, gesture)) lane->progress.Add(timeMs, static_cast<double>(waitingIn));
}

// The segment the gesture waits in after a failed check: the same one, or 0
// when the failing qualification restarts the gesture.
uint32_t Replay::HandleFailure(int player, double timeMs, const PelmoraResult24& record) {
    const uint32_t gesture = static_cast<uint32_t>(record.gestureIndex);
    const uint32_t segment = static_cast<uint32_t>(record.segmentIndex);
    GestureLane* lane = Lane(player, gesture);
    if (segment == 0 && !lane) return 0;
    const Failure failure = FailureTracker::Explain(player, record, SegmentOperands(player, gesture, segment));
    if (lane) lane->CountFailure(segment, failure.qualification, timeMs, failure.left, failure.right);
    return failure.reset ? 0 : segment;
}

const std::vector<OperandPair>* Replay::SegmentOperands(int player, uint32_t gesture, uint32_t segment) const {
    if (!m_Options.keepTimeline || gesture >= m_LaneOf.size() || m_LaneOf[gesture] < 0) return nullptr;
    const std::vector<std::vector<OperandPair>>& segments =
        m_Players[player].operands[static_cast<size_t>(m_LaneOf[gesture])];
    return segment < segments.size() ? &segments[segment] : nullptr;
}

void Replay::Emit(int player, double timeMs, uint32_t gesture, EventKind kind, uint32_t segment) {
    GestureEvent event;
    event.timeMs = timeMs;
    event.frame = m_Players[player].lastFrame;
    event.player = m_Summary.players[player].number;
    event.gesture = m_GestureNames[gesture];
    event.kind = kind;
    event.segment = segment;
    event.label = m_Players[player].lastLabel;
    m_Sink(event);
    GestureLane* lane = Lane(player, gesture);
    if (lane && kind != EventKind::Advanced) lane->Mark(timeMs, kind, segment);
}

GestureLane* Replay::Lane(int player, uint32_t gesture) {
    if (!m_Options.keepTimeline || gesture >= m_LaneOf.size() || m_LaneOf[gesture] < 0) return nullptr;
    return &m_Timeline.players[player].lanes[static_cast<size_t>(m_LaneOf[gesture])];
}

void Replay::SamplePlots(int player, double timeMs) {
    if (!m_Options.keepTimeline) return;
    std::vector<PlotSeries>& series = m_Timeline.players[player].plots;
    for (size_t k = 0; k < series.size(); ++k) series[k].points.Add(timeMs, m_Players[player].plots[k].Read());
}

}  // namespace PelmoraTool
