// FailureTracker - explains a failed result record: re-checks, through the
// library's exported classes, the qualifications of the segment the record
// was about, with the gesture and segment times that check saw, and names the
// first one that did not hold. That qualification is what decided the
// record: the library stops a segment's check at the first failure.
#pragma once

#include "pelmora.h"

namespace PelmoraTool {

struct Failure {
    int qualification = -1;  // -1: none failed on re-check
    bool reset = false;      // the failing qualification restarts the gesture
};

class FailureTracker {
public:
    // Valid between evaluations only: after UpdateSketonDataImmediate has
    // returned, or once the worker has published the player's results.
    static Failure Explain(int player, const PelmoraResult24& record);
};

}  // namespace PelmoraTool
