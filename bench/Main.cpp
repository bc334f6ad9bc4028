// The benchmark suite's main program: runs the families with Google
// Benchmark's usual flags, then prints a summary of the figures that matter,
// each beside its target: the update pass against the hand-written rules,
// the worker's wake-up against a bare condition variable, load and compile
// times and their growth, replay throughput, tuning throughput and
// allocations per frame.
// With several repetitions the summary uses the medians.
//
// The library prints progress lines (one per gesture and player while
// compiling); they go to /dev/null so that they neither flood the report nor
// cost terminal time. Set PELMORA_BENCH_LIBRARY_OUTPUT=1 to see them.
#include <benchmark/benchmark.h>
#include <ext/stdio_filebuf.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "bench/Benchmarks.h"

namespace {

struct Figure {
    double realNs = 0.0;
    double cpuNs = 0.0;
    std::map<std::string, double> counters;
    bool median = false;
    bool error = false;
};

// The console report, plus one figure per benchmark kept for the summary.
class SummaryReporter : public benchmark::ConsoleReporter {
public:
    SummaryReporter() : benchmark::ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) Keep(run);
        benchmark::ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, Figure> figures;
    int repetitions = 1;

private:
    void Keep(const Run& run) {
        Figure& figure = figures[run.run_name.function_name];
        if (run.error_occurred) {
            figure.error = true;
            return;
        }
        const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
        if (run.run_type == Run::RT_Aggregate && !median) return;
        if (figure.median && !median) return;
        if (run.repetitions > repetitions) repetitions = static_cast<int>(run.repetitions);
        figure.median = median;
        figure.realNs = run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
        figure.cpuNs = run.GetAdjustedCPUTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
        figure.counters.clear();
        for (const auto& counter : run.counters) figure.counters[counter.first] = counter.second.value;
    }
};

std::string CpuModel() {
    std::ifstream in("/proc/cpuinfo");
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("model name", 0) == 0) {
            const size_t colon = line.find(':');
            return colon == std::string::npos ? line : line.substr(colon + 2);
        }
    }
    return "unknown";
}

std::string Fixed(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

class Summary {
public:
    Summary(const SummaryReporter& reporter, std::ostream& out) : m_Figures(reporter.figures), m_Out(out) {
        m_Out << "\n== Summary (" << (reporter.repetitions > 1 ? "medians of " + std::to_string(reporter.repetitions) + " repetitions" : "single runs")
              << "; nproc " << std::thread::hardware_concurrency() << ", " << CpuModel() << ")\n";
    }

    void Update() {
        bool header = false;
        for (int players : {1, 6}) {
            for (int gestures : {10, 100, 1000}) {
                const std::string size = "/players:" + std::to_string(players) + "/gestures:" + std::to_string(gestures);
                const Figure* library = Find("Update/Library" + size);
                const Figure* hand = Find("Update/HandWritten" + size);
                if (!library || !hand) continue;
                if (!header) {
                    // CPU time of the calling thread, which does all the work in
                    // immediate mode: on a busy machine it is the steadier figure.
                    m_Out << "\nUpdate pass, immediate mode, through the C interface (ns of CPU time)\n"
                          << "players gestures  checks/frame  library/player-frame  library/check  "
                             "hand-written/player-frame  ratio   target\n";
                    header = true;
                }
                const double checks = Counter(*library, "checks");
                const double ratio = library->cpuNs / hand->cpuNs;
                const bool targeted = gestures >= 100;
                m_Out << std::setw(7) << players << std::setw(9) << gestures << std::setw(14) << Fixed(checks, 0)
                      << std::setw(22) << Fixed(library->cpuNs / players, 0) << std::setw(15)
                      << Fixed(checks > 0 ? library->cpuNs / checks : 0.0, 2) << std::setw(27)
                      << Fixed(hand->cpuNs / players, 0) << std::setw(7) << Fixed(ratio, 2) << "x  "
                      << (targeted ? Verdict(ratio <= 3.0, "<= 3x") : "-") << "\n";
            }
        }
    }

    void Worker() {
        bool header = false;
        for (const auto& entry : m_Figures) {
            if (entry.first.rfind("Worker/Wake/", 0) != 0 || entry.second.error) continue;
            const Figure& f = entry.second;
            if (!header) {
                m_Out << "\nWorker: UpdateSketonData + OnIdle until GetPlayerGestureState has the results, "
                         "beside a bare condition-variable round trip and one that runs the hand-written rules (us)\n"
                      << "players gestures  library p50  library p99  cv p50  cv p99  p50 ratio  target"
                         "          hand-written p50  its ratio\n";
                header = true;
            }
            const double ratio = Counter(f, "p50_ratio");
            m_Out << std::setw(7) << Fixed(Counter(f, "players"), 0) << std::setw(9) << Fixed(Counter(f, "gestures"), 0)
                  << std::setw(13) << Fixed(Counter(f, "lib_p50_us"), 1) << std::setw(13)
                  << Fixed(Counter(f, "lib_p99_us"), 1) << std::setw(8) << Fixed(Counter(f, "cv_p50_us"), 1)
                  << std::setw(8) << Fixed(Counter(f, "cv_p99_us"), 1) << std::setw(10) << Fixed(ratio, 2) << "x  "
                  << std::left << std::setw(18) << Verdict(ratio <= 2.0, "<= 2x") << std::right << std::setw(18)
                  << Fixed(Counter(f, "hand_p50_us"), 1) << std::setw(10) << Fixed(Counter(f, "hand_p50_ratio"), 2)
                  << "x\n";
        }
    }

    void Load() {
        bool header = false;
        double previous = 0.0;
        for (int gestures : {10, 100, 1000}) {
            const Figure* f = Find("Load/Compile/players:6/gestures:" + std::to_string(gestures));
            if (!f) continue;
            if (!header) {
                m_Out << "\nLoad + compile (LoadConfigData + StartGestureWork), 6 players (ms)\n"
                      << "gestures  document KiB  wall ms  CPU ms  growth per 10x gestures (wall)  target (wall)\n";
                header = true;
            }
            const double ms = f->realNs * 1e-6;
            m_Out << std::setw(8) << gestures << std::setw(14) << Fixed(Counter(*f, "document_kib"), 0) << std::setw(9)
                  << Fixed(ms, 2) << std::setw(8) << Fixed(Counter(*f, "cpu_ms"), 2) << std::setw(32)
                  << (previous > 0 ? Fixed(ms / previous, 1) + "x" : "-") << "  "
                  << (gestures == 1000 ? Verdict(ms < 50.0, "< 50 ms") : "-") << "\n";
            previous = ms;
        }
    }

    void Replay() {
        bool header = false;
        for (const char* name : {"Replay/Tool/precog-seq1-subject7", "Replay/Direct/precog-seq1-subject7"}) {
            const Figure* f = Find(name);
            if (!f) continue;
            if (!header) {
                m_Out << "\nReplay of examples/recordings/precog-seq1-subject7.csv through examples/gestures/catalogue.xml\n";
                header = true;
            }
            const bool tool = strstr(name, "/Tool/") != nullptr;
            m_Out << "  " << (tool ? "pelmora replay unit (whole run: set-up, load, compile, frames)" : "C interface, immediate mode, steady state")
                  << ": " << Fixed(Counter(*f, "frames_per_s"), 0) << " frames/s\n";
        }
    }

    void Tune() {
        const Figure* one = Find("Tune/Clones/candidates:1");
        if (!one) return;
        m_Out << "\nTuning: one replay of the bundled recording through the catalogue with N clones of RightPunch\n"
              << "candidates  candidate-frames/s  vs one candidate per replay\n";
        for (size_t count : PelmoraBench::kCandidateCounts) {
            const Figure* f = Find("Tune/Clones/candidates:" + std::to_string(count));
            if (!f) continue;
            const double rate = Counter(*f, "candidate_frames_per_s");
            m_Out << std::setw(10) << count << std::setw(20) << Fixed(rate, 0) << std::setw(26)
                  << Fixed(rate / Counter(*one, "candidate_frames_per_s"), 1) << "x\n";
        }
    }

    void Allocations() {
        bool header = false;
        for (const auto& entry : m_Figures) {
            const auto found = entry.second.counters.find("allocs_per_frame");
            if (found == entry.second.counters.end() || entry.second.error) continue;
            if (!header) {
                m_Out << "\nHeap allocations per steady-state frame (malloc level, every thread; target 0)\n";
                header = true;
            }
            m_Out << "  " << std::left << std::setw(48) << entry.first << std::right << std::setw(8)
                  << Fixed(found->second, 3) << "  " << Verdict(found->second == 0.0, "0") << "\n";
        }
    }

private:
    const Figure* Find(const std::string& name) const {
        const auto found = m_Figures.find(name);
        return found == m_Figures.end() || found->second.error ? nullptr : &found->second;
    }

    static double Counter(const Figure& figure, const char* name) {
        const auto found = figure.counters.find(name);
        return found == figure.counters.end() ? 0.0 : found->second;
    }

    static std::string Verdict(bool met, const char* target) {
        return std::string(met ? "met (" : "MISSED (") + target + ")";
    }

    const std::map<std::string, Figure>& m_Figures;
    std::ostream& m_Out;
};

bool HasFlag(int argc, char** argv, const char* flag) {
    for (int i = 1; i < argc; ++i) {
        if (strncmp(argv[i], flag, strlen(flag)) == 0) return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    // The report keeps the real standard output; the library's own lines go
    // to /dev/null unless asked for.
    fflush(stdout);
    const int console = dup(STDOUT_FILENO);
    const bool quiet = !getenv("PELMORA_BENCH_LIBRARY_OUTPUT") && !HasFlag(argc, argv, "--benchmark_list_tests");
    if (quiet) {
        const int devnull = open("/dev/null", O_WRONLY);
        if (devnull >= 0) {
            dup2(devnull, STDOUT_FILENO);
            close(devnull);
        }
    }
    __gnu_cxx::stdio_filebuf<char> buffer(console, std::ios::out);
    std::ostream out(&buffer);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    PelmoraBench::RegisterUpdateBenchmarks();
    PelmoraBench::RegisterWorkerBenchmarks();
    PelmoraBench::RegisterLoadBenchmarks();
    PelmoraBench::RegisterReplayBenchmarks();
    PelmoraBench::RegisterTuneBenchmarks();
    PelmoraBench::RegisterAllocationBenchmarks();

    SummaryReporter reporter;
    reporter.SetOutputStream(&out);
    reporter.SetErrorStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&reporter);

    Summary summary(reporter, out);
    summary.Update();
    summary.Worker();
    summary.Load();
    summary.Replay();
    summary.Tune();
    summary.Allocations();
    out.flush();
    benchmark::Shutdown();
    return 0;
}
