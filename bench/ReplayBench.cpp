// Replay throughput: the bundled recording (one player, 297 frames) through
// the example gesture catalogue.
//  - Replay/Tool: the replay unit of the pelmora tool, immediate mode, one
//    whole replay per iteration: set-up, load and compile of the catalogue,
//    every frame and the turning of records into events.
//  - Replay/Direct: the same frames through the C interface in immediate
//    mode with the catalogue compiled once: the steady per-frame rate.
#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "bench/Benchmarks.h"
#include "bench/AllocationCounter.h"
#include "bench/Workload.h"
#include "pelmora.h"

#ifdef PELMORA_BENCH_HAVE_TOOL
#include "tools/Recording.h"
#include "tools/Replay.h"
#endif

namespace PelmoraBench {

namespace {

const std::string kRecording = std::string(PELMORA_SOURCE_DIR) + "/examples/recordings/precog-seq1-subject7.csv";
const std::string kCatalogue = std::string(PELMORA_SOURCE_DIR) + "/examples/gestures/catalogue.xml";

// Joint names of the recording's columns, by joint type.
const char* const kJointNames[PELMORA_JOINT_COUNT] = {
    "Invalid",    "Head",      "Neck",           "Torso",         "Waist",     "LeftCollar",   "LeftShoulder",
    "LeftElbow",  "LeftWrist", "LeftHand",       "LeftFingertip", "RightCollar", "RightShoulder", "RightElbow",
    "RightWrist", "RightHand", "RightFingertip", "LeftHip",       "LeftKnee",  "LeftAnkle",    "LeftFoot",
    "RightHip",   "RightKnee", "RightAnkle",     "RightFoot"};

struct Frames {
    std::vector<int32_t> joints;
    std::vector<uint32_t> times;
    std::vector<Point3> points;  // joints.size() per frame
    std::string error;
};

int32_t JointType(const std::string& column) {
    const std::string name = column.substr(0, column.find('.'));
    for (int32_t type = 1; type < PELMORA_JOINT_COUNT; ++type) {
        if (name == kJointNames[type]) return type;
    }
    return 0;
}

// The native recording format: time_ms,player,<Joint>.x,.y,.z...,label.
Frames ReadRecording(const std::string& path) {
    Frames frames;
    std::ifstream in(path);
    std::string line;
    if (!std::getline(in, line)) {
        frames.error = "cannot read " + path;
        return frames;
    }
    std::vector<std::string> header;
    std::stringstream names(line);
    for (std::string cell; std::getline(names, cell, ',');) header.push_back(cell);
    for (size_t c = 2; c + 2 < header.size(); c += 3) frames.joints.push_back(JointType(header[c]));
    while (std::getline(in, line)) {
        if (line.empty()) continue;
        std::stringstream row(line);
        std::string cell;
        std::getline(row, cell, ',');
        frames.times.push_back(static_cast<uint32_t>(std::stod(cell) + 0.5));
        std::getline(row, cell, ',');
        for (size_t j = 0; j < frames.joints.size(); ++j) {
            float xyz[3];
            for (float& v : xyz) {
                std::getline(row, cell, ',');
                v = std::stof(cell);
            }
            frames.points.push_back(Point3{xyz[0], xyz[1], xyz[2]});
        }
    }
    return frames;
}

void ReplayDirect(benchmark::State& state) {
    const Frames frames = ReadRecording(kRecording);
    if (!frames.error.empty() || frames.times.empty()) {
        state.SkipWithError(frames.error.empty() ? "empty recording" : frames.error.c_str());
        return;
    }
    FrameClock clock;
    clock.Install();
    std::vector<int32_t> types = frames.joints;
    GestureConfigParam param{};
    param.ReturnInfoType = PELMORA_RETURN_INFO_24;
    param.PlayerNum = 1;
    param.SkeletonNum = static_cast<int32_t>(types.size());
    param.SkeletonTypeArray = types.data();
    param.VelocityFrameNum = 2;
    InitPelmora(&param);
    if (!LoadConfigFile(kCatalogue.c_str()) || !StartGestureWork()) {
        ClosePelmora();
        FrameClock::Uninstall();
        state.SkipWithError("the catalogue does not load and compile");
        return;
    }
    const uint32_t gestures = static_cast<uint32_t>(GetGestureNum(0));
    SetPlayerImmediate(0, true);
    for (uint32_t g = 0; g < gestures; ++g) SetPlayerGestureImmediate(0, g, true);
    std::vector<PelmoraResult24> results(gestures + 1);
    const int32_t slots = static_cast<int32_t>(types.size());
    const size_t count = frames.times.size();

    // Each pass over the recording continues the clock where the last ended.
    uint32_t base = 0;
    uint64_t finished = 0;
    auto pass = [&] {
        uint32_t written = 0;
        for (size_t f = 0; f < count; ++f) {
            clock.now.store(base + frames.times[f], std::memory_order_relaxed);
            if (UpdateSketonDataImmediate(0, frames.points.data() + f * types.size(), slots, results.data(), &written)) {
                for (uint32_t r = 0; r < written; ++r) finished += results[r].finished != 0;
            }
        }
        base += frames.times.back() + kFrameMs;
    };
    pass();
    AllocationCounter allocations;
    for (auto _ : state) pass();
    const uint64_t allocated = allocations.Count();
    ClosePelmora();
    FrameClock::Uninstall();
    state.counters["frames_per_s"] =
        benchmark::Counter(static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["gestures"] = gestures;
    state.counters["finishes"] = static_cast<double>(finished) / static_cast<double>(state.iterations() + 1);
    state.counters["allocs_per_frame"] =
        static_cast<double>(allocated) / static_cast<double>(state.iterations() * count);
}

#ifdef PELMORA_BENCH_HAVE_TOOL
void ReplayTool(benchmark::State& state) {
    // The tool streams the recording itself; this reading only counts its frames.
    const Frames frames = ReadRecording(kRecording);
    if (!frames.error.empty() || frames.times.empty()) {
        state.SkipWithError(frames.error.empty() ? "empty recording" : frames.error.c_str());
        return;
    }
    uint64_t events = 0;
    for (auto _ : state) {
        PelmoraTool::ReplayOptions options;
        PelmoraTool::Replay replay(kRecording, options, [&](const PelmoraTool::GestureEvent&) { ++events; });
        try {
            benchmark::DoNotOptimize(replay.Run(kCatalogue));
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            break;
        }
    }
    state.counters["frames_per_s"] =
        benchmark::Counter(static_cast<double>(frames.times.size()), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["events"] = state.iterations() ? static_cast<double>(events) / static_cast<double>(state.iterations()) : 0.0;
}
#endif

}  // namespace

void RegisterReplayBenchmarks() {
#ifdef PELMORA_BENCH_HAVE_TOOL
    benchmark::RegisterBenchmark("Replay/Tool/precog-seq1-subject7", ReplayTool)->Unit(benchmark::kMillisecond);
#endif
    benchmark::RegisterBenchmark("Replay/Direct/precog-seq1-subject7", ReplayDirect)->Unit(benchmark::kMillisecond);
}

}  // namespace PelmoraBench
