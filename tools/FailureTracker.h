// FailureTracker - explains a failed result record: re-checks, through the
// library's exported classes, the qualifications of the segment the record
// was about, with the gesture and segment times that check saw, and names the
// first one that did not hold. That qualification is what decided the
// record: the library stops a segment's check at the first failure. Given
// the segment's operands, it also reads the two numbers that qualification
// compared, with the same times in place.
#pragma once

#include <cmath>
#include <vector>

#include "pelmora.h"
#include "tools/Operand.h"

namespace PelmoraTool {

struct Failure {
    int qualification = -1;  // -1: none failed on re-check
    bool reset = false;      // the failing qualification restarts the gesture
    double left = std::nan("");  // what it compared, when its operands were given
    double right = std::nan("");
};

class FailureTracker {
public:
    // Valid between evaluations only: after UpdateSketonDataImmediate has
    // returned, or once the worker has published the player's results.
    // `operands`, when given, are those of the record's segment, in order.
    static Failure Explain(int player, const PelmoraResult24& record,
                           const std::vector<OperandPair>* operands = nullptr);
};

}  // namespace PelmoraTool
