#include "FuzzHost.h"

#include <cmath>

namespace PelmoraFuzz {

int32_t g_JointTypes[kJoints] = {4, 3, 2, 1, 6, 7, 8, 9, 12, 13, 14, 15, 17, 18, 19, 20, 21, 22, 23, 24};

void Silence() {
    static const bool silenced = freopen("/dev/null", "w", stdout) != nullptr;
    (void)silenced;
}

void MakeFrame(Point3* frame, float phase) {
    for (int32_t j = 0; j < kJoints; ++j) {
        const float row = static_cast<float>(j);
        frame[j] = Point3{0.1f * std::sin(phase + row), 1.0f - 0.1f * row + 0.05f * std::cos(phase), 3.0f};
    }
}

GestureConfigParam MakeParam(int32_t players, bool worker) {
    GestureConfigParam param{};
    param.IsUseSubThread = worker ? 1 : 0;
    param.ReturnInfoType = PELMORA_RETURN_INFO_24;
    param.PlayerNum = players;
    param.SkeletonNum = kJoints;
    param.SkeletonTypeArray = g_JointTypes;
    param.VelocityFrameNum = 2;
    param.IsGetVelocityData = 1;
    return param;
}

}  // namespace PelmoraFuzz
