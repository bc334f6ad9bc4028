#include "values/RefFloatValue.h"

#include <cstdio>

#include "values/FloatValue.h"

namespace PelmoraLib {

const RTTI RefFloatValue::ms_RTTI("RefFloatValue", &BaseValue::ms_RTTI);

RefFloatValue& RefFloatValue::operator=(FloatValue& value) {
    if (m_Ref) {
        *m_Ref = value.Get();
        return *this;
    }
    printf("this ref value is NULL! get the float as ref\n");
    m_Ref = value.GetValue().f;
    return *this;
}

CommonPtr RefFloatValue::GetValue() {
    CommonPtr ptr;
    ptr.f = m_Ref;
    return ptr;
}

}  // namespace PelmoraLib
