// Replay - feeds a recording to the library, one library player per
// recording player (ascending player numbers become players 0..N-1), every
// frame at its recorded time through SetTimeSource, and turns the 24-byte
// result records into events.
//
// Immediate mode evaluates each row on this thread as it is fed. Worker mode
// hands all rows of one time_ms to the library's worker and wakes it once; a
// pass evaluates every tracked player's newest frame, so a player without a
// row at that time has its last frame evaluated again (events name that
// frame). To know when a pass is over, the library gets one extra player
// that is evaluated last in every pass and has no gesture enabled.
//
// The recording is read twice as a stream: once to check it whole and learn
// its players before the library starts, once to feed it. Memory stays
// bounded by the players (at most RecordingReader::kMaxPlayers) and one
// frame, whatever the length of the recording. Not thread-safe: the library
// is a process-wide singleton, so one replay runs at a time.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "pelmora.h"
#include "tools/GestureEvent.h"
#include "tools/Operand.h"
#include "tools/RecordingReader.h"
#include "tools/Timeline.h"

namespace PelmoraTool {

struct ReplayOptions {
    std::vector<std::string> gestures;  // names to enable; empty or "all": every gesture
    bool worker = false;
    bool realtime = false;              // pace frames by their times instead of running flat out
    bool keepTimeline = false;          // collect what the report shows
    std::vector<std::string> plots;     // value names ("HandHeight", "P_Head.y") sampled for the report
};

class Replay {
public:
    using EventSink = std::function<void(const GestureEvent&)>;

    Replay(const std::string& recordingPath, const ReplayOptions& options, EventSink sink);

    // Throws std::runtime_error when the recording is unreadable or empty,
    // the configuration does not load or compile, a gesture or value is
    // unknown, or the worker stops answering.
    Timeline Run(const std::string& configPath);

private:
    struct PlayerState {
        std::vector<PelmoraResult24> records;
        size_t lastFrame = 0;     // the recording's row the player was last fed
        std::string lastLabel;    // and its label
        bool fed = false;
        bool inPass = false;      // has a row in the worker's current pass
        std::vector<Operand> plots;
        std::vector<std::vector<std::vector<OperandPair>>> operands;  // by lane, segment, qualification
    };

    void ChooseGestures();
    uint32_t GestureNamed(const std::string& name) const;
    int PlayerIndex(long long player) const;
    void PrepareTimeline(const std::string& configPath);
    Operand PlotSource(int player, const std::string& name) const;

    void RunImmediate(RecordingReader& reader);
    void RunWorker(RecordingReader& reader);
    int Feed(size_t row, const RecordedFrame& frame);
    void EnableQueued();
    void WarmUpPassMarker();
    void WaitForPass();
    void Collect(int player, double timeMs);
    void Advance(double timeMs);

    void Deliver(int player, double timeMs, uint32_t count);
    void HandleRecord(int player, double timeMs, const PelmoraResult24& record);
    uint32_t HandleFailure(int player, double timeMs, const PelmoraResult24& record);
    const std::vector<OperandPair>* SegmentOperands(int player, uint32_t gesture, uint32_t segment) const;
    void Emit(int player, double timeMs, uint32_t gesture, EventKind kind, uint32_t segment);
    GestureLane* Lane(int player, uint32_t gesture);
    void SamplePlots(int player, double timeMs);

    std::string m_Path;
    ReplayOptions m_Options;
    EventSink m_Sink;
    RecordingSummary m_Summary;
    std::vector<int32_t> m_Joints;
    std::vector<PlayerState> m_Players;
    std::vector<int> m_PassOrder;  // players with a row in the worker's pass, in row order
    std::vector<PelmoraResult24> m_MarkerRecords;
    std::vector<std::string> m_GestureNames;  // by gesture index
    std::vector<uint32_t> m_Enabled;
    std::vector<int> m_LaneOf;                // gesture index to lane, -1 when not shown
    Timeline m_Timeline;
    std::atomic<uint32_t> m_Clock{0};
    std::chrono::steady_clock::time_point m_Start;
};

}  // namespace PelmoraTool
