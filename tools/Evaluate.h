// Evaluate - `pelmora evaluate`: replays labelled recordings through a
// configuration and scores each gesture's finished events against the
// labelled performances (tools/Matching.h gives the rule), per gesture and
// per subject, as text or JSON. Recordings are replayed by one worker process
// per core: the library is one instance per process.
// Not thread-safe: Run forks, so call it from a single-threaded process.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/Labels.h"
#include "tools/Matching.h"

namespace PelmoraTool {

struct EvaluateOptions {
    std::string config;
    std::vector<std::string> data;  // recordings, or folders of *.csv recordings
    std::string map;                // label map (tools/Labels.h)
    std::string manifest;           // optional; needed for whole-file labels
    LabelForm form = LabelForm::Runs;
    MatchWindow window;
    unsigned jobs = 0;              // 0: one per core
    bool json = false;
};

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

    // The printed table of one group of rows.
    static void PrintTable(const std::vector<GestureScore>& rows, std::ostream& out);
};

}  // namespace PelmoraTool
