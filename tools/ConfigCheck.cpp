#include "tools/ConfigCheck.h"

#include <algorithm>
#include <climits>
#include <optional>
#include <ostream>
#include <vector>

#include "pelmora.h"
#include "tools/CompileLog.h"
#include "tools/ConfigDocument.h"
#include "tools/LibrarySession.h"
#include "tools/LinePattern.h"
#include "tools/StdoutCapture.h"

namespace PelmoraTool {

namespace {

struct LibraryRun {
    bool loaded = false;
    bool compiled = false;
    std::string loadError;
    std::vector<std::string> lines;
};

// Runs the library on the file with its messages captured.
LibraryRun RunLibrary(const std::string& path) {
    LibraryRun run;
    StdoutCapture capture;
    {
        const int32_t head = PELMORA_JOINT_HEAD;
        LibrarySession session(1, {head}, false);
        run.loaded = session.Load(path);
        run.compiled = run.loaded && session.Compile();
        run.loadError = GetLastConfigError();
    }
    run.lines = capture.Lines();
    return run;
}

const LinePattern kLoadError("* (row #, column #)");

void Print(std::ostream& out, const std::string& path, const Problem& problem) {
    out << path << ':';
    if (problem.place) out << problem.place->row << ':' << problem.place->column << ':';
    out << ' ' << problem.text << '\n';
}

int Coordinate(size_t number) { return static_cast<int>(std::min<size_t>(number, INT_MAX)); }

// "Error reading end tag. (row 12, column 5)" becomes "path:12:5: Error reading end tag.".
Problem LoadProblem(const std::string& error) {
    const auto m = kLoadError.Match(error);
    if (!m) return {std::nullopt, error.empty() ? "the file does not load" : error};
    return {XmlPlace{Coordinate(m->numbers[0]), Coordinate(m->numbers[1])}, m->any};
}

std::string Counted(size_t count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace

int ConfigCheck::Run(const std::string& path, std::ostream& out) {
    const LibraryRun run = RunLibrary(path);
    if (!run.loaded) {
        const std::optional<ConfigNote> unreadable = ConfigDocument::ByteProblem(path);
        Print(out, path, unreadable ? Problem{unreadable->place, unreadable->text} : LoadProblem(run.loadError));
        out << path << ": does not load\n";
        return 1;
    }
    const ConfigDocument document = ConfigDocument::Load(path);
    std::vector<Problem> problems = CompileLog(document).Locate(run.lines);
    for (const ConfigNote& note : document.ignored) problems.push_back({note.place, note.text});
    for (const Problem& problem : problems) Print(out, path, problem);
    if (!run.compiled) {
        out << path << ": does not compile\n";
        return 1;
    }
    if (!problems.empty()) {
        out << path << ": compiles, but not whole\n";
        return 1;
    }
    out << path << ": compiles: " << Counted(document.gestures.size(), "gesture") << ", "
        << Counted(document.processings.size(), "processing") << '\n';
    return 0;
}

}  // namespace PelmoraTool
