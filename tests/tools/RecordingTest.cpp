#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "tools/Recording.h"
#include "tools/Timeline.h"

using namespace PelmoraTool;

namespace {

const char* const kNative =
    "time_ms,player,Head.x,Head.y,Head.z,RightFoot.x,RightFoot.y,RightFoot.z,label\n"
    "0,7,0.1,1.6,2.5,-0.2,0,2.25,\n"
    "33.333,3,0.1,1.6,2.5,-0.2,0,2.25,\"kick, \"\"high\"\"\"\n"
    "66.667,7,1e-07,-1.5,3,0,0,1,kick\n";

std::string Written(const Recording& recording) {
    std::ostringstream out;
    recording.Write(out);
    return out.str();
}

std::string ReadError(const std::string& text) {
    std::istringstream in(text);
    try {
        Recording::Read(in);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(RecordingTest, ReadsAndWritesTheNativeFormatUnchanged) {
    std::istringstream in(kNative);
    const Recording recording = Recording::Read(in);
    EXPECT_EQ(recording.joints, (std::vector<int32_t>{PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_FOOT}));
    ASSERT_EQ(recording.frames.size(), 3u);
    EXPECT_EQ(recording.frames[1].timeMs, 33.333);
    EXPECT_EQ(recording.frames[1].player, 3);
    EXPECT_EQ(recording.frames[1].label, "kick, \"high\"");
    EXPECT_EQ(recording.frames[2].joints[0].x, 1e-07f);
    EXPECT_EQ(recording.frames[2].joints[1].z, 1.0f);
    EXPECT_EQ(Written(recording), kNative);
}

TEST(RecordingTest, LabelsAreOptional) {
    std::istringstream in("time_ms,player,Waist.x,Waist.y,Waist.z\n\n5,0,1,2,3\r\n");
    const Recording recording = Recording::Read(in);
    EXPECT_FALSE(recording.hasLabels);
    EXPECT_EQ(Written(recording), "time_ms,player,Waist.x,Waist.y,Waist.z\n5,0,1,2,3\n");
}

TEST(RecordingTest, NamesTheLineAndTheFault) {
    const std::string header = "time_ms,player,Head.x,Head.y,Head.z\n";
    EXPECT_EQ(ReadError(""), "no header: the file is empty");
    EXPECT_EQ(ReadError("time,player,Head.x,Head.y,Head.z\n"), "line 1: the header must begin with time_ms,player");
    EXPECT_EQ(ReadError("time_ms,player,Head.x,Head.y\n"),
              "line 1: joint columns come in threes: <Joint>.x,<Joint>.y,<Joint>.z");
    EXPECT_EQ(ReadError("time_ms,player,Nose.x,Nose.y,Nose.z\n"), "line 1: unknown joint column \"Nose.x\"");
    EXPECT_EQ(ReadError("time_ms,player,Head.x,Head.z,Head.y\n"), "line 1: expected column \"Head.y\", found \"Head.z\"");
    EXPECT_EQ(ReadError("time_ms,player,Head.x,Head.y,Head.z,Head.x,Head.y,Head.z\n"), "line 1: joint Head appears twice");
    EXPECT_EQ(ReadError(header + "0,0,1,2\n"), "line 2: expected 5 fields, found 4");
    EXPECT_EQ(ReadError(header + "0,0,1,2,x\n"), "line 2: Head.z is not a number: \"x\"");
    EXPECT_EQ(ReadError(header + "0,1.5,1,2,3\n"), "line 2: player is not an integer: \"1.5\"");
    EXPECT_EQ(ReadError(header + "10,0,1,2,3\n9,0,1,2,3\n"), "line 3: time_ms goes back in time");
}

TEST(RecordingTest, LabelSpansRunToThePlayersNextFrame) {
    PlayerTimeline player;
    for (const auto& [timeMs, label] : std::vector<std::pair<double, std::string>>{
             {0, ""}, {100, "a"}, {200, "a"}, {300, ""}, {400, "c"}})
        player.AddFrame(timeMs, label);
    ASSERT_EQ(player.labels.size(), 2u);
    EXPECT_EQ(player.labels[0].label, "a");
    EXPECT_EQ(player.labels[0].startMs, 100.0);
    EXPECT_EQ(player.labels[0].endMs, 300.0);
    EXPECT_EQ(player.labels[1].startMs, 400.0);
    EXPECT_EQ(player.labels[1].endMs, 400.0);
}
