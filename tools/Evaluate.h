// Evaluate - `pelmora evaluate`: replays labelled recordings through a
// configuration and scores each gesture's finished events against the
// labelled performances (tools/Matching.h gives the rule), per gesture and
// per subject, as text or JSON, and the figures and tables `pelmora tune`
// prints too. Recordings are replayed by one worker process per core.
// Not thread-safe: Run forks, so call it from a single-threaded process.
#pragma once

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "tools/LabelledSet.h"

namespace PelmoraTool {

// One row of the result: a target (gesture, or alternatives "A|B") and its tally.
struct GestureScore {
    std::string name;
    Tally tally;
};

class Evaluate {
public:
    // Throws std::runtime_error naming the file (and line) at fault.
    static int Run(const EvaluateOptions& options, std::ostream& out);

    // "500" (both sides) or "300:800" (before:after), in milliseconds.
    static MatchWindow ParseWindow(const std::string& text);

    // The figures of all recordings and of each subject, as text or JSON
    // (options.json), headed by the recordings' count and the window.
    static void Print(const std::vector<GestureScore>& total,
                      const std::map<std::string, std::vector<GestureScore>>& bySubject, size_t recordings,
                      const EvaluateOptions& options, std::ostream& out);

    // The printed table of one group of rows, and one row as JSON.
    static void PrintTable(const std::vector<GestureScore>& rows, std::ostream& out);
    static nlohmann::ordered_json RowJson(const GestureScore& row);

    // A tally as a worker sends it.
    static nlohmann::ordered_json TallyJson(const Tally& tally);
    static Tally TallyFromJson(const nlohmann::ordered_json& row);

    // F1 (0 without performances or hits) and the median latency (0 without hits).
    static double F1(const Tally& tally);
    static double MedianLatency(const Tally& tally);
};

}  // namespace PelmoraTool
