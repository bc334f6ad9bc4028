#include "config/FunctionConfig.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "engine/Pelmora.h"
#include "processing/OneVariablesFunction.h"
#include "processing/TwoVariablesFunction.h"
#include "values/IdentifyValues.h"

namespace PelmoraLib {

namespace {

const char* const kSite = "PelmoraLib::FunctionConfig::Compiler";

BaseFunction* OneOperand(BaseFunction::Type type, const std::string& keyword, IdentifyValues& pool,
                         BaseValue* result, BaseValue::SubType resultSub, const std::string& operandText) {
    BaseValue::SubType sub;
    BaseValue* operand = pool.GetValueFromString(operandText.c_str(), sub, false);
    if (!operand) {
        printf("Function param value not found\n");
        return nullptr;
    }
    OneVariablesFunction* function = new OneVariablesFunction(keyword.c_str());
    if (function->SetFunction(type, result, resultSub, operand, sub)) return function;
    printf("Function version not supported\n");
    delete function;
    return nullptr;
}

BaseFunction* TwoOperands(BaseFunction::Type type, const std::string& keyword, IdentifyValues& pool,
                          BaseValue* result, BaseValue::SubType resultSub, const std::vector<std::string>& texts) {
    BaseValue::SubType sub0, sub1;
    BaseValue* operand0 = pool.GetValueFromString(texts[0].c_str(), sub0, false);
    if (!operand0) {
        printf("Function param 0 value not found\n");
        return nullptr;
    }
    BaseValue* operand1 = pool.GetValueFromString(texts[1].c_str(), sub1, false);
    if (!operand1) {
        printf("Function param 1 value not found\n");
        return nullptr;
    }
    TwoVariablesFunction* function = new TwoVariablesFunction(keyword.c_str());
    if (function->SetFunction(type, result, resultSub, operand0, sub0, operand1, sub1)) return function;
    printf("Function version not supported\n");
    delete function;
    return nullptr;
}

}  // namespace

BaseFunction* FunctionConfig::Compiler(int playerIndex) {
    std::transform(m_Keyword.begin(), m_Keyword.end(), m_Keyword.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    BaseFunction::Type type;
    if (!BaseFunction::GetFunctionType(m_Keyword.c_str(), type)) {
        printf("%s is not been define in this version!!\n", m_Keyword.c_str());
        return nullptr;
    }
    IdentifyValues* pool = Pelmora::PlayerValues(playerIndex, kSite, 62, 64);
    if (!pool) return nullptr;
    // Constants are refused here: a function can only write an existing value.
    BaseValue::SubType resultSub;
    BaseValue* result = pool->GetValueFromString(m_Return.c_str(), resultSub, true);
    if (!result) {
        printf("Function return value not found\n");
        return nullptr;
    }
    // The operand count written in the document, not the keyword, picks the
    // class; the routine registries then refuse keywords of the other class.
    if (m_Values.size() == 1) return OneOperand(type, m_Keyword, *pool, result, resultSub, m_Values[0]);
    if (m_Values.size() == 2) return TwoOperands(type, m_Keyword, *pool, result, resultSub, m_Values);
    return nullptr;
}

}  // namespace PelmoraLib
