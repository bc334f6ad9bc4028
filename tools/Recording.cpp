#include "tools/Recording.h"

#include <fstream>
#include <set>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/Numbers.h"
#include "values/ValuesTable.h"

namespace PelmoraTool {

namespace {

const char* const kAxes[3] = {".x", ".y", ".z"};

std::runtime_error LineError(size_t line, const std::string& what) {
    return std::runtime_error("line " + std::to_string(line) + ": " + what);
}

float ReadCoordinate(const std::string& field, const std::string& column) {
    float value = 0.0f;
    if (!Numbers::Parse(field, value)) throw std::runtime_error(column + " is not a number: \"" + field + "\"");
    return value;
}

// The joint of the three columns starting at `first`, checking their axes.
int32_t JointOfColumns(const std::vector<std::string>& columns, size_t first) {
    const std::string& x = columns[first];
    const std::string name = x.size() > 2 ? x.substr(0, x.size() - 2) : "";
    const int32_t type = Recording::JointType(name);
    if (type == 0) throw std::runtime_error("unknown joint column \"" + x + "\"");
    for (size_t axis = 0; axis < 3; ++axis) {
        if (columns[first + axis] != name + kAxes[axis])
            throw std::runtime_error("expected column \"" + name + kAxes[axis] + "\", found \"" + columns[first + axis] + "\"");
    }
    return type;
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
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot open " + path);
    try {
        return Read(in);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

Recording Recording::Read(std::istream& in) {
    Recording recording;
    std::string line;
    size_t number = 0;
    for (bool header = true; std::getline(in, line);) {
        ++number;
        if (Numbers::Trim(line).empty()) continue;
        try {
            if (header) {
                recording.ReadHeader(Numbers::Trim(line));
                header = false;
                continue;
            }
            recording.frames.push_back(recording.ReadRow(line));
        } catch (const std::runtime_error& error) {
            throw LineError(number, error.what());
        }
        const size_t count = recording.frames.size();
        if (count > 1 && recording.frames[count - 1].timeMs < recording.frames[count - 2].timeMs)
            throw LineError(number, "time_ms goes back in time");
    }
    if (recording.joints.empty()) throw std::runtime_error("no header: the file is empty");
    return recording;
}

void Recording::ReadHeader(const std::string& line) {
    std::vector<std::string> columns = Csv::Split(line);
    if (columns.size() < 2 || columns[0] != "time_ms" || columns[1] != "player")
        throw std::runtime_error("the header must begin with time_ms,player");
    hasLabels = columns.back() == "label";
    if (hasLabels) columns.pop_back();
    if (columns.size() == 2 || (columns.size() - 2) % 3 != 0)
        throw std::runtime_error("joint columns come in threes: <Joint>.x,<Joint>.y,<Joint>.z");
    std::set<int32_t> seen;
    for (size_t first = 2; first < columns.size(); first += 3) {
        const int32_t type = JointOfColumns(columns, first);
        if (!seen.insert(type).second) throw std::runtime_error("joint " + JointName(type) + " appears twice");
        joints.push_back(type);
    }
}

RecordedFrame Recording::ReadRow(const std::string& line) const {
    const std::vector<std::string> fields = Csv::Split(line);
    const size_t expected = 2 + 3 * joints.size() + (hasLabels ? 1 : 0);
    if (fields.size() != expected)
        throw std::runtime_error("expected " + std::to_string(expected) + " fields, found " + std::to_string(fields.size()));
    RecordedFrame frame;
    if (!Numbers::Parse(fields[0], frame.timeMs)) throw std::runtime_error("time_ms is not a number: \"" + fields[0] + "\"");
    if (!Numbers::Parse(fields[1], frame.player)) throw std::runtime_error("player is not an integer: \"" + fields[1] + "\"");
    for (size_t slot = 0; slot < joints.size(); ++slot) {
        const std::string name = JointName(joints[slot]);
        const size_t first = 2 + 3 * slot;
        frame.joints.push_back(Point3{ReadCoordinate(fields[first], name + kAxes[0]),
                                      ReadCoordinate(fields[first + 1], name + kAxes[1]),
                                      ReadCoordinate(fields[first + 2], name + kAxes[2])});
    }
    if (hasLabels) frame.label = fields.back();
    return frame;
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

std::vector<long long> Recording::Players() const {
    std::set<long long> players;
    for (const RecordedFrame& frame : frames) players.insert(frame.player);
    return std::vector<long long>(players.begin(), players.end());
}

}  // namespace PelmoraTool
