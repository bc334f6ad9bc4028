#include "tools/Importers.h"

#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <istream>
#include <sstream>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/CsvLineReader.h"
#include "tools/LineCountingBuffer.h"
#include "tools/Numbers.h"
#include "tools/RecordingReader.h"
#include "tools/SkeletonSource.h"

namespace PelmoraTool {

namespace {

using nlohmann::json;

const double kThirtyPerSecondMs = 1000.0 / 30.0;

// The Kinect v1 joints, in their export order, come from the skeleton
// source table.
const SkeletonSource& KinectV1() { return SkeletonSource::Named("kinect-v1"); }

int32_t KinectJointType(const std::string& name) { return KinectV1().LibraryJointOf(name); }

// The nominal time of frame `index` of a 30-per-second export without time
// stamps; microsecond resolution keeps the 33.3 ms steps readable.
double ThirtyPerSecondMs(size_t index) {
    return std::round(static_cast<double>(index) * kThirtyPerSecondMs * 1000.0) / 1000.0;
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

// ---- Skeleton sources (sources.json)

// Players in the order their bodies first appear, as many as a replay takes.
class BodyPlayers {
public:
    long long Of(long long body) {
        const auto [found, added] = m_Players.try_emplace(body, static_cast<long long>(m_Players.size()));
        if (added && m_Players.size() > RecordingReader::kMaxPlayers)
            throw std::runtime_error("more than " + std::to_string(RecordingReader::kMaxPlayers) + " bodies, the most a replay takes");
        return found->second;
    }

private:
    std::map<long long, long long> m_Players;
};

const json& Member(const json& object, const char* key) {
    if (!object.is_object()) throw std::runtime_error(std::string("expected an object holding \"") + key + "\"");
    const auto found = object.find(key);
    if (found == object.end()) throw std::runtime_error(std::string("\"") + key + "\" is missing");
    return *found;
}

double NumberOf(const json& value, const std::string& what) {
    if (!value.is_number()) throw std::runtime_error(what + " is not a number");
    return value.get<double>();
}

long long IntegerOf(const json& value, const std::string& what) {
    if (!value.is_number_integer()) throw std::runtime_error(what + " is not an integer");
    return value.get<long long>();
}

// [[x, y, z], ...]; a fourth number (a landmark's visibility) is allowed.
void ReadPoints(const json& array, const char* what, std::vector<SkeletonSource::Point>& points) {
    if (!array.is_array()) throw std::runtime_error(std::string("\"") + what + "\" is not an array");
    points.clear();
    for (const json& point : array) {
        const std::string name = std::string(what) + " " + std::to_string(points.size());
        if (!point.is_array() || point.size() < 3 || point.size() > 4) throw std::runtime_error(name + " is not [x, y, z]");
        points.push_back({NumberOf(point[0], name + " x"), NumberOf(point[1], name + " y"), NumberOf(point[2], name + " z")});
    }
}

// The JSON parser refuses a number beyond a double's range (1e400) with an
// exception of its own, not a parse error.
constexpr const char* kNumberOutOfRange = "a number beyond the range of a double";

json ParseJsonLine(const std::string& line) {
    try {
        return json::parse(line);
    } catch (const json::parse_error& error) {
        throw std::runtime_error("not JSON (at byte " + std::to_string(error.byte) + ")");
    } catch (const json::out_of_range&) {
        throw std::runtime_error(kNumberOutOfRange);
    }
}

// The words of the next line that is not blank, which must be `count` of
// them; `what` names that line in an error.
std::vector<std::string> NextWords(CsvLineReader& lines, size_t count, const std::string& what) {
    std::string line;
    while (lines.Next(line) && Numbers::IsBlank(line)) {
    }
    if (Numbers::IsBlank(line)) throw std::runtime_error("the file ends before " + what);
    const std::vector<std::string> words = Words(line);
    if (words.size() != count)
        throw std::runtime_error(what + " needs " + std::to_string(count) + " fields, found " + std::to_string(words.size()));
    return words;
}

size_t NextCount(CsvLineReader& lines, const std::string& what) {
    const long long value = Numbers::ReadInteger(NextWords(lines, 1, what)[0], what);
    if (value < 0) throw std::runtime_error(what + " is negative");
    return static_cast<size_t>(value);
}

}  // namespace

const std::vector<std::string>& Importers::Formats() {
    static const std::vector<std::string> formats = {"precog", "timestamp-csv", "kinect-text", "mediapipe-jsonl",
                                                     "azure-kinect-json", "ntu-skeleton"};
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
    if (format == "mediapipe-jsonl") return FromMediapipeJsonl(in, out);
    if (format == "azure-kinect-json") return FromAzureKinectJson(in, out);
    if (format == "ntu-skeleton") return FromNtuSkeleton(in, out);
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
        frame.timeMs = ThirtyPerSecondMs(out.Frames());
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
    BeginWithHeader(out, KinectV1().LibraryJoints(), false);
    const size_t fieldCount = 1 + 4 * KinectV1().Joints().size();
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

void Importers::FromMediapipeJsonl(std::istream& in, RecordingWriter& out) {
    const SkeletonSource& source = SkeletonSource::Named("mediapipe-pose");
    CsvLineReader lines(in);
    out.Begin(source.LibraryJoints(), false);
    RecordedFrame frame;
    std::vector<SkeletonSource::Point> landmarks;
    ForEachLine(lines, [&](const std::string& line) {
        const json object = ParseJsonLine(line);
        frame.timeMs = NumberOf(Member(object, "time_ms"), "time_ms");
        ReadPoints(Member(object, "landmarks"), "landmark", landmarks);
        const auto mirrored = object.find("mirrored");
        if (mirrored != object.end() && !mirrored->is_boolean()) throw std::runtime_error("\"mirrored\" is not true or false");
        source.Convert(landmarks, mirrored != object.end() && mirrored->get<bool>(), frame.joints);
        out.Write(frame);
    });
}

// The body tracking SDK's offline processor writes one JSON document:
// {"frames": [{"timestamp_usec": T, "bodies": [{"body_id": N,
// "joint_positions": [[x, y, z], ...]}, ...]}, ...], "joint_names": [...], ...}.
// The parser hands over each frame as it closes and then forgets it, so
// memory holds one frame, whatever the length of the recording.
void Importers::FromAzureKinectJson(std::istream& in, RecordingWriter& out) {
    const SkeletonSource& source = SkeletonSource::Named("azure-kinect");
    out.Begin(source.LibraryJoints(), false);
    LineCountingBuffer counted(in.rdbuf());
    std::istream text(&counted);
    BodyPlayers players;
    RecordedFrame frame;
    std::vector<SkeletonSource::Point> joints;
    const auto writeFrame = [&](const json& object) {
        frame.timeMs = NumberOf(Member(object, "timestamp_usec"), "timestamp_usec") / 1000.0;
        const json& bodies = Member(object, "bodies");
        if (!bodies.is_array()) throw std::runtime_error("\"bodies\" is not an array");
        for (const json& body : bodies) {
            frame.player = players.Of(IntegerOf(Member(body, "body_id"), "body_id"));
            ReadPoints(Member(body, "joint_positions"), "joint", joints);
            source.Convert(joints, false, frame.joints);
            out.Write(frame);
        }
    };
    std::string member;  // the top-level member being read
    const json::parser_callback_t read = [&](int depth, json::parse_event_t event, json& parsed) {
        using Event = json::parse_event_t;
        if (depth == 1 && event == Event::key) member = parsed.get<std::string>();
        if (depth == 1 && event == Event::array_end && member == "joint_names" && parsed != json(source.Joints()))
            throw std::runtime_error("joint_names are not the " + std::to_string(source.Joints().size()) + " joints " +
                                     source.Name() + " reads");
        if (depth != 2 || event == Event::object_start || event == Event::array_start || event == Event::key) return true;
        if (member != "frames") return member == "joint_names";
        if (event != Event::object_end) throw std::runtime_error("a frame is not a JSON object");
        writeFrame(parsed);
        return false;
    };
    try {
        [[maybe_unused]] const json emptied = json::parse(text, read);
    } catch (const json::parse_error&) {
        throw std::runtime_error("line " + std::to_string(counted.Line()) + ": not JSON");
    } catch (const json::out_of_range&) {
        throw std::runtime_error("line " + std::to_string(counted.Line()) + ": " + kNumberOutOfRange);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("line " + std::to_string(counted.Line()) + ": " + error.what());
    }
}

// The NTU RGB+D ".skeleton" text: the frame count, then per frame the body
// count and per body a line of 10 fields (the body id first), the joint
// count (25) and one line of 12 fields per joint (x y z first). Frames are
// 30 per second.
void Importers::FromNtuSkeleton(std::istream& in, RecordingWriter& out) {
    const SkeletonSource& source = SkeletonSource::Named("kinect-v2");
    CsvLineReader lines(in);
    out.Begin(source.LibraryJoints(), false);
    BodyPlayers players;
    RecordedFrame frame;
    std::vector<SkeletonSource::Point> joints;
    try {
        const size_t frames = NextCount(lines, "the frame count");
        for (size_t index = 0; index < frames; ++index) {
            frame.timeMs = ThirtyPerSecondMs(index);
            for (size_t bodies = NextCount(lines, "the body count"); bodies > 0; --bodies) {
                frame.player = players.Of(Numbers::ReadInteger(NextWords(lines, 10, "a body")[0], "the body id"));
                const size_t count = NextCount(lines, "the joint count");
                if (count != source.Joints().size())
                    throw std::runtime_error("expected " + std::to_string(source.Joints().size()) + " joints, found " + std::to_string(count));
                joints.clear();
                while (joints.size() < count) {
                    const std::vector<std::string> words = NextWords(lines, 12, "a joint");
                    joints.push_back({Coordinate(words[0]), Coordinate(words[1]), Coordinate(words[2])});
                }
                source.Convert(joints, false, frame.joints);
                out.Write(frame);
            }
        }
        for (std::string line; lines.Next(line);) {
            if (!Numbers::IsBlank(line)) throw std::runtime_error("more than the " + std::to_string(frames) + " frames the first line counts");
        }
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("line " + std::to_string(lines.Number()) + ": " + error.what());
    }
}

}  // namespace PelmoraTool
