#include "tools/Importers.h"

#include <cmath>
#include <istream>
#include <sstream>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/Numbers.h"

namespace PelmoraTool {

namespace {

struct KinectJoint {
    const char* name;
    int32_t type;
};

// The Kinect v1 joint order and where each joint lands in the library's
// skeleton: the tracker's hip centre is the library's waist, its spine the
// torso and its shoulder centre the neck.
const KinectJoint kKinectJoints[] = {
    {"HipCenter", PELMORA_JOINT_WAIST},           {"Spine", PELMORA_JOINT_TORSO},
    {"ShoulderCenter", PELMORA_JOINT_NECK},       {"Head", PELMORA_JOINT_HEAD},
    {"ShoulderLeft", PELMORA_JOINT_LEFT_SHOULDER}, {"ElbowLeft", PELMORA_JOINT_LEFT_ELBOW},
    {"WristLeft", PELMORA_JOINT_LEFT_WRIST},       {"HandLeft", PELMORA_JOINT_LEFT_HAND},
    {"ShoulderRight", PELMORA_JOINT_RIGHT_SHOULDER}, {"ElbowRight", PELMORA_JOINT_RIGHT_ELBOW},
    {"WristRight", PELMORA_JOINT_RIGHT_WRIST},     {"HandRight", PELMORA_JOINT_RIGHT_HAND},
    {"HipLeft", PELMORA_JOINT_LEFT_HIP},           {"KneeLeft", PELMORA_JOINT_LEFT_KNEE},
    {"AnkleLeft", PELMORA_JOINT_LEFT_ANKLE},       {"FootLeft", PELMORA_JOINT_LEFT_FOOT},
    {"HipRight", PELMORA_JOINT_RIGHT_HIP},         {"KneeRight", PELMORA_JOINT_RIGHT_KNEE},
    {"AnkleRight", PELMORA_JOINT_RIGHT_ANKLE},     {"FootRight", PELMORA_JOINT_RIGHT_FOOT},
};
const size_t kKinectJointCount = sizeof kKinectJoints / sizeof kKinectJoints[0];
const double kPrecogFrameMs = 1000.0 / 30.0;

int32_t KinectJointType(const std::string& name) {
    for (const KinectJoint& joint : kKinectJoints) {
        if (name == joint.name) return joint.type;
    }
    return 0;
}

std::vector<int32_t> KinectOrder() {
    std::vector<int32_t> types;
    for (const KinectJoint& joint : kKinectJoints) types.push_back(joint.type);
    return types;
}

float Coordinate(const std::string& text) { return Numbers::ReadFloat(text, "coordinate"); }

std::vector<std::string> Words(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;) words.push_back(word);
    return words;
}

// Reads the data lines after the header, naming the line of any fault.
template <class ReadLine>
void ForEachDataLine(std::istream& in, size_t number, ReadLine readLine) {
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (Numbers::Trim(line).empty()) continue;
        try {
            readLine(line);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
        }
    }
}

std::string FirstLine(std::istream& in) {
    std::string line;
    if (!std::getline(in, line)) throw std::runtime_error("the file is empty");
    return Numbers::Trim(line);
}

// ---- PRECOG

std::vector<int32_t> PrecogJoints(const std::string& header) {
    std::vector<int32_t> types;
    for (const std::string& name : Csv::Split(header, ';')) {
        const int32_t type = KinectJointType(Numbers::Trim(name));
        if (type == 0) throw std::runtime_error("line 1: unknown joint \"" + Numbers::Trim(name) + "\"");
        types.push_back(type);
    }
    return types;
}

Point3 PrecogJoint(const std::string& field) {
    const std::vector<std::string> words = Words(field);
    if (words.size() != 3) throw std::runtime_error("a joint needs \"x y z\", found \"" + field + "\"");
    return Point3{Coordinate(words[0]), Coordinate(words[1]), Coordinate(words[2])};
}

// Action 0 is "no action": no label.
std::string PrecogLabel(const std::string& field) {
    const long long action = Numbers::ReadInteger(field, "action id");
    return action == 0 ? "" : std::to_string(action);
}

// ---- Timestamp CSV

// The joint whose X, Y and Z columns start at `first`; 0 when they do not.
int32_t TripleJoint(const std::vector<std::string>& columns, size_t first) {
    if (first + 2 >= columns.size()) return 0;
    const std::string& x = columns[first];
    if (x.empty() || x.back() != 'X') return 0;
    const std::string name = x.substr(0, x.size() - 1);
    if (columns[first + 1] != name + "Y" || columns[first + 2] != name + "Z") return 0;
    return KinectJointType(name);
}

}  // namespace

const std::vector<std::string>& Importers::Formats() {
    static const std::vector<std::string> formats = {"precog", "timestamp-csv", "kinect-text"};
    return formats;
}

Recording Importers::Import(const std::string& format, std::istream& in) {
    if (format == "precog") return FromPrecog(in);
    if (format == "timestamp-csv") return FromTimestampCsv(in);
    if (format == "kinect-text") return FromKinectText(in);
    throw std::runtime_error("unknown format \"" + format + "\"");
}

Recording Importers::FromPrecog(std::istream& in) {
    Recording recording;
    recording.hasLabels = true;
    recording.joints = PrecogJoints(FirstLine(in));
    ForEachDataLine(in, 1, [&](const std::string& line) {
        const std::vector<std::string> fields = Csv::Split(line, ';');
        if (fields.size() != recording.joints.size() + 1)
            throw std::runtime_error("expected " + std::to_string(recording.joints.size() + 1) + " fields, found " +
                                     std::to_string(fields.size()));
        RecordedFrame frame;
        // Microsecond resolution keeps the nominal 33.3 ms steps readable.
        frame.timeMs = std::round(static_cast<double>(recording.frames.size()) * kPrecogFrameMs * 1000.0) / 1000.0;
        for (size_t slot = 0; slot < recording.joints.size(); ++slot) frame.joints.push_back(PrecogJoint(fields[slot]));
        frame.label = PrecogLabel(fields.back());
        recording.frames.push_back(frame);
    });
    return recording;
}

Recording Importers::FromTimestampCsv(std::istream& in) {
    const std::vector<std::string> columns = Csv::Split(FirstLine(in));
    if (Numbers::Trim(columns[0]) != "Timestamp") throw std::runtime_error("line 1: the first column must be Timestamp");
    Recording recording;
    for (size_t first = 1; int32_t type = TripleJoint(columns, first); first += 3) recording.joints.push_back(type);
    if (recording.joints.empty()) throw std::runtime_error("line 1: no <Joint>X,<Joint>Y,<Joint>Z columns");
    ForEachDataLine(in, 1, [&](const std::string& line) {
        const std::vector<std::string> fields = Csv::Split(line);
        if (fields.size() < 1 + 3 * recording.joints.size())
            throw std::runtime_error("expected at least " + std::to_string(1 + 3 * recording.joints.size()) + " fields");
        RecordedFrame frame;
        frame.timeMs = Numbers::ReadDouble(fields[0], "Timestamp");
        for (size_t first = 1; frame.joints.size() < recording.joints.size(); first += 3) {
            frame.joints.push_back(Point3{Coordinate(fields[first]), Coordinate(fields[first + 1]), Coordinate(fields[first + 2])});
        }
        recording.frames.push_back(frame);
    });
    return recording;
}

Recording Importers::FromKinectText(std::istream& in) {
    Recording recording;
    recording.joints = KinectOrder();
    const size_t fieldCount = 1 + 4 * kKinectJointCount;
    ForEachDataLine(in, 0, [&](const std::string& line) {
        const std::vector<std::string> words = Words(line);
        if (words.size() != fieldCount)
            throw std::runtime_error("expected " + std::to_string(fieldCount) + " fields, found " + std::to_string(words.size()));
        RecordedFrame frame;
        frame.timeMs = Numbers::ReadDouble(words[0], "timestamp") / 1000.0;
        bool tracked = false;
        for (size_t first = 1; first < fieldCount; first += 4) {
            const Point3 joint{Coordinate(words[first]), Coordinate(words[first + 1]), Coordinate(words[first + 2])};
            tracked = tracked || joint.x != 0.0f || joint.y != 0.0f || joint.z != 0.0f;
            frame.joints.push_back(joint);
        }
        if (tracked) recording.frames.push_back(frame);
    });
    return recording;
}

}  // namespace PelmoraTool
