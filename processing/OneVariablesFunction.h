// OneVariablesFunction - a processing step of one operand: SET, ABS, LENGTH,
// SQRLENGTH or NORMALIZE. Values are borrowed from the player's pool.
// Thread-safety: none; run by the thread that updates its player.
#pragma once

#include "processing/BaseFunction.h"
#include "values/BaseValue.h"

namespace PelmoraLib {

class PELMORA_API OneVariablesFunction : public BaseFunction {
public:
    OneVariablesFunction() = default;
    explicit OneVariablesFunction(const char* name) : BaseFunction(name) {}

    // False, leaving the function unchanged, when no routine exists for the
    // type and the (component-resolved) value types.
    bool SetFunction(Type type, BaseValue* result, BaseValue::SubType resultSub, BaseValue* operand,
                     BaseValue::SubType operandSub);

    void Run() override;
    void RunAndPrint() override;

private:
    Routine m_Routine = nullptr;
    // Set when every part's storage is fixed (see PartStorage): Run then
    // computes on the storage directly.
    DirectRoutine m_Direct = nullptr;
    void* m_ResultStorage = nullptr;
    void* m_OperandStorage = nullptr;
    BaseValue* m_Result = nullptr;
    BaseValue::SubType m_ResultSub = BaseValue::SubWhole;
    BaseValue* m_Operand = nullptr;
    BaseValue::SubType m_OperandSub = BaseValue::SubWhole;
};

}  // namespace PelmoraLib
