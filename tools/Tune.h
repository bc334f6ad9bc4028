// Tune - `pelmora tune`: searches the numeric constants of the named
// gestures' qualifications for the values that score best on labelled
// recordings (tools/ConstantSearch.h), reports leave-one-subject-out
// figures next to the in-sample ones, and writes the tuned document with
// only those numbers changed. Each pass of a search replays every recording
// once through a document holding one clone of the gesture per candidate,
// so the values and functions are computed once per frame for all of them;
// the searches of the left-out subjects share those passes.
// With a mirror, each candidate is also written into the gesture's twin,
// and the two are scored together: their rows' tallies pooled.
// Not thread-safe: Run forks, so call it from a single-threaded process.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/ConstantSearch.h"
#include "tools/LabelledSet.h"
#include "tools/TunableDocument.h"

namespace PelmoraTool {

enum class LosoMode { Yes, No, Only };

struct TuneOptions {
    EvaluateOptions data;
    std::vector<std::string> gestures;
    std::vector<std::string> values;           // declared values to tune too
    double lowFactor = 0.5, highFactor = 2.0;  // --bounds
    std::vector<std::string> ranges;           // --range ROW:ATTRIBUTE=MIN:MAX
    unsigned passes = 8;
    LosoMode loso = LosoMode::Yes;
    std::string output;  // empty: write nothing
    bool mirror = false;  // tie each gesture to its mirror twin (TunableDocument)
};

class Tune {
public:
    // Throws std::runtime_error naming the file, line or option at fault.
    static int Run(const TuneOptions& options, std::ostream& out);

    // "LOW:HIGH" factors, 0 < LOW <= 1 <= HIGH.
    static void ParseBounds(const std::string& text, TuneOptions& options);

    // Each constant's range: LOW..HIGH times its value (a zero stays put),
    // or what a --range gives for it.
    static std::vector<ConstantRange> Ranges(const TunableDocument& document, const TuneOptions& options);
};

}  // namespace PelmoraTool
