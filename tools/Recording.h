// Recording - skeleton frames in the tool's native CSV format:
//   time_ms,player,<Joint>.x,<Joint>.y,<Joint>.z,...[,label]
// <Joint> is a skeleton value name without its "P_" prefix; the column order
// of the joints is the slot order handed to the library. One row per frame
// and player, in time order. A Recording holds a whole file in memory, for
// the importers and tests; replays stream through RecordingReader instead.
// Not thread-safe.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "pelmora.h"

namespace PelmoraTool {

struct RecordedFrame {
    double timeMs = 0.0;
    long long player = 0;
    std::vector<Point3> joints;  // one per joint column, in column order
    std::string label;           // empty: none
};

class Recording {
public:
    std::vector<int32_t> joints;  // PelmoraJoint type of each slot
    bool hasLabels = false;
    std::vector<RecordedFrame> frames;

    // Both read through RecordingReader and throw its errors.
    static Recording Read(std::istream& in);
    static Recording ReadFile(const std::string& path);
    void Write(std::ostream& out) const;
    void WriteFile(const std::string& path) const;

    // "Head" .. "RightFoot" to joint types 1..24; 0 when unknown.
    static int32_t JointType(const std::string& name);
    static std::string JointName(int32_t type);
};

}  // namespace PelmoraTool
