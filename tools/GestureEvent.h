// GestureEvent - one thing that happened to a gesture in a replayed frame:
//   finished  the record says finished; segment = the segment that finished it
//   advanced  the segment succeeded without finishing; segment = the segment
//             that succeeded (the gesture now waits in segment + 1)
//   reset     the gesture fell back to segment 0 from segment > 0 without
//             finishing; segment = the segment it fell back from
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace PelmoraTool {

enum class EventKind { Finished, Advanced, Reset };

inline const char* EventName(EventKind kind) {
    switch (kind) {
        case EventKind::Finished: return "finished";
        case EventKind::Advanced: return "advanced";
        case EventKind::Reset: return "reset";
    }
    return "";
}

struct GestureEvent {
    double timeMs = 0.0;  // the recording's time of the evaluation
    size_t frame = 0;     // the recording's data row, from 0
    long long player = 0; // the recording's player number
    std::string gesture;
    EventKind kind = EventKind::Finished;
    uint32_t segment = 0;
    std::string label;    // the frame's label, empty for none
};

}  // namespace PelmoraTool
