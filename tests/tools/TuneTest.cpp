// `pelmora tune`: the ranges it searches, a search that stays inside them,
// and the written document, which changes only the tuned numbers and which
// `pelmora evaluate` scores exactly as tune reported. The error paths are
// rows of the hostile-input corpus (tests/data/hostile/cases.tsv).
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "tools/Tune.h"

using namespace PelmoraTool;

namespace {

const std::string kData = PELMORA_TOOL_DATA;

std::string Read(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string Written(const std::string& name, const std::string& text) {
    const std::string path = testing::TempDir() + name;
    std::ofstream(path) << text;
    return path;
}

nlohmann::json Printed(const std::string& arguments) {
    FILE* pipe = popen((std::string(PELMORA_TOOL_BINARY) + " " + arguments + " --format json 2>/dev/null").c_str(), "r");
    std::string output;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
    pclose(pipe);
    return nlohmann::json::parse(output);
}

TEST(TuneTest, RangesFollowTheBoundsAndKeepIntegers) {
    TuneOptions options;
    Tune::ParseBounds("0.5:2", options);
    options.ranges = {"28:value2=-0.5:0.5"};
    const TunableDocument document = TunableDocument::Load(kData + "/gestures.xml", {"LeftStep", "RaiseHand"});
    const std::vector<ConstantRange> ranges = Tune::Ranges(document, options);
    struct Expected {
        const char* label;
        double low, high, resolution;
    };
    const std::vector<Expected> expected = {
        {"16:value2", -0.6, -0.15, 0.01}, {"19:value2", 250, 1000, 1}, {"20:value2", -0.2, -0.05, 0.01},
        {"25:value2", 0.1, 0.4, 0.01},    {"28:value2", -0.5, 0.5, 0.01},  // a zero moves only within a --range
    };
    ASSERT_EQ(ranges.size(), expected.size());
    for (size_t c = 0; c < expected.size(); ++c) {
        EXPECT_EQ(document.constants[c].Label(), expected[c].label);
        EXPECT_DOUBLE_EQ(ranges[c].low, expected[c].low) << expected[c].label;
        EXPECT_DOUBLE_EQ(ranges[c].high, expected[c].high) << expected[c].label;
        EXPECT_DOUBLE_EQ(ranges[c].resolution, expected[c].resolution) << expected[c].label;
        EXPECT_EQ(ranges[c].integer, expected[c].label == std::string("19:value2"));
    }
}

TEST(TuneTest, SearchClimbsToTheBestValueInsideItsRange) {
    // F1 peaks at 700 (inside) for the integer and at 0.9 (beyond 0.5) for the float.
    const std::vector<ConstantRange> ranges = {{100, 1000, 1, true}, {0.1, 0.5, 0.01, false}};
    ConstantSearch search({500, 0.2}, ranges, "");
    for (int pass = 0; pass < 40 && !search.Done(); ++pass) {
        std::vector<SearchScore> scores;
        for (const std::vector<double>& proposal : search.Proposals()) {
            for (size_t c = 0; c < proposal.size(); ++c) {
                EXPECT_GE(proposal[c], ranges[c].low);
                EXPECT_LE(proposal[c], ranges[c].high);
            }
            scores.push_back({1.0 / (1.0 + std::abs(proposal[0] - 700) / 100 + std::abs(proposal[1] - 0.9)), 0.0});
        }
        search.Take(scores);
    }
    EXPECT_TRUE(search.Done());
    EXPECT_EQ(search.Current(), (std::vector<double>{700, 0.5}));
    EXPECT_EQ(ConstantSearch::Text(0.5, ranges[1]) + " " + ConstantSearch::Text(-0.004, ranges[1]), "0.5 0.0");
}

TEST(TuneTest, WrittenDocumentScoresAsReportedAndKeepsItsText) {
    // RaiseHand's 0.9, written in its qualification or in a declared value,
    // is out of reach of a hand 0.3 above the head.
    struct Variant {
        std::vector<std::pair<std::string, std::string>> edits;
        std::string number, values;  // where the number is written; --values
    };
    const std::vector<Variant> variants = {
        {{{"value2=\"0.2\"", "value2=\"0.9\""}}, "\"0.9\"", ""},
        {{{"value2=\"0.2\"", "value2=\"@Limit\""}, {"</IdentfyValues>", "  <Value type=\"float\" name=\"Limit\">0.9</Value>\n  </IdentfyValues>"}},
         ">0.9<", " --values Limit"},
    };
    const std::string wave = Read(kData + "/wave.csv");
    const std::string data = Written("a.csv", wave) + " " + Written("b.csv", wave) + " --map " + kData + "/wave.map --manifest " +
                             Written("ab.tsv", "file\tsubject\na.csv\tA\nb.csv\tB\n");
    for (const Variant& variant : variants) {
        std::string original = Read(kData + "/gestures.xml");
        for (const auto& [from, to] : variant.edits) original.replace(original.find(from), from.size(), to);
        const std::string config = Written("high.xml", original), output = testing::TempDir() + "tuned.xml";
        const nlohmann::json tuned =
            Printed("tune " + config + " " + data + " --gestures RaiseHand --bounds 0.1:2 --output " + output + variant.values);
        const nlohmann::json& result = tuned.at("tuned").at(0);
        EXPECT_EQ(result.at("before").at("true"), 0) << variant.number;
        EXPECT_EQ(result.at("tuned").at("f1"), 1.0) << variant.number;
        EXPECT_EQ(result.at("loso").at("f1"), 1.0) << variant.number;
        EXPECT_EQ(Printed("evaluate " + output + " " + data).at("gestures").at(0), result.at("tuned")) << variant.number;
        const nlohmann::json loso = Printed("tune " + config + " " + data + " --gestures RaiseHand --bounds 0.1:2 --loso only" + variant.values);
        EXPECT_EQ(loso.at("gestures").at(0), result.at("loso")) << variant.number;
        EXPECT_EQ(loso.at("subjects").size(), 2u) << variant.number;
        std::string value;
        for (const nlohmann::json& constant : result.at("constants")) {
            if (constant.at("before") == "0.9") value = constant.at("tuned");
        }
        original.replace(original.find(variant.number) + 1, 3, value);
        EXPECT_EQ(Read(output), original) << variant.number;
    }
}

TEST(TuneTest, MirrorWritesTheTwinWithItsSignsAndEvaluateReproducesThePair) {
    // RightStep mirrors LeftStep with its x signs flipped, both feet down in either order.
    std::string mirrored = Read(kData + "/gestures.xml");
    const size_t raise = mirrored.find("  <Gesture name=\"RaiseHand\">");
    std::string twin = mirrored.substr(mirrored.find("  <Gesture name=\"LeftStep\">"), raise - mirrored.find("  <Gesture name=\"LeftStep\">"));
    const std::vector<std::pair<std::string, std::string>> edits = {{"LeftStep", "RightStep"}, {"LeftFoot", "RightFoot"}, {"\"-0.", "\"0."}};
    for (const auto& [from, to] : edits) {
        for (size_t at = twin.find(from); at != std::string::npos; at = twin.find(from, at)) twin.replace(at, from.size(), to);
    }
    mirrored.insert(raise, twin);
    const TunableDocument document = TunableDocument::Load(Written("mirror.xml", mirrored), {"LeftStep"}, {}, true);
    const std::string written = document.Written({"-0.25", "400", "-0.15"});
    EXPECT_NE(written.find("@P_LeftFoot.x\" value2=\"-0.25\""), std::string::npos);
    EXPECT_NE(written.find("@P_RightFoot.x\" value2=\"0.25\""), std::string::npos);
    EXPECT_NE(written.find("@P_RightFoot.x\" value2=\"0.15\""), std::string::npos);
    EXPECT_NE(written.find("value2=\"400\""), written.rfind("value2=\"400\""));

    // A twin that is an exact copy: tuning one writes both, and evaluate scores both as tune reported.
    std::string pair = Read(kData + "/gestures.xml");
    pair.replace(pair.find("\"0.2\""), 5, "\"0.9\"");
    const size_t begin = pair.find("<Gesture name=\"RaiseHand\""), end = pair.find("</AppConfig>");
    const std::string element = pair.substr(begin, end - begin);
    pair.replace(begin, element.size(), "<Gesture name=\"RaiseRightHand\"" + element.substr(25) + "  <Gesture name=\"RaiseLeftHand\"" + element.substr(25));
    const std::string wave = Read(kData + "/wave.csv"), output = testing::TempDir() + "pair.xml";
    const std::string data = Written("a.csv", wave) + " " + Written("b.csv", wave) + " --map " + Written("pair.map", "raise RaiseRightHand\nstep -\n") +
                             " --manifest " + Written("ab.tsv", "file\tsubject\na.csv\tA\nb.csv\tB\n");
    const nlohmann::json result = Printed("tune " + Written("pair.xml", pair) + " " + data + " --gestures RaiseRightHand --mirror --bounds 0.1:2 --output " + output).at("tuned").at(0);
    EXPECT_EQ(result.at("mirror").at("gesture"), "RaiseLeftHand");
    EXPECT_EQ(result.at("tuned").at("f1"), 1.0);
    EXPECT_EQ(Printed("evaluate " + output + " " + data).at("gestures").at(0), result.at("tuned"));
    const std::string tuned = result.at("constants").at(0).at("tuned");
    std::string expected = pair;
    for (size_t at = expected.find("\"0.9\""); at != std::string::npos; at = expected.find("\"0.9\"", at)) expected.replace(at + 1, 3, tuned);
    EXPECT_EQ(Read(output), expected);
}

}  // namespace
