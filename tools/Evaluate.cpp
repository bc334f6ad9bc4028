#include "tools/Evaluate.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <ostream>
#include <stdexcept>
#include <thread>

#include "tools/ConfigDocument.h"
#include "tools/Numbers.h"
#include "tools/ProgressBar.h"
#include "tools/Replay.h"

namespace PelmoraTool {

namespace {

using json = nlohmann::ordered_json;

// Fewer recordings than this finish before a bar would tell anything.
const size_t kManyRecordings = 10;

struct Job {
    std::string path;
    std::string subject;
    std::string fileLabel;
};

struct Plan {
    const EvaluateOptions& options;
    LabelMap map;
    std::vector<std::string> rows;           // map targets, then the other gestures
    std::map<std::string, size_t> rowOf;     // gesture name to row
    std::vector<Job> jobs;
};

std::vector<std::string> Recordings(const std::vector<std::string>& data) {
    std::vector<std::string> paths;
    for (const std::string& item : data) {
        if (!std::filesystem::is_directory(item)) {
            paths.push_back(item);
            continue;
        }
        std::vector<std::string> inside;
        for (const auto& entry : std::filesystem::directory_iterator(item)) {
            if (entry.path().extension() == ".csv") inside.push_back(entry.path().string());
        }
        std::sort(inside.begin(), inside.end());
        paths.insert(paths.end(), inside.begin(), inside.end());
    }
    return paths;
}

void AssignRows(Plan& plan, const std::vector<std::string>& gestures) {
    plan.rows = plan.map.targets;
    for (size_t t = 0; t < plan.map.targets.size(); ++t) {
        for (const std::string& name : plan.map.targetGestures[t]) {
            if (!plan.rowOf.emplace(name, t).second)
                throw std::runtime_error(plan.options.map + ": gesture \"" + name + "\" stands for two different labels' targets");
        }
    }
    for (const std::string& name : gestures) {
        if (plan.rowOf.count(name)) continue;
        plan.rowOf[name] = plan.rows.size();
        plan.rows.push_back(name);
    }
}

Plan MakePlan(const EvaluateOptions& options) {
    std::vector<std::string> gestures;
    for (const GestureEntry& gesture : ConfigDocument::Load(options.config).gestures) gestures.push_back(gesture.name);
    Plan plan{options, LabelMap::ReadFile(options.map, gestures), {}, {}, {}};
    AssignRows(plan, gestures);
    const bool fileLabels = options.form == LabelForm::File;
    if (fileLabels && options.manifest.empty()) throw std::runtime_error("whole-file labels need a --manifest");
    const Manifest manifest = options.manifest.empty() ? Manifest() : Manifest::ReadFile(options.manifest, fileLabels);
    for (const std::string& path : Recordings(options.data)) {
        if (options.manifest.empty()) {
            plan.jobs.push_back({path, "-", ""});
            continue;
        }
        const ManifestEntry* entry = manifest.Find(path);
        if (!entry) throw std::runtime_error(path + ": not listed in " + options.manifest);
        plan.jobs.push_back({path, entry->subject, entry->label});
    }
    if (plan.jobs.empty()) throw std::runtime_error("no recordings to evaluate");
    return plan;
}

std::vector<LabelledSpan> Spans(const Plan& plan, const Job& job) {
    RecordingReader reader(job.path);
    std::vector<LabelledSpan> spans;
    for (const Performance& performance : Labels::Performances(reader, plan.options.form, job.fileLabel)) {
        const LabelMeaning* meaning = plan.map.Find(performance.label);
        if (!meaning)
            throw std::runtime_error(job.path + ": frame " + std::to_string(performance.frame) + ": label \"" +
                                     performance.label + "\" is not in " + plan.options.map);
        if (meaning->kind == LabelMeaning::Negative) continue;
        spans.push_back({performance.player, performance.startMs, performance.endMs,
                         meaning->kind == LabelMeaning::DontCare, meaning->target});
    }
    return spans;
}

std::vector<Tally> ScoreRecording(const Plan& plan, const Job& job) {
    const std::vector<LabelledSpan> spans = Spans(plan, job);
    std::vector<Detection> detections;
    Replay replay(job.path, ReplayOptions(), [&](const GestureEvent& event) {
        if (event.kind == EventKind::Finished) detections.push_back({event.player, event.timeMs, plan.rowOf.at(event.gesture)});
    });
    try {
        replay.Run(plan.options.config);
    } catch (const std::runtime_error& error) {
        const std::string what = error.what();
        throw std::runtime_error(what.rfind(job.path, 0) == 0 ? what : job.path + ": " + what);
    }
    return Matching::Score(spans, detections, plan.options.window, plan.rows.size());
}

// A worker's message for one recording: one line of JSON.
std::string Encode(size_t index, const std::vector<Tally>& tallies) {
    json rows = json::array();
    for (const Tally& t : tallies) rows.push_back({t.performances, t.hits, t.falseDetections, t.latenciesMs});
    return json{{"i", index}, {"t", rows}}.dump() + "\n";
}

std::vector<Tally> Decode(const json& message) {
    std::vector<Tally> tallies;
    for (const json& row : message.at("t")) {
        tallies.push_back({row[0].get<size_t>(), row[1].get<size_t>(), row[2].get<size_t>(), row[3].get<std::vector<double>>()});
    }
    return tallies;
}

void WriteAll(int fd, const std::string& text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) return;
        done += static_cast<size_t>(n);
    }
}

[[noreturn]] void Work(const Plan& plan, size_t first, size_t step, int fd) {
    for (size_t i = first; i < plan.jobs.size(); i += step) {
        try {
            WriteAll(fd, Encode(i, ScoreRecording(plan, plan.jobs[i])));
        } catch (const std::exception& error) {
            WriteAll(fd, json{{"i", i}, {"e", error.what()}}.dump() + "\n");
        }
    }
    _exit(0);
}

struct Worker {
    pid_t pid;
    int fd;
    std::string pending;
};

std::vector<Worker> StartWorkers(const Plan& plan) {
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const size_t count = std::min<size_t>(plan.options.jobs ? plan.options.jobs : cores, plan.jobs.size());
    std::vector<Worker> workers;
    for (size_t w = 0; w < count; ++w) {
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("cannot start a worker: no pipe");
        fflush(nullptr);
        const pid_t pid = fork();
        if (pid < 0) throw std::runtime_error("cannot start a worker process");
        if (pid == 0) {
            close(ends[0]);
            Work(plan, w, count, ends[1]);
        }
        close(ends[1]);
        workers.push_back({pid, ends[0], ""});
    }
    return workers;
}

// Reads what the workers send until each has closed its pipe.
void Collect(std::vector<Worker>& workers, std::vector<json>& messages) {
    ProgressBar progress(messages.size(), "recordings", kManyRecordings);
    size_t done = 0, open = workers.size();
    std::vector<pollfd> polls;
    for (const Worker& worker : workers) polls.push_back({worker.fd, POLLIN, 0});
    char buffer[1 << 16];
    while (open > 0) {
        if (poll(polls.data(), polls.size(), -1) < 0) continue;
        for (size_t w = 0; w < workers.size(); ++w) {
            if (polls[w].fd < 0 || !(polls[w].revents & (POLLIN | POLLHUP))) continue;
            const ssize_t n = read(polls[w].fd, buffer, sizeof buffer);
            if (n <= 0) {
                close(polls[w].fd);
                polls[w].fd = -1;
                --open;
                continue;
            }
            std::string& pending = workers[w].pending;
            pending.append(buffer, static_cast<size_t>(n));
            for (size_t end; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
                json message = json::parse(pending.substr(0, end));
                const size_t index = message.at("i").get<size_t>();
                messages.at(index) = std::move(message);
                progress.Update(++done);
            }
        }
    }
    for (const Worker& worker : workers) waitpid(worker.pid, nullptr, 0);
}

std::vector<std::vector<Tally>> ScoreAll(const Plan& plan) {
    std::vector<Worker> workers = StartWorkers(plan);
    std::vector<json> messages(plan.jobs.size());
    Collect(workers, messages);
    std::vector<std::vector<Tally>> results;
    for (size_t i = 0; i < messages.size(); ++i) {
        if (messages[i].is_null()) throw std::runtime_error(plan.jobs[i].path + ": the replay stopped without a result");
        if (messages[i].contains("e")) throw std::runtime_error(messages[i]["e"].get<std::string>());
        results.push_back(Decode(messages[i]));
    }
    return results;
}

std::vector<GestureScore> Rows(const Plan& plan) {
    std::vector<GestureScore> rows;
    for (const std::string& name : plan.rows) rows.push_back({name, Tally()});
    return rows;
}

void AddTallies(std::vector<GestureScore>& rows, const std::vector<Tally>& tallies) {
    for (size_t r = 0; r < rows.size(); ++r) rows[r].tally.Add(tallies[r]);
}

// Nearest rank: a latency that occurred.
double Percentile(std::vector<double> values, double fraction) {
    std::sort(values.begin(), values.end());
    const size_t rank = static_cast<size_t>(std::ceil(fraction * static_cast<double>(values.size())));
    return values[std::max<size_t>(rank, 1) - 1];
}

struct Figures {
    bool hasPrecision, hasRecall;
    double precision, recall, f1;
};

Figures FiguresOf(const Tally& t) {
    Figures f{t.Events() > 0, t.performances > 0, 0.0, 0.0, 0.0};
    if (f.hasPrecision) f.precision = static_cast<double>(t.hits) / static_cast<double>(t.Events());
    if (f.hasRecall) f.recall = static_cast<double>(t.hits) / static_cast<double>(t.performances);
    if (f.precision + f.recall > 0.0) f.f1 = 2.0 * f.precision * f.recall / (f.precision + f.recall);
    return f;
}

std::string Cell(bool known, double value, const char* format) {
    if (!known) return "-";
    char text[32];
    snprintf(text, sizeof text, format, value);
    return text;
}

bool Shown(const GestureScore& row) { return row.tally.performances > 0 || row.tally.Events() > 0; }

// Mean F1 of the rows that have performances.
double MacroF1(const std::vector<GestureScore>& rows, size_t& counted) {
    double sum = 0.0;
    counted = 0;
    for (const GestureScore& row : rows) {
        if (!row.tally.performances) continue;
        sum += FiguresOf(row.tally).f1;
        ++counted;
    }
    return counted ? sum / static_cast<double>(counted) : 0.0;
}

json RowJson(const GestureScore& row) {
    const Tally& t = row.tally;
    const Figures f = FiguresOf(t);
    const bool hits = !t.latenciesMs.empty();
    return {{"gesture", row.name},
            {"performances", t.performances},
            {"events", t.Events()},
            {"true", t.hits},
            {"false", t.falseDetections},
            {"misses", t.Misses()},
            {"precision", f.hasPrecision ? json(f.precision) : json()},
            {"recall", f.hasRecall ? json(f.recall) : json()},
            {"f1", f.hasRecall ? json(f.f1) : json()},
            {"latency_ms", {{"median", hits ? json(Percentile(t.latenciesMs, 0.5)) : json()},
                            {"p90", hits ? json(Percentile(t.latenciesMs, 0.9)) : json()}}}};
}

json RowsJson(const std::vector<GestureScore>& rows) {
    json list = json::array();
    for (const GestureScore& row : rows) {
        if (Shown(row)) list.push_back(RowJson(row));
    }
    return list;
}

}  // namespace

MatchWindow Evaluate::ParseWindow(const std::string& text) {
    const size_t colon = text.find(':');
    MatchWindow window{-1.0, -1.0};
    try {
        window.beforeMs = Numbers::ReadDouble(text.substr(0, colon), "--window");
        window.afterMs = colon == std::string::npos ? window.beforeMs : Numbers::ReadDouble(text.substr(colon + 1), "--window");
    } catch (const std::runtime_error&) {
        // Reported below, in the option's own words.
    }
    if (!(window.beforeMs >= 0.0 && window.afterMs >= 0.0))
        throw std::runtime_error("--window " + text + ": expected MS or BEFORE:AFTER, milliseconds >= 0");
    return window;
}

void Evaluate::PrintTable(const std::vector<GestureScore>& rows, std::ostream& out) {
    char line[256];
    snprintf(line, sizeof line, "%-30s %6s %6s %6s %6s %6s %9s %6s %6s %8s %8s\n", "gesture", "perf", "events", "true",
             "false", "misses", "precision", "recall", "F1", "lat.med", "lat.p90");
    out << line;
    for (const GestureScore& row : rows) {
        if (!Shown(row)) continue;
        const Tally& t = row.tally;
        const Figures f = FiguresOf(t);
        const bool hits = !t.latenciesMs.empty();
        snprintf(line, sizeof line, "%-30s %6zu %6zu %6zu %6zu %6zu %9s %6s %6s %8s %8s\n", row.name.c_str(),
                 t.performances, t.Events(), t.hits, t.falseDetections, t.Misses(),
                 Cell(f.hasPrecision, f.precision, "%.3f").c_str(), Cell(f.hasRecall, f.recall, "%.3f").c_str(),
                 Cell(f.hasRecall, f.f1, "%.3f").c_str(), Cell(hits, hits ? Percentile(t.latenciesMs, 0.5) : 0, "%.0f").c_str(),
                 Cell(hits, hits ? Percentile(t.latenciesMs, 0.9) : 0, "%.0f").c_str());
        out << line;
    }
}

int Evaluate::Run(const EvaluateOptions& options, std::ostream& out) {
    const Plan plan = MakePlan(options);
    const std::vector<std::vector<Tally>> results = ScoreAll(plan);
    std::vector<GestureScore> total = Rows(plan);
    std::map<std::string, std::vector<GestureScore>> bySubject;
    for (size_t i = 0; i < results.size(); ++i) {
        AddTallies(total, results[i]);
        auto subject = bySubject.emplace(plan.jobs[i].subject, Rows(plan)).first;
        AddTallies(subject->second, results[i]);
    }
    size_t counted = 0;
    const double macro = MacroF1(total, counted);
    if (options.json) {
        json subjects = json::object();
        for (const auto& [subject, rows] : bySubject) subjects[subject] = RowsJson(rows);
        out << json{{"recordings", plan.jobs.size()},
                    {"window_ms", {{"before", options.window.beforeMs}, {"after", options.window.afterMs}}},
                    {"gestures", RowsJson(total)},
                    {"macro_f1", counted ? json(macro) : json()},
                    {"subjects", subjects}}
                   .dump(1)
            << '\n';
        return 0;
    }
    out << plan.jobs.size() << " recordings, " << bySubject.size() << " subjects; window " << Numbers::Format(options.window.beforeMs)
        << " ms before, " << Numbers::Format(options.window.afterMs) << " ms after\n";
    PrintTable(total, out);
    char line[96];
    snprintf(line, sizeof line, "macro F1 over %zu gestures with performances: %.3f\n", counted, macro);
    out << line;
    for (const auto& [subject, rows] : bySubject) {
        if (bySubject.size() == 1) break;
        out << "\nsubject " << subject << '\n';
        PrintTable(rows, out);
    }
    return 0;
}

}  // namespace PelmoraTool
