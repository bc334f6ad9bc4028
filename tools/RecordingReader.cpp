#include "tools/RecordingReader.h"

#include <map>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/Numbers.h"

namespace PelmoraTool {

namespace {

std::unique_ptr<std::ifstream> OpenFile(const std::string& path) {
    auto file = std::make_unique<std::ifstream>(path, std::ios::binary);
    if (!*file) throw std::runtime_error("cannot open " + path);
    return file;
}

// The joint of the three columns starting at `first`, checking their axes.
int32_t JointOfColumns(const std::vector<std::string>& columns, size_t first) {
    const std::string& x = columns[first];
    const std::string name = x.size() > 2 ? x.substr(0, x.size() - 2) : "";
    const int32_t type = Recording::JointType(name);
    if (type == 0) throw std::runtime_error("unknown joint column \"" + x + "\"");
    for (size_t axis = 0; axis < 3; ++axis) {
        const std::string expected = name + Recording::kAxes[axis];
        if (columns[first + axis] != expected)
            throw std::runtime_error("expected column \"" + expected + "\", found \"" + columns[first + axis] + "\"");
    }
    return type;
}

}  // namespace

RecordingReader::RecordingReader(const std::string& path) : m_File(OpenFile(path)), m_Source(path), m_Lines(*m_File) {
    ReadHeader();
}

RecordingReader::RecordingReader(std::istream& in, const std::string& source) : m_Source(source), m_Lines(in) {
    ReadHeader();
}

std::runtime_error RecordingReader::Error(const std::string& what) const {
    return std::runtime_error(m_Source.empty() ? what : m_Source + ": " + what);
}

void RecordingReader::ReadHeader() {
    try {
        while (m_Lines.Next(m_Line) && Numbers::IsBlank(m_Line)) {}
    } catch (const std::runtime_error& error) {
        throw Error(error.what());
    }
    if (Numbers::IsBlank(m_Line)) throw Error("no header: the file is empty");
    try {
        std::vector<std::string> columns = Csv::Split(Numbers::Trim(m_Line));
        for (std::string& column : columns) column = Numbers::Trim(column);
        if (columns.size() < 2 || columns[0] != "time_ms" || columns[1] != "player")
            throw std::runtime_error("the header must begin with time_ms,player");
        m_HasLabels = columns.back() == "label";
        if (m_HasLabels) columns.pop_back();
        if (columns.size() == 2 || (columns.size() - 2) % 3 != 0)
            throw std::runtime_error("joint columns come in threes: <Joint>.x,<Joint>.y,<Joint>.z");
        for (size_t first = 2; first < columns.size(); first += 3) {
            m_Joints.push_back(JointOfColumns(columns, first));
            m_Columns.insert(m_Columns.end(), columns.begin() + first, columns.begin() + first + 3);
        }
        Recording::CheckDistinct(m_Joints);
    } catch (const std::runtime_error& error) {
        throw Error("line " + std::to_string(m_Lines.Number()) + ": " + error.what());
    }
}

bool RecordingReader::Next(RecordedFrame& frame) {
    try {
        do {
            if (!m_Lines.Next(m_Line)) return false;
        } while (Numbers::IsBlank(m_Line));
    } catch (const std::runtime_error& error) {
        throw Error(error.what());
    }
    try {
        ReadRow(frame);
    } catch (const std::runtime_error& error) {
        throw Error("line " + std::to_string(m_Lines.Number()) + ": " + error.what());
    }
    return true;
}

void RecordingReader::ReadRow(RecordedFrame& frame) {
    Csv::Split(m_Line, m_Fields);
    const size_t expected = 2 + m_Columns.size() + (m_HasLabels ? 1 : 0);
    if (m_Fields.size() != expected)
        throw std::runtime_error("expected " + std::to_string(expected) + " fields, found " + std::to_string(m_Fields.size()));
    frame.timeMs = Numbers::ReadDouble(m_Fields[0], "time_ms");
    Recording::CheckTime(frame.timeMs, m_LastMs);
    frame.player = Numbers::ReadInteger(m_Fields[1], "player");
    frame.joints.resize(m_Joints.size());
    for (size_t slot = 0; slot < m_Joints.size(); ++slot) {
        const size_t column = 3 * slot;
        frame.joints[slot] = Point3{Numbers::ReadFloat(m_Fields[2 + column], m_Columns[column]),
                                    Numbers::ReadFloat(m_Fields[3 + column], m_Columns[column + 1]),
                                    Numbers::ReadFloat(m_Fields[4 + column], m_Columns[column + 2])};
    }
    frame.label.clear();
    if (m_HasLabels) frame.label = m_Fields.back();
    m_LastMs = frame.timeMs;
}

RecordingSummary RecordingReader::Summarise() {
    RecordingSummary summary;
    std::map<long long, RecordedPlayer> players;
    RecordedFrame frame;
    while (Next(frame)) {
        if (summary.frames++ == 0) summary.firstMs = frame.timeMs;
        auto [found, added] = players.try_emplace(frame.player, RecordedPlayer{frame.player, frame.timeMs, frame.timeMs});
        found->second.lastMs = frame.timeMs;
        if (added && players.size() > kMaxPlayers)
            throw Error("line " + std::to_string(m_Lines.Number()) + ": more than " + std::to_string(kMaxPlayers) +
                        " distinct players, the most a replay takes");
    }
    for (const auto& entry : players) summary.players.push_back(entry.second);
    return summary;
}

}  // namespace PelmoraTool
