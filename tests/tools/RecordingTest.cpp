#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "tools/RecordingReader.h"
#include "tools/RecordingWriter.h"
#include "tools/Timeline.h"

using namespace PelmoraTool;

namespace {

const char* const kNative =
    "time_ms,player,Head.x,Head.y,Head.z,RightFoot.x,RightFoot.y,RightFoot.z,label\n"
    "0,7,0.1,1.6,2.5,-0.2,0,2.25,\n"
    "33.333,3,0.1,1.6,2.5,-0.2,0,2.25,\"kick, \"\"high\"\"\"\n"
    "66.667,7,1e-07,-1.5,3,0,0,1,kick\n";

// The text read and written back, frame by frame.
std::string Rewritten(const std::string& text) {
    std::istringstream in(text);
    std::ostringstream out;
    RecordingReader reader(in, "");
    RecordingWriter writer(out);
    writer.Begin(reader.Joints(), reader.HasLabels());
    for (RecordedFrame frame; reader.Next(frame);) writer.Write(frame);
    return out.str();
}

std::string ReadError(const std::string& text) {
    std::istringstream in(text);
    try {
        RecordingReader(in, "r.csv").Summarise();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(RecordingTest, ReadsAndWritesTheNativeFormatUnchanged) {
    std::istringstream in(kNative);
    RecordingReader reader(in, "");
    EXPECT_EQ(reader.Joints(), (std::vector<int32_t>{PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_FOOT}));
    RecordedFrame frame;
    ASSERT_TRUE(reader.Next(frame) && reader.Next(frame));
    EXPECT_EQ(frame.timeMs, 33.333);
    EXPECT_EQ(frame.player, 3);
    EXPECT_EQ(frame.label, "kick, \"high\"");
    ASSERT_TRUE(reader.Next(frame));
    EXPECT_EQ(frame.joints[0].x, 1e-07f);
    EXPECT_EQ(frame.joints[1].z, 1.0f);
    EXPECT_FALSE(reader.Next(frame));
    EXPECT_EQ(Rewritten(kNative), kNative);
}

// Line ends of any system, a byte order mark and blank lines read the same.
TEST(RecordingTest, LabelsAreOptionalAndLineEndsAnyKind) {
    const std::string plain = "time_ms,player,Waist.x,Waist.y,Waist.z,label\n5,0,1,2,3,\n6,0,1,2,3,a\n";
    for (const char* text : {"time_ms,player,Waist.x,Waist.y,Waist.z,label\r\n\r\n5,0,1,2,3,\r\n6,0,1,2,3,a\r\n",
                             "\xEF\xBB\xBFtime_ms,player,Waist.x,Waist.y,Waist.z,label\r5,0,1,2,3,\r6,0,1,2,3,a"})
        EXPECT_EQ(Rewritten(text), plain) << text;
    EXPECT_EQ(Rewritten("time_ms,player,Waist.x,Waist.y,Waist.z\n\n5,0,1,2,3\n"), "time_ms,player,Waist.x,Waist.y,Waist.z\n5,0,1,2,3\n");
}

// More cases run end to end in tests/data/hostile/cases.tsv.
TEST(RecordingTest, NamesTheLineAndTheFault) {
    const std::string header = "time_ms,player,Head.x,Head.y,Head.z\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "r.csv: no header: the file is empty"},
        {"time,player,Head.x,Head.y,Head.z\n", "r.csv: line 1: the header must begin with time_ms,player"},
        {"time_ms,player,Head.x,Head.y\n", "r.csv: line 1: joint columns come in threes: <Joint>.x,<Joint>.y,<Joint>.z"},
        {"time_ms,player,Nose.x,Nose.y,Nose.z\n", "r.csv: line 1: unknown joint column \"Nose.x\""},
        {"time_ms,player,Head.x,Head.z,Head.y\n", "r.csv: line 1: expected column \"Head.y\", found \"Head.z\""},
        {"time_ms,player,Head.x,Head.y,Head.z,Head.x,Head.y,Head.z\n", "r.csv: line 1: joint Head appears twice"},
        {header + "0,0,1,2\n", "r.csv: line 2: expected 5 fields, found 4"},
        {header + "0,0,1,2,x\n", "r.csv: line 2: Head.z is not a number: \"x\""},
        {header + "0,0,inf,2,3\n", "r.csv: line 2: Head.x is not finite: \"inf\""},
        {header + "1e300,0,1,2,3\n", "r.csv: line 2: time_ms is out of range: 1e+300 is beyond +-9007199254740992"},
        {header + "0,1.5,1,2,3\n", "r.csv: line 2: player is not an integer: \"1.5\""},
        {header + "10,0,1,2,3\n9,0,1,2,3\n", "r.csv: line 3: time_ms goes back in time"},
        {header + std::string(CsvLineReader::kMaxLineBytes + 1, ' '), "r.csv: line 2: longer than 1048576 bytes"},
    };
    for (const auto& [text, error] : cases) EXPECT_EQ(ReadError(text), error) << text.substr(0, 80);
}

TEST(RecordingTest, LabelSpansRunToThePlayersNextFrame) {
    PlayerTimeline player;
    player.buckets = TimeBuckets(0.0, 400.0);
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
