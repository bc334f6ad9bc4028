// Fuzzes configuration documents: load, compile, and a few frames through
// every gesture, with the trace switched on for some inputs so the printing
// paths run too.
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzHost.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace PelmoraFuzz;
    Silence();
    const std::string text(reinterpret_cast<const char*>(data), size);
    GestureConfigParam param = MakeParam(1, false);
    InitPelmora(&param);
    SetDebugInfo(size % 7 == 0);
    LoadConfigData(text.c_str());
    StartGestureWork();
    SetPlayerImmediate(0, true);
    const uint64_t gestures = GetGestureNum(0);
    for (uint64_t g = 0; g < gestures; ++g) SetPlayerGestureImmediate(0, static_cast<uint32_t>(g), true);
    std::vector<PelmoraResult24> results(gestures + 1);
    Point3 frame[kJoints];
    for (int i = 0; i < 4; ++i) {
        MakeFrame(frame, static_cast<float>(i));
        uint32_t count = 0;
        UpdateSketonDataImmediate(0, frame, kJoints, results.data(), &count);
    }
    SetDebugInfo(false);
    ClosePelmora();
    return 0;
}
