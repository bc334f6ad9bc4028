// Heap allocations per steady-state frame, counted at the malloc level on
// every thread (the host's and the worker's), in both modes, with tracing
// off. The goal is none at all: a frame only reuses what set-up allocated.
#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <vector>

#include "bench/Benchmarks.h"
#include "bench/AllocationCounter.h"
#include "bench/Session.h"
#include "bench/Workload.h"

namespace PelmoraBench {

namespace {

const int kPlayers = 6;
const int kGestures = 100;

void Allocations(benchmark::State& state, bool worker) {
    SetDebugInfo(false);
    FrameClock clock;
    Session session(worker, kPlayers, Document(kGestures), clock);
    if (!session.Ok()) {
        state.SkipWithError(session.Error().c_str());
        return;
    }
    std::vector<std::vector<Point3>> motions;
    for (int p = 0; p < kPlayers; ++p) motions.push_back(MakeMotion(p));
    std::vector<PelmoraResult24> results(kGestures + 1);
    uint64_t frame = 0;
    bool answered = true;
    auto feed = [&](std::chrono::milliseconds patience) {
        clock.Advance(kFrameMs);
        const size_t offset = (frame++ % kCycleFrames) * kJointCount;
        uint32_t count = 0;
        if (!worker) {
            for (int p = 0; p < kPlayers; ++p)
                UpdateSketonDataImmediate(p, motions[p].data() + offset, kJointCount, results.data(), &count);
            return;
        }
        for (int p = 0; p < kPlayers; ++p) UpdateSketonData(p, motions[p].data() + offset, kJointCount);
        OnIdle();
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (!GetPlayerGestureState(kPlayers - 1, results.data(), &count)) {
            if (std::chrono::steady_clock::now() > deadline) {
                answered = false;
                return;
            }
        }
        for (int p = 0; p + 1 < kPlayers; ++p) GetPlayerGestureState(p, results.data(), &count);
    };
    // Warm up over two motion cycles: enables applied, histories full (no
    // results until then), gestures through every segment.
    for (int f = 0; f < 2 * kCycleFrames; ++f) feed(std::chrono::milliseconds(200));
    answered = true;

    uint64_t allocated = 0, frames = 0;
    for (auto _ : state) {
        AllocationCounter window;
        feed(std::chrono::seconds(1));
        allocated += window.Count();
        ++frames;
    }
    if (!answered) state.SkipWithError("the worker did not answer");
    state.counters["players"] = kPlayers;
    state.counters["gestures"] = kGestures;
    state.counters["allocs_per_frame"] = frames ? static_cast<double>(allocated) / static_cast<double>(frames) : 0.0;
}

}  // namespace

void RegisterAllocationBenchmarks() {
    benchmark::RegisterBenchmark("Allocations/Immediate/players:6/gestures:100", Allocations, false)->Iterations(3000);
    benchmark::RegisterBenchmark("Allocations/Worker/players:6/gestures:100", Allocations, true)->Iterations(3000);
}

}  // namespace PelmoraBench
