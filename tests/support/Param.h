// Param - the start-up record tests hand to InitPelmora: the given players and
// skeleton slots, 24-byte records, evaluation on the caller's thread, the
// shortest velocity history; a test changes the fields it is about.
// Thread-safety: a plain value.
#pragma once

#include "pelmora.h"

namespace PelmoraTest {

inline GestureConfigParam Param(int players, int32_t* slots, int slotCount) {
    GestureConfigParam param{};
    param.ReturnInfoType = PELMORA_RETURN_INFO_24;
    param.PlayerNum = players;
    param.SkeletonNum = slotCount;
    param.SkeletonTypeArray = slots;
    param.VelocityFrameNum = 2;
    return param;
}

}  // namespace PelmoraTest
