// Importers - turn common skeleton exports into the native recording format.
// A 20-joint Kinect v1 tracker's:
//   precog         PRECOG CSV: "; "-separated joint names, rows of 20 "x y z"
//                  fields and an action id; 30 frames per second.
//   timestamp-csv  "Timestamp" (ms), then <KinectJoint>X,Y,Z column triples;
//                  columns after the last triple are ignored.
//   kinect-text    whitespace-separated rows: timestamp (µs), then 20 joints
//                  as "x y z w" in Kinect v1 order; all-zero joints mean an
//                  untracked frame, which is skipped.
// Today's trackers', converted by the skeleton source table (SkeletonSource):
//   mediapipe-jsonl    JSON lines {"time_ms": T, "landmarks": [[x, y, z(,
//                      visibility)] x 33](, "mirrored": true)} of the
//                      33-landmark pose estimator's world landmarks.
//   azure-kinect-json  the 32-joint body tracking SDK's JSON of frames and
//                      bodies; each body is a player.
//   ntu-skeleton       the NTU RGB+D ".skeleton" text of 25-joint Kinect v2
//                      bodies, 30 frames per second; each body is a player.
// A frame the library must not see (a wrong joint count, all joints at 0, a
// joint not in front of the camera) stops the import at its line.
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
    static void FromMediapipeJsonl(std::istream& in, RecordingWriter& out);
    static void FromAzureKinectJson(std::istream& in, RecordingWriter& out);
    static void FromNtuSkeleton(std::istream& in, RecordingWriter& out);
};

}  // namespace PelmoraTool
