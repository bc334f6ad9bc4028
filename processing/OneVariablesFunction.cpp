#include "processing/OneVariablesFunction.h"

#include <cstdio>
#include <string>

#include "engine/Pelmora.h"
#include "processing/FunctionRoutines.h"
#include "values/IdentifyValues.h"
#include "values/PartStorage.h"

namespace PelmoraLib {

bool OneVariablesFunction::SetFunction(Type type, BaseValue* result, BaseValue::SubType resultSub,
                                       BaseValue* operand, BaseValue::SubType operandSub) {
    if (!result || !operand) return false;
    const BaseValue::Type resultType = result->GetSubValue(resultSub)->GetType();
    const BaseValue::Type operandType = operand->GetSubValue(operandSub)->GetType();
    const auto& registry = FunctionRoutines::OneOperand();
    const auto found = registry.find(FunctionRoutines::Key(type, resultType, operandType, BaseValue::Int));
    if (found == registry.end() || !found->second.routine) return false;
    m_Routine = found->second.routine;
    m_Result = result;
    m_ResultSub = resultSub;
    m_Operand = operand;
    m_OperandSub = operandSub;
    m_ResultStorage = PartStorage::Find(result, resultSub);
    m_OperandStorage = PartStorage::Find(operand, operandSub);
    m_Direct = m_ResultStorage && m_OperandStorage ? found->second.direct : nullptr;
    return true;
}

void OneVariablesFunction::Run() {
    if (m_Direct) {
        m_Direct(m_ResultStorage, m_OperandStorage, nullptr);
        return;
    }
    if (!m_Routine) return;
    m_Routine(m_Result->GetSubValue(m_ResultSub), m_Operand->GetSubValue(m_OperandSub), nullptr);
}

void OneVariablesFunction::RunAndPrint() {
    Run();
    if (!Pelmora::Get("PelmoraLib::OneVariablesFunction::RunAndPrint", 142)) return;
    std::string line;
    IdentifyValues::ValueToString(m_Result, m_ResultSub, line);
    line += " = ";
    line += m_Name;
    line += "( ";
    IdentifyValues::ValueToString(m_Operand, m_OperandSub, line);
    line += " )";
    printf("%s\n", line.c_str());
}

}  // namespace PelmoraLib
