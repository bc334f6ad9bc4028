#include "tools/Recording.h"

#include <cmath>
#include <set>
#include <stdexcept>

#include "tools/Numbers.h"
#include "values/ValuesTable.h"

namespace PelmoraTool {

const char* const Recording::kAxes[3] = {".x", ".y", ".z"};

int32_t Recording::JointType(const std::string& name) {
    for (int32_t type = 1; type < PELMORA_JOINT_COUNT; ++type) {
        if (name == PelmoraLib::ValuesTable::JointName(static_cast<size_t>(type))) return type;
    }
    return 0;
}

std::string Recording::JointName(int32_t type) { return PelmoraLib::ValuesTable::JointName(static_cast<size_t>(type)); }

void Recording::CheckDistinct(const std::vector<int32_t>& joints) {
    std::set<int32_t> seen;
    for (int32_t type : joints) {
        if (!seen.insert(type).second) throw std::runtime_error("joint " + JointName(type) + " appears twice");
    }
}

void Recording::CheckTime(double timeMs, double previousMs) {
    if (!(std::abs(timeMs) <= kMaxTimeMs))
        throw std::runtime_error("time_ms is out of range: " + Numbers::Format(timeMs) + " is beyond +-" +
                                 Numbers::Format(kMaxTimeMs));
    if (timeMs < previousMs) throw std::runtime_error("time_ms goes back in time");
}

}  // namespace PelmoraTool
