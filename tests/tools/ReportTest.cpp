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
    {{{}, "Greate", "@Reach", "0.4"},
     {{1000, 0.1, 0.4}, {2000, 0.3612345, 0.4}, {3000, 0.3, 0.4}},
     "Reach peaked at 0.3612 (2 s), needs &gt; 0.4"},
    {{{}, "Greate", "@Reach", "0.4"}, {{1000, 0.399996, 0.4}}, "Reach peaked at 0.399996 (1 s), needs &gt; 0.4"},
    {{{}, "EGreate", "@Reach", "@Arm"},
     {{1000, 0.5, 0.9}, {2000, 0.7, 0.8}, {3000, 0.72, 0.9}},
     "Reach peaked at 0.7 (2 s), needs &gt;= Arm (0.8)"},
    {{{}, "Less", "@Rise", "-0.3"},
     {{1000, -0.1, -0.3}, {2000, kNaN, -0.3}, {2500, -0.29, -0.3}},
     "Rise bottomed out at -0.29 (2.5 s), needs &lt; -0.3"},
    {{{}, "ELess", "0.2", "@Lift"},
     {{1000, 0.2, 0.1}, {2000, 0.2, 0.15}},
     "Lift peaked at 0.15 (2 s), needs &gt;= 0.2"},
    {{{}, "Equal", "@Count", "3"},
     {{1000, 5, 3}, {2000, 1, 3}, {3000, 0, 3}},
     "Count came closest at 5 (1 s), needs = 3"},
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
        const std::string row = "<tr data-gesture=\"" + name + "\"><td>" + name + "</td><td>0</td><td>segment 0 (" +
                                checks + " failed checks)</td><td>qualification 0: <code>" +
                                kCases[k].qualification.Describe() + "</code> (" + checks + " of " + checks +
                                ")</td><td>" + kCases[k].nearest + "</td><td>-</td></tr>\n";
        EXPECT_NE(page.str().find(row), std::string::npos) << row;
    }
}

// Runs labelled with the gesture's name: one finished, the others missed,
// the last still open when the recording ends; a failure between runs
// counts for none of them.
TEST(ReportTest, WhyNotRowListsTheFirstMissedRunsOfTheGesturesName) {
    Timeline timeline;
    timeline.players.emplace_back();
    PlayerTimeline& player = timeline.players[0];
    player.lanes.emplace_back();
    GestureLane& lane = player.lanes[0];
    lane.name = "Reach";
    lane.qualifications = {{{{}, "Greate", "@Reach", "0.4"}}};
    for (int run = 0; run < 7; ++run) {
        player.AddFrame(run * 1000.0, "Reach");
        if (run == 0) lane.Mark(10.0, EventKind::Finished, 0);
        lane.CountFailure(0, 0, run * 1000.0 + 10, 0.05 * (7 - run), 0.4);
        player.AddFrame(run * 1000.0 + 500, run < 6 ? "" : "Reach");
        lane.CountFailure(0, 0, run * 1000.0 + 510, 0.39, 0.4);
    }
    player.EndRecording();
    std::ostringstream page;
    Report::Write(timeline, page);
    EXPECT_NE(
        page.str().find("<td>6 of 7<br>from 1 s: Reach peaked at 0.3 (1.01 s), needs &gt; 0.4<br>from 2 s: Reach "
                        "peaked at 0.25 (2.01 s), needs &gt; 0.4<br>from 3 s: Reach peaked at 0.2 (3.01 s), needs "
                        "&gt; 0.4<br>from 4 s: Reach peaked at 0.15 (4.01 s), needs &gt; 0.4<br>from 5 s: Reach "
                        "peaked at 0.1 (5.01 s), needs &gt; 0.4<br>and 1 more</td></tr>"),
        std::string::npos)
        << page.str();
}
