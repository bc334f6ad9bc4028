#include "tools/Evaluate.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <ostream>
#include <stdexcept>

#include "tools/Numbers.h"
#include "tools/WorkerPool.h"

namespace PelmoraTool {

namespace {

using json = nlohmann::ordered_json;

std::vector<Tally> ScoreRecording(const LabelledSet& set, const LabelledRecording& recording) {
    const std::vector<LabelledSpan> spans = set.Spans(recording);
    std::vector<Detection> detections;
    set.Replay(recording, set.options.config, {}, [&](const GestureEvent& event) {
        detections.push_back({event.player, event.timeMs, set.rowOf.at(event.gesture)});
    });
    return Matching::Score(spans, detections, set.options.window, set.rows.size());
}

std::vector<std::vector<Tally>> ScoreAll(const LabelledSet& set) {
    std::vector<std::string> paths;
    for (const LabelledRecording& recording : set.recordings) paths.push_back(recording.path);
    const std::vector<json> results = WorkerPool::Run(paths, set.options.jobs, "recordings", [&](size_t i) {
        json rows = json::array();
        for (const Tally& tally : ScoreRecording(set, set.recordings[i])) rows.push_back(Evaluate::TallyJson(tally));
        return rows;
    });
    std::vector<std::vector<Tally>> tallies;
    for (const json& rows : results) {
        tallies.emplace_back();
        for (const json& row : rows) tallies.back().push_back(Evaluate::TallyFromJson(row));
    }
    return tallies;
}

std::vector<GestureScore> Rows(const LabelledSet& set) {
    std::vector<GestureScore> rows;
    for (const std::string& name : set.rows) rows.push_back({name, Tally()});
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

}  // namespace

json Evaluate::RowJson(const GestureScore& row) {
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

namespace {

json RowsJson(const std::vector<GestureScore>& rows) {
    json list = json::array();
    for (const GestureScore& row : rows) {
        if (Shown(row)) list.push_back(Evaluate::RowJson(row));
    }
    return list;
}

}  // namespace

json Evaluate::TallyJson(const Tally& t) { return {t.performances, t.hits, t.falseDetections, t.latenciesMs}; }

Tally Evaluate::TallyFromJson(const json& row) {
    return {row[0].get<size_t>(), row[1].get<size_t>(), row[2].get<size_t>(), row[3].get<std::vector<double>>()};
}

double Evaluate::F1(const Tally& tally) { return FiguresOf(tally).f1; }

double Evaluate::MedianLatency(const Tally& tally) {
    return tally.latenciesMs.empty() ? 0.0 : Percentile(tally.latenciesMs, 0.5);
}

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
    const LabelledSet set = LabelledSet::Make(options);
    const std::vector<std::vector<Tally>> results = ScoreAll(set);
    std::vector<GestureScore> total = Rows(set);
    std::map<std::string, std::vector<GestureScore>> bySubject;
    for (size_t i = 0; i < results.size(); ++i) {
        AddTallies(total, results[i]);
        auto subject = bySubject.emplace(set.recordings[i].subject, Rows(set)).first;
        AddTallies(subject->second, results[i]);
    }
    Print(total, bySubject, set.recordings.size(), options, out);
    return 0;
}

void Evaluate::Print(const std::vector<GestureScore>& total, const std::map<std::string, std::vector<GestureScore>>& bySubject,
                     size_t recordings, const EvaluateOptions& options, std::ostream& out) {
    size_t counted = 0;
    const double macro = MacroF1(total, counted);
    if (options.json) {
        json subjects = json::object();
        for (const auto& [subject, rows] : bySubject) subjects[subject] = RowsJson(rows);
        out << json{{"recordings", recordings},
                    {"window_ms", {{"before", options.window.beforeMs}, {"after", options.window.afterMs}}},
                    {"gestures", RowsJson(total)},
                    {"macro_f1", counted ? json(macro) : json()},
                    {"subjects", subjects}}
                   .dump(1)
            << '\n';
        return;
    }
    out << recordings << " recordings, " << bySubject.size() << " subjects; window " << Numbers::Format(options.window.beforeMs)
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
}

}  // namespace PelmoraTool
