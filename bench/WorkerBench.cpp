// Worker mode, as a host with a real sensor drives it: a frame every few
// milliseconds, so the worker is asleep when woken. Each iteration times one
// frame through the library (UpdateSketonData, OnIdle, then polling
// GetPlayerGestureState until it has the new results) and, at the same
// pacing, the bare round trip of waking a sleeping thread through a mutex and
// condition variable and seeing its answer. Both are polled the same way, so
// their ratio is what the library adds to the wake-up itself. A third round
// trip wakes the same kind of thread to run the hand-written rules on the
// frames: as cold as the library's worker after its sleep, it is what any
// worker evaluating these gestures must spend at least.
#include <benchmark/benchmark.h>

#include <immintrin.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "bench/Benchmarks.h"
#include "bench/AllocationCounter.h"
#include "bench/Session.h"
#include "bench/Workload.h"

namespace PelmoraBench {

namespace {

using Clock = std::chrono::steady_clock;

const auto kPacing = std::chrono::milliseconds(2);
const int kFrames = 600;

// Between two polls: both round trips poll alike, and a poll loop that
// breathes leaves the locks it touches to the worker.
inline void Breathe() {
    for (int i = 0; i < 8; ++i) _mm_pause();
}

// A thread that sleeps on a condition variable and answers each wake-up by
// running its job, if it has one, and bumping a counter: without a job the
// least any worker can do.
class BareWorker {
public:
    using Job = void (*)(void* context);

    explicit BareWorker(Job job = nullptr, void* context = nullptr)
        : m_Job(job), m_Context(context), m_Thread([this] { Run(); }) {}
    ~BareWorker() {
        {
            std::lock_guard<std::mutex> lock(m_Mutex);
            m_Stop = true;
        }
        m_Condition.notify_one();
        m_Thread.join();
    }

    // Runs `hand` (the host's share of the frame) and wakes the thread, then
    // waits for its answer; returns nanoseconds.
    template <class Hand>
    double RoundTrip(Hand hand) {
        const uint64_t before = m_Answers.load(std::memory_order_acquire);
        const Clock::time_point start = Clock::now();
        hand();
        {
            std::lock_guard<std::mutex> lock(m_Mutex);
            m_Pending = true;
        }
        m_Condition.notify_one();
        while (m_Answers.load(std::memory_order_acquire) == before) Breathe();
        return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    }
    double RoundTrip() {
        return RoundTrip([] {});
    }

private:
    void Run() {
        for (;;) {
            std::unique_lock<std::mutex> lock(m_Mutex);
            m_Condition.wait(lock, [this] { return m_Pending || m_Stop; });
            if (m_Stop) return;
            m_Pending = false;
            lock.unlock();
            if (m_Job) m_Job(m_Context);
            m_Answers.fetch_add(1, std::memory_order_release);
        }
    }

    const Job m_Job;
    void* const m_Context;
    std::mutex m_Mutex;
    std::condition_variable m_Condition;
    bool m_Pending = false;
    bool m_Stop = false;
    std::atomic<uint64_t> m_Answers{0};
    std::thread m_Thread;
};

// The hand-written rules as a worker's job: the host copies each player's
// frame in, as UpdateSketonData does, and the worker evaluates them all.
struct HandWrittenPass {
    HandWrittenPass(int players, int gestures, uint32_t startMs)
        : hand(MakeGestures(gestures), players, startMs),
          frames(static_cast<size_t>(players), std::vector<Point3>(kJointCount)),
          results(static_cast<size_t>(gestures) + 1) {}

    void Copy(const std::vector<std::vector<Point3>>& motions, uint64_t frame, uint32_t now) {
        for (size_t p = 0; p < frames.size(); ++p)
            memcpy(frames[p].data(), motions[p].data() + (frame % kCycleFrames) * kJointCount, kJointCount * sizeof(Point3));
        nowMs = now;
    }

    static void Run(void* self) {
        HandWrittenPass& pass = *static_cast<HandWrittenPass*>(self);
        for (size_t p = 0; p < pass.frames.size(); ++p)
            pass.hand.Update(static_cast<int>(p), pass.frames[p].data(), pass.nowMs, pass.results.data());
        benchmark::DoNotOptimize(pass.results.data());
    }

    HandWritten hand;
    std::vector<std::vector<Point3>> frames;
    std::vector<PelmoraResult24> results;
    uint32_t nowMs = 0;
};

double Percentile(std::vector<double> samples, double fraction) {
    if (samples.empty()) return 0.0;
    std::sort(samples.begin(), samples.end());
    const size_t index = std::min(samples.size() - 1, static_cast<size_t>(fraction * static_cast<double>(samples.size())));
    return samples[index];
}

// One frame for every player, the worker woken once, and the results of all
// of them read back; returns nanoseconds. False in `ok` when the worker did
// not answer in time (as while the velocity history fills).
double LibraryRoundTrip(int players, const std::vector<std::vector<Point3>>& motions, uint64_t frame,
                        FrameClock& clock, std::vector<PelmoraResult24>& results, bool& ok,
                        std::chrono::milliseconds patience = std::chrono::seconds(1)) {
    uint32_t count = 0;
    const Clock::time_point start = Clock::now();
    clock.Advance(kFrameMs);
    for (int p = 0; p < players; ++p) {
        UpdateSketonData(p, motions[static_cast<size_t>(p)].data() + (frame % kCycleFrames) * kJointCount, kJointCount);
    }
    OnIdle();
    // Players are evaluated in order: the last one's results close the pass.
    while (!GetPlayerGestureState(players - 1, results.data(), &count)) {
        if (Clock::now() - start > patience) {
            ok = false;
            return 0.0;
        }
        Breathe();
    }
    const double elapsed = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
    for (int p = 0; p + 1 < players; ++p) GetPlayerGestureState(p, results.data(), &count);
    return elapsed;
}

void WorkerWake(benchmark::State& state, int players, int gestures) {
    FrameClock clock;
    Session session(true, players, Document(gestures), clock);
    if (!session.Ok()) {
        state.SkipWithError(session.Error().c_str());
        return;
    }
    std::vector<std::vector<Point3>> motions;
    for (int p = 0; p < players; ++p) motions.push_back(MakeMotion(p));
    std::vector<PelmoraResult24> results(static_cast<size_t>(gestures) + 1);
    BareWorker bare;
    HandWrittenPass handPass(players, gestures, clock.Now());
    BareWorker handWorker(&HandWrittenPass::Run, &handPass);
    uint32_t handMs = clock.Now();
    auto handRoundTrip = [&](uint64_t at) {
        handMs += kFrameMs;
        return handWorker.RoundTrip([&] { handPass.Copy(motions, at, handMs); });
    };

    // Warm up: the queued enables run in the first pass, the velocity
    // history fills, and both threads have run.
    uint64_t frame = 0;
    bool ok = true;
    for (; frame < 2 * static_cast<uint64_t>(kCycleFrames); ++frame) {
        LibraryRoundTrip(players, motions, frame, clock, results, ok, std::chrono::milliseconds(200));
        bare.RoundTrip();
        handRoundTrip(frame);
    }
    ok = true;
    LibraryRoundTrip(players, motions, frame++, clock, results, ok);
    if (!ok) {
        state.SkipWithError("the worker did not answer");
        return;
    }

    std::vector<double> library, wake, handWritten;
    library.reserve(static_cast<size_t>(state.max_iterations));
    wake.reserve(static_cast<size_t>(state.max_iterations));
    handWritten.reserve(static_cast<size_t>(state.max_iterations));
    uint64_t allocated = 0;
    for (auto _ : state) {
        std::this_thread::sleep_for(kPacing);
        double elapsed;
        {
            AllocationCounter allocations;
            elapsed = LibraryRoundTrip(players, motions, frame++, clock, results, ok);
            allocated += allocations.Count();
        }
        if (!ok) {
            state.SkipWithError("the worker did not answer");
            break;
        }
        library.push_back(elapsed);
        state.SetIterationTime(elapsed * 1e-9);
        std::this_thread::sleep_for(kPacing);
        wake.push_back(bare.RoundTrip());
        std::this_thread::sleep_for(kPacing);
        handWritten.push_back(handRoundTrip(frame - 1));
    }
    const double libraryP50 = Percentile(library, 0.50), wakeP50 = Percentile(wake, 0.50);
    const double handP50 = Percentile(handWritten, 0.50);
    state.counters["players"] = players;
    state.counters["gestures"] = gestures;
    state.counters["lib_p50_us"] = libraryP50 * 1e-3;
    state.counters["lib_p99_us"] = Percentile(library, 0.99) * 1e-3;
    state.counters["cv_p50_us"] = wakeP50 * 1e-3;
    state.counters["cv_p99_us"] = Percentile(wake, 0.99) * 1e-3;
    state.counters["p50_ratio"] = wakeP50 > 0 ? libraryP50 / wakeP50 : 0.0;
    state.counters["hand_p50_us"] = handP50 * 1e-3;
    state.counters["hand_p50_ratio"] = wakeP50 > 0 ? handP50 / wakeP50 : 0.0;
    state.counters["allocs_per_frame"] =
        library.empty() ? 0.0 : static_cast<double>(allocated) / static_cast<double>(library.size() * players);
}

}  // namespace

void RegisterWorkerBenchmarks() {
    for (auto size : {std::pair<int, int>{1, 10}, std::pair<int, int>{1, 100}, std::pair<int, int>{6, 100}}) {
        const std::string name =
            "Worker/Wake/players:" + std::to_string(size.first) + "/gestures:" + std::to_string(size.second);
        benchmark::RegisterBenchmark(name.c_str(), WorkerWake, size.first, size.second)
            ->Iterations(kFrames)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
}

}  // namespace PelmoraBench
