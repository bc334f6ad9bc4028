#include "tools/Tune.h"

#include <unistd.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <ostream>
#include <set>
#include <stdexcept>
#include <unordered_map>

#include "tools/Evaluate.h"
#include "tools/Numbers.h"
#include "tools/Report.h"
#include "tools/WorkerPool.h"

namespace PelmoraTool {

namespace {

using json = nlohmann::ordered_json;

// A float constant is searched to one more decimal than it is written
// with, within these.
const int kFewestDecimals = 2;
const int kMostDecimals = 6;

// The document of one pass, where the library can load it.
class CandidateFile {
public:
    explicit CandidateFile(const std::string& text) {
        m_Path = (std::filesystem::temp_directory_path() / "pelmora-tune-XXXXXX").string();
        const int fd = mkstemp(m_Path.data());
        if (fd < 0) throw std::runtime_error("cannot create a temporary file in " + std::filesystem::temp_directory_path().string());
        close(fd);
        std::ofstream out(m_Path, std::ios::binary);
        out << text;
        if (!out.flush()) throw std::runtime_error("cannot write the temporary file " + m_Path);
    }
    ~CandidateFile() { std::remove(m_Path.c_str()); }
    CandidateFile(const CandidateFile&) = delete;
    CandidateFile& operator=(const CandidateFile&) = delete;

    const std::string& Path() const { return m_Path; }

private:
    std::string m_Path;
};

// One candidate's tallies of one row, by subject.
using SubjectTallies = std::map<std::string, Tally>;

// How a gesture's events count in a pass: as candidate `clone`'s (a clone
// index past the candidates: a partner's, which every candidate shares) on `row`.
struct ScoredAs {
    size_t clone = 0;
    size_t row = 0;
};

// One gesture's search: what it tunes, the rows it is scored on (its own, and
// its mirror twin's when that differs), and every candidate replayed so far.
struct GestureRun {
    size_t gesture = 0;
    std::vector<size_t> rows;
    std::vector<size_t> constants;  // indices into the document's constants
    std::vector<ConstantRange> ranges;
    std::vector<std::pair<std::string, size_t>> partners;  // the rows' other gestures, as they are, and their rows
    std::map<std::vector<double>, std::vector<SubjectTallies>> replayed;  // by row, in the order of `rows`
    size_t passes = 0;
};

std::vector<std::string> Texts(const std::vector<double>& values, const std::vector<ConstantRange>& ranges) {
    std::vector<std::string> texts;
    for (size_t c = 0; c < values.size(); ++c) texts.push_back(ConstantSearch::Text(values[c], ranges[c]));
    return texts;
}

int Decimals(const std::string& text) {
    const size_t dot = text.find('.');
    const size_t digits = text.find_first_not_of("0123456789", dot + 1);
    return static_cast<int>((digits == std::string::npos ? text.size() : digits) - dot - 1);
}

ConstantRange DefaultRange(const TunableConstant& constant, const TuneOptions& options) {
    ConstantRange range;
    range.integer = constant.integer;
    range.resolution = constant.integer ? 1.0 : std::pow(10.0, -std::clamp(Decimals(constant.text) + 1, kFewestDecimals, kMostDecimals));
    const double a = constant.value * options.lowFactor, b = constant.value * options.highFactor;
    range.low = std::min(a, b);
    range.high = std::max(a, b);
    if (constant.integer) {
        range.low = std::ceil(range.low);
        range.high = std::floor(range.high);
    }
    return range;
}

// "641:value2=0.2:0.6".
void ApplyRange(const std::string& text, const TunableDocument& document, std::vector<ConstantRange>& ranges) {
    const size_t equals = text.find('=');
    const std::string label = text.substr(0, equals);
    const auto found = std::find_if(document.constants.begin(), document.constants.end(),
                                    [&](const TunableConstant& constant) { return constant.Label() == label; });
    if (found == document.constants.end()) {
        std::string known;
        for (const TunableConstant& constant : document.constants) known += (known.empty() ? "" : ", ") + constant.Label();
        throw std::runtime_error("--range " + text + ": " + label + " is not a constant being tuned (those are " + known + ")");
    }
    const size_t colon = equals == std::string::npos ? equals : text.find(':', equals);
    double low = 0.0, high = 0.0;
    try {
        if (colon == std::string::npos) throw std::runtime_error("");
        low = Numbers::ReadDouble(text.substr(equals + 1, colon - equals - 1), "");
        high = Numbers::ReadDouble(text.substr(colon + 1), "");
    } catch (const std::runtime_error&) {
        throw std::runtime_error("--range " + text + ": expected ROW:ATTRIBUTE=MIN:MAX");
    }
    if (!(low <= found->value && found->value <= high))
        throw std::runtime_error("--range " + text + ": the range must hold the current value " + found->text);
    ConstantRange& range = ranges[static_cast<size_t>(found - document.constants.begin())];
    range.low = low;
    range.high = high;
}

Tally Pooled(const SubjectTallies& tallies, const std::string& leftOut) {
    Tally pooled;
    for (const auto& [subject, tally] : tallies) {
        if (subject != leftOut) pooled.Add(tally);
    }
    return pooled;
}

// The rows pooled: a gesture and its mirror twin are scored as one.
Tally Pooled(const std::vector<SubjectTallies>& rows, const std::string& leftOut) {
    Tally pooled;
    for (const SubjectTallies& tallies : rows) pooled.Add(Pooled(tallies, leftOut));
    return pooled;
}

SearchScore ScoreOf(const Tally& tally) { return {Evaluate::F1(tally), Evaluate::MedianLatency(tally)}; }

// Each clone's tallies of each row: [clone][row].
json ScoreClones(const LabelledSet& set, const LabelledRecording& recording, const std::string& document,
                 const std::unordered_map<std::string, ScoredAs>& scoredAs, size_t clones, const std::vector<size_t>& rows) {
    std::vector<std::string> enabled;
    for (const auto& [name, scored] : scoredAs) enabled.push_back(name);
    std::vector<Detection> partners;
    std::vector<std::vector<Detection>> byClone(clones);
    set.Replay(recording, document, enabled, [&](const GestureEvent& event) {
        const ScoredAs& scored = scoredAs.at(event.gesture);
        (scored.clone < clones ? byClone[scored.clone] : partners).push_back({event.player, event.timeMs, scored.row});
    });
    const std::vector<LabelledSpan> spans = set.Spans(recording);
    json tallies = json::array();
    for (std::vector<Detection>& detections : byClone) {
        detections.insert(detections.end(), partners.begin(), partners.end());
        const std::vector<Tally> scored = Matching::Score(spans, detections, set.options.window, set.rows.size());
        json byRow = json::array();
        for (size_t row : rows) byRow.push_back(Evaluate::TallyJson(scored[row]));
        tallies.push_back(byRow);
    }
    return tallies;
}

// Replays every recording once with one clone per candidate.
void ReplayPass(const LabelledSet& set, const TunableDocument& document, const std::vector<std::string>& texts,
                const std::vector<std::vector<double>>& candidates, GestureRun& run) {
    std::vector<std::vector<std::string>> cloneTexts;
    std::unordered_map<std::string, ScoredAs> scoredAs;
    for (size_t k = 0; k < candidates.size(); ++k) {
        cloneTexts.push_back(Texts(candidates[k], run.ranges));
        scoredAs[document.CloneName(run.gesture, k)] = {k, run.rows.front()};
        if (!document.twins.empty()) scoredAs[document.TwinCloneName(run.gesture, k)] = {k, run.rows.back()};
    }
    for (const auto& [partner, row] : run.partners) scoredAs[partner] = {candidates.size(), row};
    const CandidateFile file(document.WithClones(texts, run.gesture, cloneTexts));
    std::vector<std::string> paths;
    for (const LabelledRecording& recording : set.recordings) paths.push_back(recording.path);
    const std::string unit = "recordings: " + document.gestures[run.gesture] + ", pass " + std::to_string(++run.passes) +
                             ", " + std::to_string(candidates.size()) + " candidates";
    const std::vector<json> results = WorkerPool::Run(paths, set.options.jobs, unit.c_str(), [&](size_t i) {
        return ScoreClones(set, set.recordings[i], file.Path(), scoredAs, candidates.size(), run.rows);
    });
    for (size_t k = 0; k < candidates.size(); ++k) {
        std::vector<SubjectTallies>& rows = run.replayed[candidates[k]];
        rows.resize(run.rows.size());
        for (size_t i = 0; i < results.size(); ++i) {
            for (size_t r = 0; r < run.rows.size(); ++r) rows[r][set.recordings[i].subject].Add(Evaluate::TallyFromJson(results[i][k][r]));
        }
    }
}

std::vector<std::string> Subjects(const LabelledSet& set) {
    std::set<std::string> subjects;
    for (const LabelledRecording& recording : set.recordings) subjects.insert(recording.subject);
    return {subjects.begin(), subjects.end()};
}

// The search on all subjects (unless only LOSO is asked for), then one per left-out subject.
std::vector<ConstantSearch> StartSearches(const GestureRun& run, const std::vector<double>& start,
                                          const std::vector<std::string>& subjects, LosoMode loso) {
    std::vector<ConstantSearch> searches;
    if (loso != LosoMode::Only) searches.emplace_back(start, run.ranges, "");
    if (loso == LosoMode::No || subjects.size() < 2) return searches;
    for (const std::string& subject : subjects) searches.emplace_back(start, run.ranges, subject);
    return searches;
}

// Runs the searches in step: each pass replays what any of them proposes that was not replayed yet.
void Search(const LabelledSet& set, const TunableDocument& document, const std::vector<std::string>& texts, unsigned passes,
            GestureRun& run, std::vector<ConstantSearch>& searches) {
    for (unsigned pass = 0; pass < passes; ++pass) {
        std::vector<std::vector<double>> fresh;
        for (const ConstantSearch& search : searches) {
            if (search.Done()) continue;
            for (const std::vector<double>& proposal : search.Proposals()) {
                if (!run.replayed.count(proposal) && std::find(fresh.begin(), fresh.end(), proposal) == fresh.end())
                    fresh.push_back(proposal);
            }
        }
        if (fresh.empty() && std::all_of(searches.begin(), searches.end(), [](const ConstantSearch& s) { return s.Done(); })) return;
        if (!fresh.empty()) ReplayPass(set, document, texts, fresh, run);
        for (ConstantSearch& search : searches) {
            if (search.Done()) continue;
            std::vector<SearchScore> scores;
            for (const std::vector<double>& proposal : search.Proposals())
                scores.push_back(ScoreOf(Pooled(run.replayed.at(proposal), search.LeftOut())));
            search.Take(scores);
        }
    }
}

// One scored row's figures: what evaluate prints for it.
struct RowFigures {
    std::string target;
    Tally before, tuned, loso;
    std::map<std::string, Tally> losoBySubject;
};

struct GestureResult {
    std::string gesture, twin;  // twin: empty without a mirror
    std::vector<std::string> labels, before, tuned;
    std::vector<std::vector<std::string>> folds;  // by constant
    std::vector<RowFigures> rows;
    bool hasLoso = false;
    size_t passes = 0, candidates = 0;
};

GestureResult Fit(const LabelledSet& set, const TunableDocument& document, const std::vector<ConstantRange>& ranges,
                  const TuneOptions& options, size_t gesture, std::vector<std::string>& texts) {
    GestureRun run;
    run.gesture = gesture;
    std::vector<std::string> scored{document.gestures[gesture]};
    if (!document.twins.empty()) scored.push_back(document.twins[gesture]);
    for (const std::string& name : scored) {
        if (std::find(run.rows.begin(), run.rows.end(), set.rowOf.at(name)) == run.rows.end()) run.rows.push_back(set.rowOf.at(name));
    }
    run.constants = document.ConstantsOf(gesture);
    std::vector<double> start;
    for (size_t c : run.constants) {
        run.ranges.push_back(ranges[c]);
        start.push_back(document.constants[c].value);
    }
    for (size_t row : run.rows) {
        if (row >= set.map.targets.size()) continue;
        for (const std::string& name : set.map.targetGestures[row]) {
            if (std::find(scored.begin(), scored.end(), name) == scored.end()) run.partners.push_back({name, row});
        }
    }
    std::vector<ConstantSearch> searches = StartSearches(run, start, Subjects(set), options.loso);
    Search(set, document, texts, options.passes, run, searches);

    GestureResult result{document.gestures[gesture], scored.size() > 1 ? scored.back() : "", {}, {}, {}, {}, {}, false, run.passes, run.replayed.size()};
    const ConstantSearch* full = options.loso == LosoMode::Only ? nullptr : &searches.front();
    const std::vector<double>& tuned = full ? full->Current() : start;
    for (size_t r = 0; r < run.rows.size(); ++r)
        result.rows.push_back({set.rows[run.rows[r]], Pooled(run.replayed.at(start)[r], ""), Pooled(run.replayed.at(tuned)[r], ""), {}, {}});
    result.folds.resize(run.constants.size());
    for (size_t c = 0; c < run.constants.size(); ++c) {
        result.labels.push_back(document.constants[run.constants[c]].Label());
        result.before.push_back(document.constants[run.constants[c]].text);
        result.tuned.push_back(full ? ConstantSearch::Text(tuned[c], run.ranges[c]) : result.before.back());
        texts[run.constants[c]] = result.tuned.back();
    }
    for (const ConstantSearch& fold : searches) {
        if (fold.LeftOut().empty()) continue;
        result.hasLoso = true;
        for (size_t r = 0; r < run.rows.size(); ++r) {
            const SubjectTallies& tallies = run.replayed.at(fold.Current())[r];
            const auto found = tallies.find(fold.LeftOut());
            const Tally& tally = found == tallies.end() ? Tally() : found->second;
            result.rows[r].loso.Add(tally);
            result.rows[r].losoBySubject[fold.LeftOut()] = tally;
        }
        for (size_t c = 0; c < run.constants.size(); ++c)
            result.folds[c].push_back(ConstantSearch::Text(fold.Current()[c], run.ranges[c]));
    }
    return result;
}

std::string FoldRange(const std::vector<std::string>& texts) {
    if (texts.empty()) return "-";
    const auto [low, high] = std::minmax_element(texts.begin(), texts.end(), [](const std::string& a, const std::string& b) {
        return std::strtod(a.c_str(), nullptr) < std::strtod(b.c_str(), nullptr);
    });
    return *low == *high ? *low : *low + ".." + *high;
}

void PrintText(const std::vector<GestureResult>& results, LosoMode loso, std::ostream& out) {
    for (const GestureResult& r : results) {
        std::string targets;
        for (const RowFigures& row : r.rows) targets += (targets.empty() ? "" : ", ") + row.target;
        out << r.gesture << (r.twin.empty() ? "" : " with its mirror " + r.twin) << " (scored as " << targets << "): " << r.before.size()
            << " constants, " << r.passes << " passes, " << r.candidates << " candidates\n";
        char line[160];
        snprintf(line, sizeof line, "  %-16s %10s %10s  %s\n", "constant", "before", "tuned", "LOSO folds");
        out << line;
        for (size_t k = 0; k < r.before.size(); ++k) {
            snprintf(line, sizeof line, "  %-16s %10s %10s  %s\n", r.labels[k].c_str(), r.before[k].c_str(),
                     r.tuned[k].c_str(), FoldRange(r.folds[k]).c_str());
            out << line;
        }
        std::vector<GestureScore> rows;
        for (const RowFigures& row : r.rows) {
            rows.push_back({row.target + " before", row.before});
            rows.push_back({row.target + " tuned", row.tuned});
            if (r.hasLoso) rows.push_back({row.target + " LOSO", row.loso});
        }
        Evaluate::PrintTable(rows, out);
        if (!r.hasLoso && loso == LosoMode::Yes) out << "no LOSO figures: they need recordings of two subjects or more (a --manifest names them)\n";
        out << '\n';
    }
}

// One row's figures, as evaluate's JSON gives them.
void AddRowJson(const RowFigures& row, bool hasLoso, json& entry) {
    entry["target"] = row.target;
    entry["before"] = Evaluate::RowJson({row.target, row.before});
    entry["tuned"] = Evaluate::RowJson({row.target, row.tuned});
    entry["loso"] = hasLoso ? Evaluate::RowJson({row.target, row.loso}) : json();
}

json ResultsJson(const std::vector<GestureResult>& results) {
    json list = json::array();
    for (const GestureResult& r : results) {
        json constants = json::array();
        for (size_t k = 0; k < r.before.size(); ++k)
            constants.push_back({{"constant", r.labels[k]}, {"before", r.before[k]}, {"tuned", r.tuned[k]}, {"folds", r.folds[k]}});
        json entry = {{"gesture", r.gesture}, {"target", r.rows.front().target}, {"passes", r.passes}, {"candidates", r.candidates}, {"constants", constants}};
        AddRowJson(r.rows.front(), r.hasLoso, entry);
        if (!r.twin.empty()) {
            entry["mirror"] = {{"gesture", r.twin}};
            AddRowJson(r.rows.back(), r.hasLoso, entry["mirror"]);
        }
        list.push_back(entry);
    }
    return list;
}

// What evaluate prints, for the pooled left-out figures: each subject's rows are its own fold's.
void PrintLoso(const std::vector<GestureResult>& results, size_t recordings, const EvaluateOptions& options, std::ostream& out) {
    std::vector<GestureScore> total;
    std::map<std::string, std::vector<GestureScore>> bySubject;
    for (const GestureResult& r : results) {
        for (const RowFigures& row : r.rows) {
            total.push_back({row.target, row.loso});
            for (const auto& [subject, tally] : row.losoBySubject) bySubject[subject].push_back({row.target, tally});
        }
    }
    Evaluate::Print(total, bySubject, recordings, options, out);
}

void WriteDocument(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
    if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace

void Tune::ParseBounds(const std::string& text, TuneOptions& options) {
    const size_t colon = text.find(':');
    double low = -1.0, high = -1.0;
    try {
        if (colon != std::string::npos) {
            low = Numbers::ReadDouble(text.substr(0, colon), "--bounds");
            high = Numbers::ReadDouble(text.substr(colon + 1), "--bounds");
        }
    } catch (const std::runtime_error&) {
        // Reported below, in the option's own words.
    }
    if (!(low > 0.0 && low <= 1.0 && high >= 1.0))
        throw std::runtime_error("--bounds " + text + ": expected LOW:HIGH factors, 0 < LOW <= 1 <= HIGH");
    options.lowFactor = low;
    options.highFactor = high;
}

std::vector<ConstantRange> Tune::Ranges(const TunableDocument& document, const TuneOptions& options) {
    std::vector<ConstantRange> ranges;
    for (const TunableConstant& constant : document.constants) ranges.push_back(DefaultRange(constant, options));
    for (const std::string& range : options.ranges) ApplyRange(range, document, ranges);
    return ranges;
}

int Tune::Run(const TuneOptions& options, std::ostream& out) {
    const LabelledSet set = LabelledSet::Make(options.data);
    const TunableDocument document = TunableDocument::Load(options.data.config, options.gestures, options.values, options.mirror);
    for (const std::string& gesture : options.gestures) {
        if (set.rowOf.at(gesture) >= set.map.targets.size())
            throw std::runtime_error(options.data.map + " maps no label to gesture \"" + gesture + "\": there is nothing to fit it to");
    }
    const std::vector<ConstantRange> ranges = Ranges(document, options);
    if (options.loso == LosoMode::Only && Subjects(set).size() < 2)
        throw std::runtime_error("--loso only needs recordings of two subjects or more (a --manifest names them)");
    if (!options.output.empty()) Report::CheckWritable(options.output);
    std::vector<std::string> texts;
    for (const TunableConstant& constant : document.constants) texts.push_back(constant.text);
    std::vector<GestureResult> results;
    for (size_t g = 0; g < options.gestures.size(); ++g) results.push_back(Fit(set, document, ranges, options, g, texts));
    if (options.loso == LosoMode::Only) {
        PrintLoso(results, set.recordings.size(), options.data, out);
        return 0;
    }
    if (!options.output.empty()) WriteDocument(options.output, document.Written(texts));
    if (options.data.json) {
        out << json{{"recordings", set.recordings.size()},
                    {"window_ms", {{"before", options.data.window.beforeMs}, {"after", options.data.window.afterMs}}},
                    {"tuned", ResultsJson(results)},
                    {"output", options.output.empty() ? json() : json(options.output)}}
                   .dump(1)
            << '\n';
        return 0;
    }
    out << set.recordings.size() << " recordings, " << Subjects(set).size() << " subjects\n\n";
    PrintText(results, options.loso, out);
    if (!options.output.empty()) out << "wrote " << options.output << '\n';
    return 0;
}

}  // namespace PelmoraTool
