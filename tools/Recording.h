// Recording - the tool's native recording format, a CSV file:
//   time_ms,player,<Joint>.x,<Joint>.y,<Joint>.z,...[,label]
// <Joint> is a skeleton value name without its "P_" prefix; the column order
// of the joints is the slot order handed to the library. One row per frame
// and player, in time order. RecordingReader reads it as a stream and
// RecordingWriter writes it; this holds the rules both keep. Stateless: safe
// from any thread.
#pragma once

#include <cstdint>
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
    // Whole milliseconds up to here are exact doubles.
    static constexpr double kMaxTimeMs = 9007199254740992.0;
    static const char* const kAxes[3];  // ".x", ".y", ".z"

    // "Head" .. "RightFoot" to joint types 1..24; 0 when unknown.
    static int32_t JointType(const std::string& name);
    static std::string JointName(int32_t type);

    // Each throws std::runtime_error naming the fault: a joint that appears
    // twice; a time beyond +-kMaxTimeMs or earlier than the one before.
    static void CheckDistinct(const std::vector<int32_t>& joints);
    static void CheckTime(double timeMs, double previousMs);
};

}  // namespace PelmoraTool
