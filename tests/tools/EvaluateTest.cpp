// The scoring of `pelmora evaluate`: the matching rule at its edges, the
// three label forms, and the one-line errors for bad maps, manifests and
// windows.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include "tools/Evaluate.h"

using namespace PelmoraTool;

namespace {

struct MatchCase {
    const char* what;
    std::vector<LabelledSpan> spans;
    std::vector<Detection> events;
    size_t hits, falseDetections;
    std::vector<double> latencies;
};

TEST(EvaluateTest, MatchingRuleAtItsEdges) {
    const MatchWindow window{100.0, 200.0};
    const LabelledSpan run{0, 1000.0, 1500.0, false, 0};
    const LabelledSpan point{0, 3000.0, 3000.0, false, 0};
    const LabelledSpan ignored{0, 5000.0, 5000.0, true, 0};
    const std::vector<MatchCase> cases = {
        {"on the window's first instant", {run}, {{0, 900.0, 0}}, 1, 0, {-600.0}},
        {"just before the window", {run}, {{0, 899.9, 0}}, 0, 1, {}},
        {"on the window's last instant", {run}, {{0, 1700.0, 0}}, 1, 0, {200.0}},
        {"just after the window", {run}, {{0, 1700.1, 0}}, 0, 1, {}},
        {"two events for one performance", {run}, {{0, 1200.0, 0}, {0, 1100.0, 0}}, 1, 1, {-400.0}},
        {"a performance with no event", {run, point}, {{0, 3050.0, 0}}, 1, 0, {50.0}},
        {"another player's event", {run}, {{1, 1200.0, 0}}, 0, 1, {}},
        {"another target's event", {run}, {{0, 1200.0, 1}}, 0, 0, {}},
        {"inside a don't-care label", {ignored}, {{0, 5100.0, 0}}, 0, 0, {}},
        {"a repeated move: its first event finds it, the others inside count neither way",
         {{0, 1000.0, 1500.0, false, 0, true}}, {{0, 1100.0, 0}, {0, 1400.0, 0}, {0, 1800.0, 0}}, 1, 1, {-400.0}},
        {"overlapping windows: first to close takes the first event",
         {point, {0, 2950.0, 2950.0, false, 0}}, {{0, 2990.0, 0}, {0, 3100.0, 0}}, 2, 0, {40.0, 100.0}},
    };
    for (const MatchCase& c : cases) {
        const std::vector<Tally> tallies = Matching::Score(c.spans, c.events, window, 2);
        const size_t performances = c.spans.size() - (c.spans[0].dontCare ? 1 : 0);
        EXPECT_EQ(tallies[0].performances, performances) << c.what;
        EXPECT_EQ(tallies[0].hits, c.hits) << c.what;
        EXPECT_EQ(tallies[0].falseDetections, c.falseDetections) << c.what;
        EXPECT_EQ(tallies[0].latenciesMs, c.latencies) << c.what;
        EXPECT_EQ(tallies[1].falseDetections, c.what == std::string("another target's event") ? 1u : 0u) << c.what;
    }
}

TEST(EvaluateTest, LabelFormsGivePerformances) {
    std::istringstream csv(
        "time_ms,player,Head.x,Head.y,Head.z,label\n"
        "0,0,0,0,0,a\n100,0,0,0,0,a\n350,0,0,0,0,a\n700,0,0,0,0,a\n733,0,0,0,0,b\n750,2,0,0,0,a\n766,0,0,0,0,\n800,0,0,0,0,a\n");
    const auto performances = [&](LabelForm form) {
        csv.clear();
        csv.seekg(0);
        RecordingReader reader(csv, "");
        return Labels::Performances(reader, form, "w");
    };
    const auto summary = [](const std::vector<Performance>& list) {
        std::string text;
        for (const Performance& p : list)
            text += p.label + std::to_string(p.player) + ":" + std::to_string(int(p.startMs)) + "-" + std::to_string(int(p.endMs)) + " ";
        return text;
    };
    // A gap over 300 ms or another label starts a new run; players keep their own runs.
    EXPECT_EQ(summary(performances(LabelForm::Runs)), "a0:0-350 a0:700-700 b0:733-733 a2:750-750 a0:800-800 ");
    EXPECT_EQ(summary(performances(LabelForm::Points)),
              "a0:0-0 a0:100-100 a0:350-350 a0:700-700 b0:733-733 a2:750-750 a0:800-800 ");
    EXPECT_EQ(summary(performances(LabelForm::File)), "w0:0-800 ");
}

std::string Written(const std::string& name, const std::string& text) {
    const std::string path = testing::TempDir() + name;
    std::ofstream(path) << text;
    return path;
}

std::string ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}

TEST(EvaluateTest, BadInputGivesOneLineNamingTheFileAndLine) {
    const std::vector<std::string> gestures = {"Wave", "Kick"};
    const bool map = true, manifest = false;
    const std::vector<std::tuple<bool, std::string, std::string>> cases = {
        {map, "# labels\nwave Wave\nkick Kick|Punch\n", "line 3: unknown gesture \"Punch\""},
        {map, "wave Wave extra\n", "line 1: expected LABEL TARGET [repeated] (a gesture, A|B, none or -)"},
        {map, "wave Wave repeated\nidle none repeated\n", "line 2: only a gesture's label can be repeated"},
        {map, "wave Wave\nwave -\n", "line 2: label \"wave\" is mapped twice"},
        {manifest, "file\tlabel\n", "line 1: the header must name file, subject and label"},
        {manifest, "file\tsubject\tlabel\na.csv\ts1\n", "line 2: expected 3 fields, found 2"},
        {manifest, "subject\tfile\tlabel\n\ns1\ta.csv\t\r\ns2\ta.csv\tkick\n", "line 4: file \"a.csv\" is listed twice"},
    };
    for (const auto& [isMap, text, error] : cases) {
        const std::string path = Written(isMap ? "bad.map" : "bad.tsv", text);
        EXPECT_EQ(ErrorOf([&, isMap = isMap] { isMap ? (void)LabelMap::ReadFile(path, gestures) : (void)Manifest::ReadFile(path, true); }),
                  path + ": " + error);
    }
    for (const char* window : {"-5", "1:x", "nan", ""})
        EXPECT_EQ(ErrorOf([&] { Evaluate::ParseWindow(window); }),
                  "--window " + std::string(window) + ": expected MS or BEFORE:AFTER, milliseconds >= 0");
    EXPECT_EQ(Evaluate::ParseWindow("300:800").afterMs, 800.0);
}

// What the built tool prints on standard output (or, with "2>&1 >/dev/null", on standard error).
std::string Evaluated(const std::string& arguments) {
    FILE* pipe = popen((std::string(PELMORA_TOOL_BINARY) + " evaluate " + arguments).c_str(), "r");
    std::string output;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
    pclose(pipe);
    return output;
}

TEST(EvaluateTest, CommandScoresRecordingsInWorkerProcesses) {
    const std::string data = PELMORA_TOOL_DATA;
    const std::string gestures = data + "/gestures.xml ", wave = data + "/wave.csv ";
    EXPECT_EQ(Evaluated(gestures + wave + wave + "--jobs 2 --window 0 --map " + data + "/wave.map 2>/dev/null"),
              "2 recordings, 1 subjects; window 0 ms before, 0 ms after\n"
              "gesture                          perf events   true  false misses precision recall     F1  lat.med  lat.p90\n"
              "RaiseHand                           2      2      2      0      0     1.000  1.000  1.000        0        0\n"
              "macro F1 over 1 gestures with performances: 1.000\n");
    const std::string partial = Written("partial.map", "raise RaiseHand\n");
    EXPECT_EQ(Evaluated(gestures + wave + "--map " + partial + " 2>&1 >/dev/null"),
              "pelmora: " + data + "/wave.csv: frame 8: label \"step\" is not in " + partial + "\n");
    const std::string manifest = Written("other.tsv", "file\tsubject\nother.csv\ts1\n");
    EXPECT_EQ(Evaluated(gestures + wave + "--map " + partial + " --manifest " + manifest + " 2>&1 >/dev/null"),
              "pelmora: " + data + "/wave.csv: not listed in " + manifest + "\n");
}

}  // namespace
