#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tools/Importers.h"
#include "tools/RecordingReader.h"
#include "tools/SkeletonSource.h"

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

namespace {

using nlohmann::json;

json SourceFrames() {
    std::ifstream in(std::string(PELMORA_SOURCE_DATA) + "/frames.json");
    return json::parse(in);
}

// The case's frame, in its source's joint order.
std::vector<SkeletonSource::Point> CaseFrame(const SkeletonSource& source, const json& test) {
    std::vector<SkeletonSource::Point> frame;
    for (const std::string& joint : source.Joints()) {
        const json& point = test.contains("joints") && test["joints"].contains(joint) ? test["joints"][joint] : test["others"];
        frame.push_back(point.get<SkeletonSource::Point>());
        if (test.value("nan", "") == joint) frame.back()[0] = std::nan("");
    }
    frame.resize(test.value("count", frame.size()));
    return frame;
}

}  // namespace

TEST(ImportersTest, SourcesTurnHandWrittenFramesIntoTheLibraryJointsTheyHold) {
    const json cases = SourceFrames();
    ASSERT_FALSE(cases["frames"].empty());
    for (const json& test : cases["frames"]) {
        const SkeletonSource& source = SkeletonSource::Named(test["source"]);
        std::vector<Point3> library;
        source.Convert(CaseFrame(source, test), test.value("mirrored", false), library);
        for (const auto& [joint, expected] : test["expected"].items()) {
            const size_t slot = std::find(source.LibraryJoints().begin(), source.LibraryJoints().end(), Recording::JointType(joint)) -
                                source.LibraryJoints().begin();
            ASSERT_LT(slot, library.size()) << joint;
            for (size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(XYZ(library[slot])[axis], expected[axis].get<double>(), 1e-6) << test["source"] << " " << joint;
        }
    }
    for (const json& test : cases["bad"]) {
        const SkeletonSource& source = SkeletonSource::Named(test["source"]);
        std::vector<Point3> library;
        EXPECT_THROW(
            try { source.Convert(CaseFrame(source, test), false, library); } catch (const std::runtime_error& error) {
                EXPECT_EQ(error.what(), test["error"].get<std::string>());
                throw;
            },
            std::runtime_error);
    }
}

// azure.json: two frames, the second with bodies 7 and 3; ntu.skeleton: two
// frames, the second with a second body.
TEST(ImportersTest, SourceFormsTurnEachBodyIntoAPlayerInTheOrderTheyAppear) {
    for (const char* form : {"azure-kinect-json:azure.json", "ntu-skeleton:ntu.skeleton"}) {
        const std::string name(form);
        const Imported recording = ImportFile(name.substr(0, name.find(':')), name.substr(name.find(':') + 1));
        ASSERT_EQ(recording.frames.size(), 3u) << form;
        EXPECT_EQ(recording.frames[2].timeMs, 33.333) << form;
        EXPECT_EQ((std::vector<long long>{recording.frames[0].player, recording.frames[1].player, recording.frames[2].player}),
                  (std::vector<long long>{0, 0, 1})) << form;
        EXPECT_EQ(recording.joints, SkeletonSource::Named(name.find("azure") == 0 ? "azure-kinect" : "kinect-v2").LibraryJoints());
    }
    // mediapipe.jsonl: one frame twice, the second marked mirrored.
    const Imported landmarks = ImportFile("mediapipe-jsonl", "mediapipe.jsonl");
    EXPECT_EQ(landmarks.frames[1].joints[0].x, -landmarks.frames[0].joints[0].x);
}

TEST(ImportersTest, SourceFormsNameTheLineOfABadFrame) {
    EXPECT_EQ(ImportError("mediapipe-jsonl", "\n{\"time_ms\": 0, \"landmarks\": [[0, 0, 0]]}\n"), "line 2: expected 33 joints, found 1");
    EXPECT_EQ(ImportError("mediapipe-jsonl", "{\"time_ms\": 0, \"landmarks\": [[NaN, 0, 0]]}"), "line 1: not JSON (at byte 31)");
    EXPECT_EQ(ImportError("mediapipe-jsonl", "{\"landmarks\": []}"), "line 1: \"time_ms\" is missing");
    EXPECT_EQ(ImportError("mediapipe-jsonl", "{\"time_ms\": 0, \"landmarks\": [[0, 0]]}"), "line 1: landmark 0 is not [x, y, z]");
    EXPECT_EQ(ImportError("azure-kinect-json", "{\"frames\": [\n{\"timestamp_usec\": 0,\n \"bodies\": [{\"body_id\": 1,\n"
                                               "\"joint_positions\": [[0, 0, 0]]}]}]}"),
              "line 4: expected 32 joints, found 1");
    EXPECT_EQ(ImportError("azure-kinect-json", "{\"frames\": [\n{]}"), "line 2: not JSON");
    EXPECT_EQ(ImportError("azure-kinect-json", "{\"frames\": [3]}"), "line 1: a frame is not a JSON object");
    EXPECT_EQ(ImportError("ntu-skeleton", "1\n1\n1 0 0 0 0 0 0 0 0 2\n24\n"), "line 4: expected 25 joints, found 24");
    EXPECT_EQ(ImportError("ntu-skeleton", "1\n1\n1 0 0 0 0 0 0 0 0 2\n25\n0 0 1\n"), "line 5: a joint needs 12 fields, found 3");
    EXPECT_EQ(ImportError("ntu-skeleton", "1\n0\n0\n"), "line 3: more than the 1 frames the first line counts");
}
