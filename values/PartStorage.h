// PartStorage - where the number (or the three numbers) that a part reference
// names is stored, found once when a compiled step is set up, so that the
// step can read and write it directly on every frame. Only parts that are
// reached silently and always land on the same storage qualify: a whole int,
// float or vector of a pool, or a vector's x, y or z. Anything else (a
// component of a scalar or a vector's .w, which print on every access, or a
// value of another kind) gives null, and the step keeps going through the
// values' accessors each time.
// Thread-safety: reads only; used while compiling.
#pragma once

#include "values/FloatValue.h"
#include "values/IntValue.h"
#include "values/Vector3Value.h"

namespace PelmoraLib {
namespace PartStorage {

// The part that `sub` selects from `value` when selecting it is silent and
// fixed; null otherwise.
inline BaseValue* FixedPart(BaseValue* value, BaseValue::SubType sub) {
    if (!value) return nullptr;
    const RTTI* kind = value->GetRTTI();
    const bool vector = kind == &Vector3Value::ms_RTTI;
    if (sub == BaseValue::SubWhole)
        return vector || kind == &IntValue::ms_RTTI || kind == &FloatValue::ms_RTTI ? value : nullptr;
    if (vector && (sub == BaseValue::SubX || sub == BaseValue::SubY || sub == BaseValue::SubZ))
        return value->GetSubValue(sub);
    return nullptr;
}

// The storage of a part that FixedPart gave; null for any other.
inline void* Of(BaseValue* part) {
    if (!part) return nullptr;
    const RTTI* kind = part->GetRTTI();
    if (kind == &IntValue::ms_RTTI || kind == &FloatValue::ms_RTTI || kind == &RefFloatValue::ms_RTTI ||
        kind == &Vector3Value::ms_RTTI)
        return part->GetValue().p;
    return nullptr;
}

// Both steps at once: the storage of `value` with `sub` applied, or null.
inline void* Find(BaseValue* value, BaseValue::SubType sub) { return Of(FixedPart(value, sub)); }

}  // namespace PartStorage
}  // namespace PelmoraLib
