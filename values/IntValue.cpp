#include "values/IntValue.h"

namespace PelmoraLib {

const RTTI IntValue::ms_RTTI("IntValue", &BaseValue::ms_RTTI);

CommonPtr IntValue::GetValue() {
    CommonPtr ptr;
    ptr.i = &m_Value;
    return ptr;
}

}  // namespace PelmoraLib
