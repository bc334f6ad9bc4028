// Tuning throughput: how many candidate-frames per second one replay of
// `pelmora tune` evaluates. A candidate-frame is one frame checked for one
// candidate's clone of a gesture. The bundled recording (one player, 297
// frames) is replayed through the example catalogue holding N clones of
// RightPunch, each with its own constants, and only the clones enabled: one
// whole replay of the tool's unit per iteration (set-up, load and compile of
// the document, every frame). With N = 1 it is what a search would cost that
// replays each candidate on its own; the ratio of the larger N to it is what
// sharing the values and functions of a frame between candidates gains.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "bench/Benchmarks.h"

#ifdef PELMORA_BENCH_HAVE_TOOL
#include <unistd.h>

#include "tools/ConstantSearch.h"
#include "tools/RecordingReader.h"
#include "tools/Replay.h"
#include "tools/TunableDocument.h"
#endif

namespace PelmoraBench {

const size_t kCandidateCounts[] = {1, 16, 64, 256};

#ifdef PELMORA_BENCH_HAVE_TOOL
namespace {

const std::string kRecording = std::string(PELMORA_SOURCE_DIR) + "/examples/recordings/precog-seq1-subject7.csv";
const std::string kCatalogue = std::string(PELMORA_SOURCE_DIR) + "/examples/gestures/catalogue.xml";

// The catalogue with `count` clones of RightPunch, each constant of clone k
// at (0.5 + 1.5 k / count) times its value; returns the clones' names.
std::vector<std::string> WriteClones(const std::string& path, size_t count) {
    const PelmoraTool::TunableDocument document = PelmoraTool::TunableDocument::Load(kCatalogue, {"RightPunch"});
    std::vector<std::string> texts, names;
    std::vector<std::vector<std::string>> candidates;
    for (const PelmoraTool::TunableConstant& constant : document.constants) texts.push_back(constant.text);
    for (size_t k = 0; k < count; ++k) {
        candidates.emplace_back();
        for (const PelmoraTool::TunableConstant& constant : document.constants) {
            const PelmoraTool::ConstantRange range{0.0, 0.0, constant.integer ? 1.0 : 0.001, constant.integer};
            const double factor = 0.5 + 1.5 * static_cast<double>(k) / static_cast<double>(count);
            candidates.back().push_back(PelmoraTool::ConstantSearch::Text(constant.value * factor, range));
        }
        names.push_back(document.CloneName(0, k));
    }
    std::ofstream(path) << document.WithClones(texts, 0, candidates);
    return names;
}

void TuneClones(benchmark::State& state, size_t count) {
    const std::string path = "/tmp/pelmora-bench-tune-" + std::to_string(getpid()) + ".xml";
    PelmoraTool::ReplayOptions options;
    size_t frames = 0;
    try {
        options.gestures = WriteClones(path, count);
        frames = PelmoraTool::RecordingReader(kRecording).Summarise().frames;
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
        return;
    }
    uint64_t finishes = 0;
    for (auto _ : state) {
        PelmoraTool::Replay replay(kRecording, options, [&](const PelmoraTool::GestureEvent&) { ++finishes; });
        try {
            benchmark::DoNotOptimize(replay.Run(path));
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            break;
        }
    }
    std::remove(path.c_str());
    state.counters["candidates"] = static_cast<double>(count);
    state.counters["candidate_frames_per_s"] =
        benchmark::Counter(static_cast<double>(frames * count), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["events"] = state.iterations() ? static_cast<double>(finishes) / static_cast<double>(state.iterations()) : 0.0;
}

}  // namespace
#endif

void RegisterTuneBenchmarks() {
#ifdef PELMORA_BENCH_HAVE_TOOL
    for (size_t count : kCandidateCounts)
        benchmark::RegisterBenchmark(("Tune/Clones/candidates:" + std::to_string(count)).c_str(), TuneClones, count)
            ->Unit(benchmark::kMillisecond);
#endif
}

}  // namespace PelmoraBench
