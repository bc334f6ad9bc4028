// Loading and compiling a generated document for six players: the work of
// LoadConfigData and StartGestureWork, timed apart from InitPelmora and
// ClosePelmora. The sizes grow tenfold, so linear growth shows as a tenfold
// time.
#include <benchmark/benchmark.h>

#include <time.h>

#include <chrono>
#include <string>

#include "bench/Benchmarks.h"
#include "bench/Session.h"
#include "bench/Workload.h"

namespace PelmoraBench {

namespace {

const int kPlayers = 6;

// CPU time of the calling thread, which does all of loading and compiling.
double ThreadCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void LoadCompile(benchmark::State& state, int gestures) {
    const std::string& document = Document(gestures);
    double cpuSeconds = 0.0;
    for (auto _ : state) {
        GestureConfigParam param = MakeParam(false, kPlayers);
        InitPelmora(&param);
        const double cpuStart = ThreadCpuSeconds();
        const auto start = std::chrono::steady_clock::now();
        const bool loaded = LoadConfigData(document.c_str());
        const bool compiled = loaded && StartGestureWork();
        const auto stop = std::chrono::steady_clock::now();
        cpuSeconds += ThreadCpuSeconds() - cpuStart;
        const bool complete = compiled && GetGestureNum(kPlayers - 1) == static_cast<uint64_t>(gestures);
        ClosePelmora();
        if (!complete) {
            state.SkipWithError("the generated document does not load and compile");
            break;
        }
        state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
    }
    // The benchmark's own CPU column also covers InitPelmora and ClosePelmora.
    state.counters["cpu_ms"] = state.iterations() ? cpuSeconds * 1e3 / static_cast<double>(state.iterations()) : 0.0;
    state.counters["players"] = kPlayers;
    state.counters["gestures"] = gestures;
    state.counters["document_kib"] = static_cast<double>(document.size()) / 1024.0;
}

}  // namespace

void RegisterLoadBenchmarks() {
    for (int gestures : {10, 100, 1000}) {
        benchmark::RegisterBenchmark(("Load/Compile/players:6/gestures:" + std::to_string(gestures)).c_str(),
                                     LoadCompile, gestures)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

}  // namespace PelmoraBench
