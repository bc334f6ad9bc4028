#include "tools/ConfigCheck.h"

#include <optional>
#include <ostream>
#include <regex>
#include <vector>

#include "pelmora.h"
#include "tools/ConfigDocument.h"
#include "tools/LibrarySession.h"
#include "tools/StdoutCapture.h"

namespace PelmoraTool {

namespace {

struct Problem {
    std::optional<XmlPlace> place;
    std::string text;
};

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

template <class T>
const T* At(const std::vector<T>& items, size_t index) {
    return index < items.size() ? &items[index] : nullptr;
}

// The library's compile messages.
const std::regex kProcessingBegin("Begin To Compiler Processing Index:(\\d+)");
const std::regex kProcessingSucceeded("Compiler Processing Index:\\d+ Succeed");
const std::regex kProcessingFailed("Processing Index:\\d+ Compiler Failed!");
const std::regex kFunctionFailed("Function Compiler Failed! Index:(\\d+)");
const std::regex kGestureBegin("Gesture:.* Begin to Compiler");
const std::regex kGestureSucceeded("Gesture:.* Compiler Succeed!");
const std::regex kGestureFailed("Gesture Compiler failed! Index == (\\d+)");
const std::regex kSegmentFailed("PlayerIndex:\\d+ Gesture:.* Segment (\\d+) Compiler Failed!");
const std::regex kQualificationFailed("PlayerIndex: \\d+ Qualification Index (\\d+) Compiler Failed!");
const std::regex kValueTypeRefused(".* type is undefine value type!!");
const std::regex kLoadError("(.*) \\(row (\\d+), column (\\d+)\\)");

std::optional<XmlPlace> PlaceOf(const XmlPlace* place) { return place ? std::optional<XmlPlace>(*place) : std::nullopt; }

// Reads the library's compile messages in order. Detail lines ("X is a
// undefine value!", "Qualification param 0 value not found") come before the
// line that says which function or qualification failed, so they wait until
// that line places them.
class LogLocator {
public:
    explicit LogLocator(const ConfigDocument& document) : m_Document(document) {}

    std::vector<Problem> Locate(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) Read(line);
        return m_Problems;
    }

private:
    void Read(const std::string& line) {
        std::smatch m;
        if (IsProgress(line)) return;
        if (std::regex_match(line, m, kProcessingBegin)) {
            m_Processing = std::stoul(m[1]);
            return;
        }
        if (std::regex_match(line, kGestureBegin)) {
            m_Gesture = m_GesturesBegun++;
            return;
        }
        if (std::regex_match(line, m, kFunctionFailed)) {
            Add(line);
            PlacePending(FunctionPlace(std::stoul(m[1])));
            return;
        }
        if (std::regex_match(line, kProcessingFailed)) {
            const ProcessingEntry* processing = At(m_Document.processings, m_Processing);
            m_Problems.push_back({PlaceOf(processing ? &processing->place : nullptr), line});
            return;
        }
        if (std::regex_match(line, m, kQualificationFailed)) {
            Add(line);
            m_Qualification = std::stoul(m[1]);
            return;
        }
        if (std::regex_match(line, m, kSegmentFailed)) {
            PlaceSegmentFailure(line, std::stoul(m[1]));
            return;
        }
        if (std::regex_match(line, m, kGestureFailed)) {
            const GestureEntry* gesture = At(m_Document.gestures, std::stoul(m[1]));
            m_Problems.push_back({PlaceOf(gesture ? &gesture->place : nullptr), line});
            return;
        }
        if (std::regex_match(line, kValueTypeRefused)) {
            m_Problems.push_back({PlaceOf(At(m_Document.refusedValueTypes, m_RefusedTypes++)), line});
            return;
        }
        if (line == "Quaternion is not supported in this version.") {
            m_Problems.push_back({PlaceOf(At(m_Document.quaternions, m_Quaternions++)), line});
            return;
        }
        Add(line);
    }

    // Lines that report progress, not problems.
    static bool IsProgress(const std::string& line) {
        return std::regex_match(line, kProcessingSucceeded) || std::regex_match(line, kGestureSucceeded) ||
               line == "All GestureConfig Compiler Succeed!!";
    }

    void Add(const std::string& line) {
        m_Pending.push_back(m_Problems.size());
        m_Problems.push_back({std::nullopt, line});
    }

    void PlacePending(std::optional<XmlPlace> place) {
        for (size_t index : m_Pending) m_Problems[index].place = place;
        m_Pending.clear();
    }

    std::optional<XmlPlace> FunctionPlace(size_t function) const {
        const ProcessingEntry* processing = At(m_Document.processings, m_Processing);
        return PlaceOf(processing ? At(processing->functions, function) : nullptr);
    }

    void PlaceSegmentFailure(const std::string& line, size_t segmentIndex) {
        const GestureEntry* gesture = At(m_Document.gestures, m_Gesture);
        const SegmentEntry* segment = gesture ? At(gesture->segments, segmentIndex) : nullptr;
        const QualificationEntry* qualification = segment ? At(segment->qualifications, m_Qualification) : nullptr;
        PlacePending(PlaceOf(qualification ? &qualification->place : nullptr));
        m_Problems.push_back({PlaceOf(segment ? &segment->place : nullptr), line});
    }

    const ConfigDocument& m_Document;
    std::vector<Problem> m_Problems;
    std::vector<size_t> m_Pending;
    size_t m_Processing = 0;
    size_t m_Gesture = 0;
    size_t m_GesturesBegun = 0;
    size_t m_Qualification = 0;
    size_t m_RefusedTypes = 0;
    size_t m_Quaternions = 0;
};

void Print(std::ostream& out, const std::string& path, const Problem& problem) {
    out << path << ':';
    if (problem.place) out << problem.place->row << ':' << problem.place->column << ':';
    out << ' ' << problem.text << '\n';
}

// "Error reading end tag. (row 12, column 5)" becomes "path:12:5: Error reading end tag.".
Problem LoadProblem(const std::string& error) {
    std::smatch m;
    if (!std::regex_match(error, m, kLoadError))
        return {std::nullopt, error.empty() ? "the file does not load" : error};
    return {XmlPlace{std::stoi(m[2]), std::stoi(m[3])}, m[1]};
}

std::string Counted(size_t count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace

int ConfigCheck::Run(const std::string& path, std::ostream& out) {
    const LibraryRun run = RunLibrary(path);
    if (!run.loaded) {
        Print(out, path, LoadProblem(run.loadError));
        out << path << ": does not load\n";
        return 1;
    }
    const ConfigDocument document = ConfigDocument::Load(path);
    std::vector<Problem> problems = LogLocator(document).Locate(run.lines);
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
