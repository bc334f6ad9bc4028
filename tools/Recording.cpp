#include "tools/Recording.h"

#include <fstream>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/Numbers.h"
#include "tools/RecordingReader.h"
#include "values/ValuesTable.h"

namespace PelmoraTool {

namespace {

const char* const kAxes[3] = {".x", ".y", ".z"};

Recording ReadAll(RecordingReader& reader) {
    Recording recording;
    recording.joints = reader.Joints();
    recording.hasLabels = reader.HasLabels();
    for (RecordedFrame frame; reader.Next(frame);) recording.frames.push_back(frame);
    return recording;
}

}  // namespace

int32_t Recording::JointType(const std::string& name) {
    for (int32_t type = 1; type < PELMORA_JOINT_COUNT; ++type) {
        if (name == PelmoraLib::ValuesTable::JointName(static_cast<size_t>(type))) return type;
    }
    return 0;
}

std::string Recording::JointName(int32_t type) { return PelmoraLib::ValuesTable::JointName(static_cast<size_t>(type)); }

Recording Recording::ReadFile(const std::string& path) {
    RecordingReader reader(path);
    return ReadAll(reader);
}

Recording Recording::Read(std::istream& in) {
    RecordingReader reader(in, "");
    return ReadAll(reader);
}

void Recording::WriteFile(const std::string& path) const {
    std::ofstream out(path, std::ios::binary);
    if (!out) throw std::runtime_error("cannot write " + path);
    Write(out);
    if (!out) throw std::runtime_error("writing " + path + " failed");
}

void Recording::Write(std::ostream& out) const {
    out << "time_ms,player";
    for (int32_t type : joints) {
        for (const char* axis : kAxes) out << ',' << JointName(type) << axis;
    }
    out << (hasLabels ? ",label\n" : "\n");
    for (const RecordedFrame& frame : frames) {
        out << Numbers::Format(frame.timeMs) << ',' << frame.player;
        for (const Point3& joint : frame.joints) {
            out << ',' << Numbers::Format(joint.x) << ',' << Numbers::Format(joint.y) << ',' << Numbers::Format(joint.z);
        }
        if (hasLabels) out << ',' << Csv::Quote(frame.label);
        out << '\n';
    }
}

}  // namespace PelmoraTool
