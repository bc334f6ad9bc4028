// The update pass in immediate mode through the C interface, and the same
// rules written directly in C++ on the same frames. Before timing, the
// library's records are compared with the hand-written ones frame by frame:
// both sides provably do the same work, and the hand-written side counts the
// qualification checks that work takes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bench/Benchmarks.h"
#include "bench/AllocationCounter.h"
#include "bench/Session.h"
#include "bench/Workload.h"

namespace PelmoraBench {

namespace {

// Frames compared before timing: three motion cycles, so gestures advance,
// finish and reset on both sides.
const int kCompareFrames = 3 * kCycleFrames;

struct Motions {
    std::vector<std::vector<Point3>> players;
    const Point3* Frame(int player, uint64_t frame) const {
        return players[static_cast<size_t>(player)].data() + (frame % kCycleFrames) * kJointCount;
    }
};

Motions MakeMotions(int players) {
    Motions motions;
    for (int p = 0; p < players; ++p) motions.players.push_back(MakeMotion(p));
    return motions;
}

std::string Describe(const char* what, int player, uint64_t frame) {
    return std::string(what) + " (player " + std::to_string(player) + ", frame " + std::to_string(frame) + ")";
}

// Feeds kCompareFrames to the library and the yardstick in step and compares
// every record. Returns an error text, empty when they agree; `checks` gets
// the qualification checks per frame of all players.
std::string Compare(int players, const Motions& motions, FrameClock& clock, HandWritten& hand, uint64_t& frame,
                    double& checks) {
    const uint32_t gestures = static_cast<uint32_t>(GetGestureNum(0));
    std::vector<PelmoraResult24> library(gestures + 1), expected(gestures + 1);
    uint64_t checkedFrames = 0;
    hand.SetCounting(true);
    for (int f = 0; f < kCompareFrames; ++f, ++frame) {
        const uint32_t now = clock.Advance(kFrameMs);
        bool evaluated = false;
        for (int p = 0; p < players; ++p) {
            const Point3* joints = motions.Frame(p, frame);
            uint32_t count = 0;
            const bool got = UpdateSketonDataImmediate(p, joints, kJointCount, library.data(), &count);
            const int want = hand.Update(p, joints, now, expected.data());
            if (got != (want >= 0)) return Describe("result sets differ", p, frame);
            if (!got) continue;
            evaluated = true;
            if (count != static_cast<uint32_t>(want)) return Describe("record counts differ", p, frame);
            if (memcmp(library.data(), expected.data(), count * sizeof(PelmoraResult24)) != 0)
                return Describe("records differ", p, frame);
        }
        if (evaluated) ++checkedFrames;
    }
    hand.SetCounting(false);
    checks = checkedFrames ? static_cast<double>(hand.Checks()) / static_cast<double>(checkedFrames) : 0.0;
    return "";
}

// Qualification checks per frame (all players), by size; filled by the
// library benchmark's comparison, read by the hand-written one.
std::map<std::pair<int, int>, double>& ChecksPerFrame() {
    static std::map<std::pair<int, int>, double> checks;
    return checks;
}

void SetCounters(benchmark::State& state, int players, int gestures, double checks) {
    state.counters["players"] = players;
    state.counters["gestures"] = gestures;
    state.counters["checks"] = checks;
    // Seconds per player-frame and per qualification check (shown with SI prefixes).
    state.counters["per_player_frame"] =
        benchmark::Counter(players, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    if (checks > 0)
        state.counters["per_check"] =
            benchmark::Counter(checks, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void UpdateLibrary(benchmark::State& state, int players, int gestures) {
    FrameClock clock;
    Session session(false, players, Document(gestures), clock);
    if (!session.Ok()) {
        state.SkipWithError(session.Error().c_str());
        return;
    }
    const Motions motions = MakeMotions(players);
    HandWritten hand(MakeGestures(gestures), players, session.EnabledAt());
    uint64_t frame = 0;
    double checks = 0.0;
    const std::string error = Compare(players, motions, clock, hand, frame, checks);
    if (!error.empty()) {
        state.SkipWithError(("the library and the hand-written rules disagree: " + error).c_str());
        return;
    }
    ChecksPerFrame()[{players, gestures}] = checks;

    std::vector<PelmoraResult24> results(static_cast<size_t>(gestures) + 1);
    uint32_t count = 0;
    AllocationCounter allocations;
    for (auto _ : state) {
        clock.Advance(kFrameMs);
        for (int p = 0; p < players; ++p) {
            UpdateSketonDataImmediate(p, motions.Frame(p, frame), kJointCount, results.data(), &count);
        }
        benchmark::DoNotOptimize(results.data());
        benchmark::ClobberMemory();
        ++frame;
    }
    const uint64_t allocated = allocations.Count();
    SetCounters(state, players, gestures, checks);
    state.counters["allocs_per_frame"] =
        static_cast<double>(allocated) / static_cast<double>(state.iterations() * static_cast<uint64_t>(players));
}

void UpdateHandWritten(benchmark::State& state, int players, int gestures) {
    FrameClock clock;
    const Motions motions = MakeMotions(players);
    HandWritten hand(MakeGestures(gestures), players, clock.Now());
    std::vector<PelmoraResult24> results(static_cast<size_t>(gestures) + 1);
    uint64_t frame = 0;
    hand.SetCounting(true);
    uint64_t checkedFrames = 0;
    for (; frame < static_cast<uint64_t>(kCompareFrames); ++frame) {
        const uint32_t now = clock.Advance(kFrameMs);
        bool evaluated = false;
        for (int p = 0; p < players; ++p) evaluated = hand.Update(p, motions.Frame(p, frame), now, results.data()) >= 0;
        if (evaluated) ++checkedFrames;
    }
    hand.SetCounting(false);
    const double checks = static_cast<double>(hand.Checks()) / static_cast<double>(checkedFrames);

    for (auto _ : state) {
        const uint32_t now = clock.Advance(kFrameMs);
        for (int p = 0; p < players; ++p) hand.Update(p, motions.Frame(p, frame), now, results.data());
        benchmark::DoNotOptimize(results.data());
        benchmark::ClobberMemory();
        ++frame;
    }
    SetCounters(state, players, gestures, checks);
}

}  // namespace

void RegisterUpdateBenchmarks() {
    for (int players : {1, 6}) {
        for (int gestures : {10, 100, 1000}) {
            const std::string size = "/players:" + std::to_string(players) + "/gestures:" + std::to_string(gestures);
            benchmark::RegisterBenchmark(("Update/Library" + size).c_str(), UpdateLibrary, players, gestures);
            benchmark::RegisterBenchmark(("Update/HandWritten" + size).c_str(), UpdateHandWritten, players, gestures);
        }
    }
}

}  // namespace PelmoraBench
