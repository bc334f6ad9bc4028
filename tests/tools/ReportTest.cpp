// The report's "why not" row, exactly as printed: how near the qualification
// that held a gesture back came to holding, for each kind of comparison.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "tools/Report.h"

using namespace PelmoraTool;

namespace {

struct Check {
    double timeMs, left, right;
};

struct ApproachCase {
    QualificationEntry qualification;
    std::vector<Check> failures;
    std::string nearest;  // the row's last cell
};

const double kNaN = std::nan("");

// Ties keep the earlier check; a NaN compares nothing; a literal on the
// left turns the comparison round; a failed NoEqual compared equal numbers.
const std::vector<ApproachCase> kCases = {
    {{{}, "Greate", "@Reach", "0.4"}, {{1000, 0.1, 0.4}, {2000, 0.3612345, 0.4}, {3000, 0.3, 0.4}},
     "Reach peaked at 0.3612 (2 s), needs &gt; 0.4"},
    {{{}, "EGreate", "@Reach", "@Arm"}, {{1000, 0.5, 0.9}, {2000, 0.7, 0.8}, {3000, 0.72, 0.9}},
     "Reach peaked at 0.7 (2 s), needs &gt;= Arm (0.8)"},
    {{{}, "Less", "@Rise", "-0.3"}, {{1000, -0.1, -0.3}, {2000, kNaN, -0.3}, {2500, -0.29, -0.3}},
     "Rise bottomed out at -0.29 (2.5 s), needs &lt; -0.3"},
    {{{}, "ELess", "0.2", "@Lift"}, {{1000, 0.2, 0.1}, {2000, 0.2, 0.15}},
     "Lift peaked at 0.15 (2 s), needs &gt;= 0.2"},
    {{{}, "Equal", "@Count", "3"}, {{1000, 5, 3}, {2000, 1, 3}, {3000, 0, 3}}, "Count came closest at 5 (1 s), needs = 3"},
    {{{}, "NoEqual", "@Count", "3"}, {{1000, 3, 3}}, "-"},
    {{{}, "Less", "@Rise", "0"}, {{1000, kNaN, 0}}, "-"},
};

}  // namespace

TEST(ReportTest, WhyNotRowTellsHowNearTheDecidingQualificationCame) {
    Timeline timeline;
    timeline.players.emplace_back();
    for (size_t k = 0; k < kCases.size(); ++k) {
        GestureLane lane;
        lane.name = "G" + std::to_string(k);
        lane.qualifications = {{kCases[k].qualification}};
        for (const Check& check : kCases[k].failures) lane.CountFailure(0, 0, check.timeMs, check.left, check.right);
        timeline.players[0].lanes.push_back(lane);
    }
    std::ostringstream page;
    Report::Write(timeline, page);
    for (size_t k = 0; k < kCases.size(); ++k) {
        const std::string name = "G" + std::to_string(k), checks = std::to_string(kCases[k].failures.size());
        const std::string row = "<tr data-gesture=\"" + name + "\"><td>" + name + "</td><td>0</td><td>segment 0 (" + checks +
                                " failed checks)</td><td>qualification 0: <code>" + kCases[k].qualification.Describe() +
                                "</code> (" + checks + " of " + checks + ")</td><td>" + kCases[k].nearest + "</td></tr>\n";
        EXPECT_NE(page.str().find(row), std::string::npos) << row;
    }
}
