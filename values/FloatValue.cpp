#include "values/FloatValue.h"

namespace PelmoraLib {

const RTTI FloatValue::ms_RTTI("FloatValue", &BaseValue::ms_RTTI);

CommonPtr FloatValue::GetValue() {
    CommonPtr ptr;
    ptr.f = &m_Value;
    return ptr;
}

}  // namespace PelmoraLib
