// ScalarConversion - int arithmetic and float-to-int conversion that are
// defined for every input, so a configuration can never make the host
// process misbehave: int results wrap as two's complement, a float converts
// by truncation toward zero with NaN giving 0 and out-of-range values
// saturating to the int limits.
// Thread-safety: pure functions.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace PelmoraLib {
namespace ScalarConversion {

inline int32_t ToInt(float value) {
    if (std::isnan(value)) return 0;
    if (value >= 2147483648.0f) return std::numeric_limits<int32_t>::max();
    if (value < -2147483648.0f) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

inline int32_t Wrap(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

}  // namespace ScalarConversion
}  // namespace PelmoraLib
