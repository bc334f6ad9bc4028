#include "processing/TwoVariablesFunction.h"

#include <cstdio>
#include <string>

#include "engine/Pelmora.h"
#include "processing/FunctionRoutines.h"
#include "values/IdentifyValues.h"
#include "values/PartStorage.h"

namespace PelmoraLib {

bool TwoVariablesFunction::SetFunction(Type type, BaseValue* result, BaseValue::SubType resultSub,
                                       BaseValue* operand0, BaseValue::SubType sub0, BaseValue* operand1,
                                       BaseValue::SubType sub1) {
    if (!result || !operand0 || !operand1) return false;
    const BaseValue::Type resultType = result->GetSubValue(resultSub)->GetType();
    const BaseValue::Type type0 = operand0->GetSubValue(sub0)->GetType();
    const BaseValue::Type type1 = operand1->GetSubValue(sub1)->GetType();
    const auto& registry = FunctionRoutines::TwoOperands();
    const auto found = registry.find(FunctionRoutines::Key(type, resultType, type0, type1));
    if (found == registry.end() || !found->second.routine) return false;
    m_Routine = found->second.routine;
    m_Result = result;
    m_ResultSub = resultSub;
    m_Operand0 = operand0;
    m_Sub0 = sub0;
    m_Operand1 = operand1;
    m_Sub1 = sub1;
    m_ResultStorage = PartStorage::Find(result, resultSub);
    m_Storage0 = PartStorage::Find(operand0, sub0);
    m_Storage1 = PartStorage::Find(operand1, sub1);
    m_Direct = m_ResultStorage && m_Storage0 && m_Storage1 ? found->second.direct : nullptr;
    return true;
}

void TwoVariablesFunction::Run() {
    if (m_Direct) {
        m_Direct(m_ResultStorage, m_Storage0, m_Storage1);
        return;
    }
    if (!m_Routine) return;
    m_Routine(m_Result->GetSubValue(m_ResultSub), m_Operand0->GetSubValue(m_Sub0), m_Operand1->GetSubValue(m_Sub1));
}

void TwoVariablesFunction::RunAndPrint() {
    Run();
    if (!Pelmora::Get("PelmoraLib::TwoVariablesFunction::RunAndPrint", 309)) return;
    std::string line;
    IdentifyValues::ValueToString(m_Result, m_ResultSub, line);
    line += " = ";
    IdentifyValues::ValueToString(m_Operand0, m_Sub0, line);
    line += " ";
    line += m_Name;
    line += " ";
    IdentifyValues::ValueToString(m_Operand1, m_Sub1, line);
    printf("%s\n", line.c_str());
}

}  // namespace PelmoraLib
