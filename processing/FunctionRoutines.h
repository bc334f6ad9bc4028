// FunctionRoutines - the registries of processing routines. A key packs four
// 16-bit fields from the low end: function type, result type, first operand
// type, second operand type (0 for one operand). Types are those of the
// values after the component selector is applied, so ".x" counts as a float.
// Thread-safety: each registry is built once per process, thread-safely, and
// only read afterwards.
#pragma once

#include <cstdint>
#include <map>

#include "processing/BaseFunction.h"
#include "values/BaseValue.h"

namespace PelmoraLib {
namespace FunctionRoutines {

using Routine = BaseFunction::Routine;
using DirectRoutine = BaseFunction::DirectRoutine;

struct Routines {
    Routine routine = nullptr;
    DirectRoutine direct = nullptr;
};

uint64_t Key(BaseFunction::Type type, BaseValue::Type result, BaseValue::Type first, BaseValue::Type second);

// SET, ABS, LENGTH, SQRLENGTH, NORMALIZE.
const std::map<uint64_t, Routines>& OneOperand();
// ADD, SUB, MUL, DIV, DOT, CROSS, DISTANCE, SQRDISTANCE, ANGLE.
const std::map<uint64_t, Routines>& TwoOperands();

}  // namespace FunctionRoutines
}  // namespace PelmoraLib
