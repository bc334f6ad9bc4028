#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tools/EventPrinter.h"
#include "tools/RecordingWriter.h"
#include "tools/Replay.h"

using namespace PelmoraTool;

namespace {

// gestures.xml with wave.csv (100 ms a frame): the right hand goes up in
// frames 3-5 and down in 6; the left foot is out in frames 8-15, too long, so
// LeftStep restarts at frame 14 before it finishes at 16.
const std::string kData = PELMORA_TOOL_DATA;
const std::string kConfig = kData + "/gestures.xml";

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

const std::string kWave = kData + "/wave.csv";

std::vector<std::string> Replayed(const std::string& recording, ReplayOptions options, bool jsonl, bool allEvents,
                                  Timeline* timeline = nullptr) {
    std::ostringstream out;
    EventPrinter printer(out, jsonl, allEvents);
    Replay replay(recording, options, [&](const GestureEvent& event) { printer.Print(event); });
    const Timeline kept = replay.Run(kConfig);
    if (timeline) *timeline = kept;
    return Lines(out.str());
}

ReplayOptions InMode(bool worker) {
    ReplayOptions options;
    options.worker = worker;
    return options;
}

const std::vector<std::string> kAllEvents = {
    "300 ms frame 3 player 0: RaiseHand advanced segment 0 [raise]",
    "600 ms frame 6 player 0: RaiseHand finished segment 1 [raise]",
    "800 ms frame 8 player 0: LeftStep advanced segment 0 [step]",
    "1400 ms frame 14 player 0: LeftStep reset segment 1 [step]",
    "1500 ms frame 15 player 0: LeftStep advanced segment 0 [step]",
    "1600 ms frame 16 player 0: LeftStep finished segment 1 [step]",
};

}  // namespace

class ReplayModes : public ::testing::TestWithParam<bool> {};

TEST_P(ReplayModes, PrintsEveryEventAsText) {
    EXPECT_EQ(Replayed(kWave, InMode(GetParam()), false, true), kAllEvents);
}

TEST_P(ReplayModes, PrintsFinishesAsJsonLinesByDefault) {
    EXPECT_EQ(Replayed(kWave, InMode(GetParam()), true, false),
              (std::vector<std::string>{
                  R"({"time_ms":600.0,"frame":6,"player":0,"gesture":"RaiseHand","event":"finished","segment":1,"label":"raise"})",
                  R"({"time_ms":1600.0,"frame":16,"player":0,"gesture":"LeftStep","event":"finished","segment":1,"label":"step"})"}));
}

// Player numbers 9 and 4 become the library's players 1 and 0; events name
// the recording's numbers, and each player keeps its own progress.
TEST_P(ReplayModes, KeepsPlayersApart) {
    const std::string path = ::testing::TempDir() + "pelmora_two_players.csv";
    std::ofstream file(path, std::ios::binary);
    RecordingReader wave(kWave);
    RecordingWriter two(file);
    two.Begin(wave.Joints(), true);
    for (RecordedFrame frame; wave.Next(frame);) {
        RecordedFrame still = frame;
        still.player = 9;
        still.label.clear();
        still.joints[1].y = 1.0f;  // the hand stays down
        two.Write(still);
        frame.player = 4;
        two.Write(frame);
    }
    file.close();
    EXPECT_EQ(Replayed(path, InMode(GetParam()), false, false),
              (std::vector<std::string>{"600 ms frame 13 player 4: RaiseHand finished segment 1 [raise]",
                                        "1600 ms frame 32 player 9: LeftStep finished segment 1",
                                        "1600 ms frame 33 player 4: LeftStep finished segment 1 [step]"}));
}

INSTANTIATE_TEST_SUITE_P(ImmediateAndWorker, ReplayModes, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "Worker" : "Immediate"; });

TEST(ReplayTest, EnablesOnlyTheChosenGestures) {
    ReplayOptions options;
    options.gestures = {"LeftStep"};
    EXPECT_EQ(Replayed(kWave, options, false, false),
              (std::vector<std::string>{"1600 ms frame 16 player 0: LeftStep finished segment 1 [step]"}));
    options.gestures = {"Wave"};
    EXPECT_THROW(Replayed(kWave, options, false, false), std::runtime_error);
}

// The reset of frame 14 and the waits before it are told apart by the
// segment time of LeftStep itself, not by the one RaiseHand left in the pool.
TEST(ReplayTest, TimelineCountsWhichQualificationHeldEachGestureBack) {
    ReplayOptions options;
    options.keepTimeline = true;
    options.plots = {"HandAboveHead", "@P_LeftFoot.x"};
    Timeline timeline;
    Replayed(kWave, options, false, false, &timeline);
    ASSERT_EQ(timeline.players.size(), 1u);
    const PlayerTimeline& player = timeline.players[0];
    ASSERT_EQ(player.lanes.size(), 2u);
    const GestureLane& step = player.lanes[0];
    EXPECT_EQ(step.name, "LeftStep");
    EXPECT_EQ(step.segmentCount, 2u);
    EXPECT_EQ(step.failures.deciding, (std::map<std::pair<uint32_t, int>, uint64_t>{{{0, 0}, 10}, {{1, 0}, 1}, {{1, 1}, 5}}));
    ASSERT_EQ(step.markers.size(), 2u);
    EXPECT_EQ(step.markers[0].kind, EventKind::Reset);
    EXPECT_EQ(step.markers[0].timeMs, 1400.0);
    const WhyNot why = step.Explain();
    EXPECT_EQ(why.segment, 0u);
    EXPECT_EQ(why.waitingChecks, 10u);
    EXPECT_EQ(why.description, "Less(@P_LeftFoot.x, -0.3)");
    EXPECT_EQ(player.lanes[1].progress.Points()[4].value, 1.0);  // frame 3 advanced RaiseHand
    ASSERT_EQ(player.plots.size(), 2u);
    ASSERT_EQ(player.plots[0].points.Points().size(), 19u);  // every frame but the first, which warms up
    EXPECT_FLOAT_EQ(player.plots[0].points.Points()[2].value, 0.3f);
    EXPECT_EQ(player.plots[1].points.Points()[7].value, -0.5);
}

TEST(ReplayTest, RefusesPlotsThatAreNotNumbers) {
    ReplayOptions options;
    options.keepTimeline = true;
    for (const char* plot : {"Nowhere", "P_Head"}) {
        options.plots = {plot};
        EXPECT_THROW(Replayed(kWave, options, false, false), std::runtime_error) << plot;
    }
}
