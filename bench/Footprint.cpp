// pelmora_footprint - the data one update frame touches, counted as distinct
// cache lines: the library's pass against the hand-written rules over the
// same frames. A worker woken after a few milliseconds of sleep finds little
// of this in its caches, so its pass costs about what it touches rather than
// what it executes; the instruction count alone hides that.
//
// Meant to run under callgrind's cache simulation (scripts/footprint does):
// before each measured frame a sweep larger than the simulated caches empties
// them, and only the frame itself is collected, so every line it reads or
// writes is counted once as a last-level miss.
//   pelmora_footprint library|hand-written [players] [gestures]
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench/Session.h"
#include "bench/Workload.h"

namespace {

using namespace PelmoraBench;

const uint64_t kWarmUpFrames = 200;
const uint64_t kMeasuredFrames = 10;
const uint64_t kFramesApart = 7;  // measured frames fall at different points of the motion

// Larger than any cache the simulation is given.
void EmptyTheCaches() {
    static std::vector<char> sweep(64u << 20);
    for (size_t at = 0; at < sweep.size(); at += 64) ++sweep[at];
}

}  // namespace

int main(int argc, char** argv) {
    const bool library = argc > 1 && std::string(argv[1]) == "library";
    const bool hand = argc > 1 && std::string(argv[1]) == "hand-written";
    if (!library && !hand) {
        fprintf(stderr, "usage: %s library|hand-written [players] [gestures]\n", argv[0]);
        return 2;
    }
    const int players = argc > 2 ? atoi(argv[2]) : 6;
    const int gestures = argc > 3 ? atoi(argv[3]) : 100;
    FrameClock clock;
    Session session(false, players, Document(gestures), clock);
    if (!session.Ok()) {
        fprintf(stderr, "%s\n", session.Error().c_str());
        return 1;
    }
    std::vector<std::vector<Point3>> motions;
    for (int p = 0; p < players; ++p) motions.push_back(MakeMotion(p));
    HandWritten rules(MakeGestures(gestures), players, session.EnabledAt());
    std::vector<PelmoraResult24> results(static_cast<size_t>(gestures) + 1);

    const uint64_t frames = kWarmUpFrames + kMeasuredFrames * kFramesApart;
    for (uint64_t frame = 0; frame < frames; ++frame) {
        const uint32_t now = clock.Advance(kFrameMs);
        const bool measured = frame >= kWarmUpFrames && (frame - kWarmUpFrames) % kFramesApart == 0;
        if (measured) {
            EmptyTheCaches();
            CALLGRIND_TOGGLE_COLLECT;
        }
        for (int p = 0; p < players; ++p) {
            const Point3* joints = motions[static_cast<size_t>(p)].data() + (frame % kCycleFrames) * kJointCount;
            uint32_t count = 0;
            if (library) {
                UpdateSketonDataImmediate(p, joints, kJointCount, results.data(), &count);
            } else {
                rules.Update(p, joints, now, results.data());
            }
        }
        if (measured) CALLGRIND_TOGGLE_COLLECT;
    }
    printf("%llu frames measured\n", static_cast<unsigned long long>(kMeasuredFrames));
    return 0;
}
