#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tools/Importers.h"
#include "tools/RecordingReader.h"

using namespace PelmoraTool;

namespace {

struct Imported {
    std::vector<int32_t> joints;
    bool hasLabels = false;
    std::vector<RecordedFrame> frames;
};

// Imports into the native format and reads that back.
Imported ImportText(const std::string& format, std::istream& in) {
    std::stringstream native;
    RecordingWriter writer(native);
    Importers::Import(format, in, writer);
    RecordingReader reader(native, "");
    Imported imported{reader.Joints(), reader.HasLabels(), {}};
    for (RecordedFrame frame; reader.Next(frame);) imported.frames.push_back(frame);
    return imported;
}

Imported ImportFile(const std::string& format, const std::string& name) {
    std::ifstream in(std::string(PELMORA_TOOL_DATA) + "/" + name, std::ios::binary);
    return ImportText(format, in);
}

std::vector<float> XYZ(const Point3& point) { return {point.x, point.y, point.z}; }

std::string ImportError(const std::string& format, const std::string& text) {
    std::istringstream in(text);
    try {
        ImportText(format, in);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

const std::vector<int32_t> kKinectOrder = {
    PELMORA_JOINT_WAIST,      PELMORA_JOINT_TORSO,       PELMORA_JOINT_NECK,        PELMORA_JOINT_HEAD,
    PELMORA_JOINT_LEFT_SHOULDER, PELMORA_JOINT_LEFT_ELBOW, PELMORA_JOINT_LEFT_WRIST, PELMORA_JOINT_LEFT_HAND,
    PELMORA_JOINT_RIGHT_SHOULDER, PELMORA_JOINT_RIGHT_ELBOW, PELMORA_JOINT_RIGHT_WRIST, PELMORA_JOINT_RIGHT_HAND,
    PELMORA_JOINT_LEFT_HIP,   PELMORA_JOINT_LEFT_KNEE,   PELMORA_JOINT_LEFT_ANKLE,  PELMORA_JOINT_LEFT_FOOT,
    PELMORA_JOINT_RIGHT_HIP,  PELMORA_JOINT_RIGHT_KNEE,  PELMORA_JOINT_RIGHT_ANKLE, PELMORA_JOINT_RIGHT_FOOT};

}  // namespace

// precog.csv: joint j of frame f at (j/10 + f, -j/100, 2.5 + f/10), actions 0, 2, 2.
TEST(ImportersTest, PrecogFramesAreThirtyPerSecondAndActionsBecomeLabels) {
    const Imported recording = ImportFile("precog", "precog.csv");
    EXPECT_EQ(recording.joints, kKinectOrder);
    ASSERT_EQ(recording.frames.size(), 3u);
    EXPECT_EQ(recording.frames[1].timeMs, 33.333);
    EXPECT_EQ(recording.frames[2].timeMs, 66.667);
    EXPECT_EQ(recording.frames[0].label, "");
    EXPECT_EQ(recording.frames[2].label, "2");
    EXPECT_EQ(XYZ(recording.frames[2].joints[3]), (std::vector<float>{2.3f, -0.03f, 2.7f}));
}

TEST(ImportersTest, TimestampCsvKeepsItsJointTriplesAndDropsTrailingColumns) {
    const Imported recording = ImportFile("timestamp-csv", "timestamp.csv");
    EXPECT_EQ(recording.joints, (std::vector<int32_t>{PELMORA_JOINT_HEAD, PELMORA_JOINT_RIGHT_HAND}));
    ASSERT_EQ(recording.frames.size(), 2u);
    EXPECT_EQ(recording.frames[1].timeMs, 1033.5);
    EXPECT_EQ(recording.frames[1].joints[1].y, 1.3f);
    EXPECT_FALSE(recording.hasLabels);
}

// kinect.txt: frames at 5 000 000 µs and 5 066 000 µs; an all-zero one between.
TEST(ImportersTest, KinectTextSkipsUntrackedFramesAndTurnsMicrosecondsIntoMilliseconds) {
    const Imported recording = ImportFile("kinect-text", "kinect.txt");
    EXPECT_EQ(recording.joints, kKinectOrder);
    ASSERT_EQ(recording.frames.size(), 2u);
    EXPECT_EQ(recording.frames[0].timeMs, 5000.0);
    EXPECT_EQ(recording.frames[1].timeMs, 5066.0);
    EXPECT_EQ(recording.frames[1].joints[19].x, 2.65f);
    EXPECT_EQ(recording.frames[1].joints[19].y, 0.19f);
}

TEST(ImportersTest, NameTheLineAndTheFault) {
    EXPECT_EQ(ImportError("bvh", ""), "unknown format \"bvh\"");
    EXPECT_EQ(ImportError("precog", ""), "the file is empty");
    EXPECT_EQ(ImportError("precog", "Head; Nose\n"), "line 1: unknown joint \"Nose\"");
    EXPECT_EQ(ImportError("precog", "Head; Spine\n1 2 3;4 5 6\n"), "line 2: expected 3 fields, found 2");
    EXPECT_EQ(ImportError("precog", "Head\n1 2;0\n"), "line 2: a joint needs \"x y z\", found \"1 2\"");
    EXPECT_EQ(ImportError("precog", "Head\n1 2 3;kick\n"), "line 2: action id is not an integer: \"kick\"");
    EXPECT_EQ(ImportError("timestamp-csv", "Time,HeadX,HeadY,HeadZ\n"), "line 1: the first column must be Timestamp");
    EXPECT_EQ(ImportError("timestamp-csv", "Timestamp,HeadX,HeadZ,HeadY\n"),
              "line 1: no <Joint>X,<Joint>Y,<Joint>Z columns");
    EXPECT_EQ(ImportError("timestamp-csv", "Timestamp,HeadX,HeadY,HeadZ\n\n5,1,2\n"), "line 3: expected at least 4 fields");
    EXPECT_EQ(ImportError("kinect-text", "\n1 2 3\n"), "line 2: expected 81 fields, found 3");
}
