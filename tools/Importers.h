// Importers - turn common skeleton exports of a 20-joint Kinect v1 tracker
// into the native recording format:
//   precog         PRECOG CSV: "; "-separated joint names, rows of 20 "x y z"
//                  fields and an action id; 30 frames per second.
//   timestamp-csv  "Timestamp" (ms), then <KinectJoint>X,Y,Z column triples;
//                  columns after the last triple are ignored.
//   kinect-text    whitespace-separated rows: timestamp (µs), then 20 joints
//                  as "x y z w" in Kinect v1 order; all-zero joints mean an
//                  untracked frame, which is skipped.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/Recording.h"

namespace PelmoraTool {

class Importers {
public:
    static const std::vector<std::string>& Formats();

    // Throws std::runtime_error naming the line at fault, or the format when
    // it is not one of Formats().
    static Recording Import(const std::string& format, std::istream& in);

    static Recording FromPrecog(std::istream& in);
    static Recording FromTimestampCsv(std::istream& in);
    static Recording FromKinectText(std::istream& in);
};

}  // namespace PelmoraTool
