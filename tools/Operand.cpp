#include "tools/Operand.h"

#include <cmath>

#include "values/IdentifyValues.h"

namespace PelmoraTool {

using PelmoraLib::BaseValue;

Operand Operand::Named(PelmoraLib::IdentifyValues& pool, const std::string& text) {
    BaseValue::SubType sub = BaseValue::SubWhole;
    BaseValue* value = pool.GetValueFromString(text.c_str(), sub, false);
    BaseValue* part = value ? value->GetSubValue(sub) : nullptr;
    if (!part || (part->GetType() != BaseValue::Int && part->GetType() != BaseValue::Float)) return Operand();
    return Operand(part);
}

double Operand::Read() const {
    if (!m_Part) return std::nan("");
    return m_Part->GetType() == BaseValue::Int ? *m_Part->GetValue().i : *m_Part->GetValue().f;
}

}  // namespace PelmoraTool
