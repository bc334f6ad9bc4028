// Importers - turn common skeleton exports of a 20-joint Kinect v1 tracker
// into the native recording format:
//   precog         PRECOG CSV: "; "-separated joint names, rows of 20 "x y z"
//                  fields and an action id; 30 frames per second.
//   timestamp-csv  "Timestamp" (ms), then <KinectJoint>X,Y,Z column triples;
//                  columns after the last triple are ignored.
//   kinect-text    whitespace-separated rows: timestamp (µs), then 20 joints
//                  as "x y z w" in Kinect v1 order; all-zero joints mean an
//                  untracked frame, which is skipped.
// Each streams line by line into a RecordingWriter, so memory does not grow
// with the file. Stateless: safe from any thread with its own streams.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/RecordingWriter.h"

namespace PelmoraTool {

struct ImportCounts {
    size_t frames;
    size_t joints;
};

class Importers {
public:
    static const std::vector<std::string>& Formats();

    // Converts the file at `input` into a native recording at `output`.
    // Throws std::runtime_error naming the file, and the line, at fault, and
    // then leaves no partial output behind: an input without frames, an
    // output that is the input or cannot be written in full.
    static ImportCounts ImportFile(const std::string& format, const std::string& input, const std::string& output);

    // Writes the frames of `in` to `out`. Throws std::runtime_error naming
    // the line at fault, or the format when it is not one of Formats().
    static void Import(const std::string& format, std::istream& in, RecordingWriter& out);

    static void FromPrecog(std::istream& in, RecordingWriter& out);
    static void FromTimestampCsv(std::istream& in, RecordingWriter& out);
    static void FromKinectText(std::istream& in, RecordingWriter& out);
};

}  // namespace PelmoraTool
