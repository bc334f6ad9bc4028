#include "tools/Importers.h"

#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <istream>
#include <sstream>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/CsvLineReader.h"
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

// Runs `read` on each line that is not blank, naming the line of any fault.
template <class ReadLine>
void ForEachLine(CsvLineReader& lines, ReadLine read) {
    for (std::string line; lines.Next(line);) {
        if (Numbers::IsBlank(line)) continue;
        try {
            read(line);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("line " + std::to_string(lines.Number()) + ": " + error.what());
        }
    }
}

// The header line, trimmed: the first line of the file.
std::string FirstLine(CsvLineReader& lines) {
    std::string line;
    if (!lines.Next(line)) throw std::runtime_error("the file is empty");
    return Numbers::Trim(line);
}

void BeginWithHeader(RecordingWriter& out, const std::vector<int32_t>& joints, bool hasLabels) {
    try {
        out.Begin(joints, hasLabels);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(std::string("line 1: ") + error.what());
    }
}

bool SameFile(const std::string& a, const std::string& b) {
    struct stat first {}, second {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// A failed import leaves no half-written recording; devices stay.
void RemoveIfRegular(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode)) std::remove(path.c_str());
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

ImportCounts Importers::ImportFile(const std::string& format, const std::string& input, const std::string& output) {
    std::ifstream in(input, std::ios::binary);
    if (!in) throw std::runtime_error("cannot open " + input);
    if (SameFile(input, output)) throw std::runtime_error(output + " is the input file");
    std::ofstream file(output, std::ios::binary | std::ios::trunc);
    if (!file) throw std::runtime_error("cannot write " + output + ": " + std::strerror(errno));
    try {
        RecordingWriter writer(file);
        try {
            Import(format, in, writer);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(input + ": " + error.what());
        }
        if (writer.Frames() == 0) throw std::runtime_error(input + ": no frames to import");
        errno = 0;
        file.close();
        if (!file) throw std::runtime_error("writing " + output + " failed" + (errno ? std::string(": ") + std::strerror(errno) : ""));
        return {writer.Frames(), writer.Joints().size()};
    } catch (const std::runtime_error&) {
        RemoveIfRegular(output);
        throw;
    }
}

void Importers::Import(const std::string& format, std::istream& in, RecordingWriter& out) {
    if (format == "precog") return FromPrecog(in, out);
    if (format == "timestamp-csv") return FromTimestampCsv(in, out);
    if (format == "kinect-text") return FromKinectText(in, out);
    throw std::runtime_error("unknown format \"" + format + "\"");
}

void Importers::FromPrecog(std::istream& in, RecordingWriter& out) {
    CsvLineReader lines(in);
    BeginWithHeader(out, PrecogJoints(FirstLine(lines)), true);
    const size_t joints = out.Joints().size();
    RecordedFrame frame;
    std::vector<std::string> fields;
    ForEachLine(lines, [&](const std::string& line) {
        Csv::Split(line, fields, ';');
        if (fields.size() != joints + 1)
            throw std::runtime_error("expected " + std::to_string(joints + 1) + " fields, found " + std::to_string(fields.size()));
        // Microsecond resolution keeps the nominal 33.3 ms steps readable.
        frame.timeMs = std::round(static_cast<double>(out.Frames()) * kPrecogFrameMs * 1000.0) / 1000.0;
        frame.joints.clear();
        for (size_t slot = 0; slot < joints; ++slot) frame.joints.push_back(PrecogJoint(fields[slot]));
        frame.label = PrecogLabel(fields.back());
        out.Write(frame);
    });
}

void Importers::FromTimestampCsv(std::istream& in, RecordingWriter& out) {
    CsvLineReader lines(in);
    const std::vector<std::string> columns = Csv::Split(FirstLine(lines));
    if (Numbers::Trim(columns[0]) != "Timestamp") throw std::runtime_error("line 1: the first column must be Timestamp");
    std::vector<int32_t> joints;
    for (size_t first = 1; int32_t type = TripleJoint(columns, first); first += 3) joints.push_back(type);
    if (joints.empty()) throw std::runtime_error("line 1: no <Joint>X,<Joint>Y,<Joint>Z columns");
    BeginWithHeader(out, joints, false);
    RecordedFrame frame;
    std::vector<std::string> fields;
    ForEachLine(lines, [&](const std::string& line) {
        Csv::Split(line, fields);
        if (fields.size() < 1 + 3 * joints.size())
            throw std::runtime_error("expected at least " + std::to_string(1 + 3 * joints.size()) + " fields");
        frame.timeMs = Numbers::ReadDouble(fields[0], "Timestamp");
        frame.joints.clear();
        for (size_t first = 1; frame.joints.size() < joints.size(); first += 3) {
            frame.joints.push_back(Point3{Coordinate(fields[first]), Coordinate(fields[first + 1]), Coordinate(fields[first + 2])});
        }
        out.Write(frame);
    });
}

void Importers::FromKinectText(std::istream& in, RecordingWriter& out) {
    CsvLineReader lines(in);
    BeginWithHeader(out, KinectOrder(), false);
    const size_t fieldCount = 1 + 4 * kKinectJointCount;
    RecordedFrame frame;
    ForEachLine(lines, [&](const std::string& line) {
        const std::vector<std::string> words = Words(line);
        if (words.size() != fieldCount)
            throw std::runtime_error("expected " + std::to_string(fieldCount) + " fields, found " + std::to_string(words.size()));
        frame.timeMs = Numbers::ReadDouble(words[0], "timestamp") / 1000.0;
        frame.joints.clear();
        bool tracked = false;
        for (size_t first = 1; first < fieldCount; first += 4) {
            const Point3 joint{Coordinate(words[first]), Coordinate(words[first + 1]), Coordinate(words[first + 2])};
            tracked = tracked || joint.x != 0.0f || joint.y != 0.0f || joint.z != 0.0f;
            frame.joints.push_back(joint);
        }
        if (tracked) out.Write(frame);
    });
}

}  // namespace PelmoraTool
