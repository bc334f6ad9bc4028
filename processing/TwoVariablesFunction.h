// TwoVariablesFunction - a processing step of two operands: ADD, SUB, MUL,
// DIV, DOT, CROSS, DISTANCE, SQRDISTANCE or ANGLE. Values are borrowed from
// the player's pool.
// Thread-safety: none; run by the thread that updates its player.
#pragma once

#include "processing/BaseFunction.h"
#include "values/BaseValue.h"

namespace PelmoraLib {

class PELMORA_API TwoVariablesFunction : public BaseFunction {
public:
    TwoVariablesFunction() = default;
    explicit TwoVariablesFunction(const char* name) : BaseFunction(name) {}

    // False, leaving the function unchanged, when no routine exists for the
    // type and the (component-resolved) value types.
    bool SetFunction(Type type, BaseValue* result, BaseValue::SubType resultSub, BaseValue* operand0,
                     BaseValue::SubType sub0, BaseValue* operand1, BaseValue::SubType sub1);

    void Run() override;
    void RunAndPrint() override;

private:
    Routine m_Routine = nullptr;
    // Set when every part's storage is fixed (see PartStorage): Run then
    // computes on the storage directly.
    DirectRoutine m_Direct = nullptr;
    void* m_ResultStorage = nullptr;
    void* m_Storage0 = nullptr;
    void* m_Storage1 = nullptr;
    BaseValue* m_Result = nullptr;
    BaseValue::SubType m_ResultSub = BaseValue::SubWhole;
    BaseValue* m_Operand0 = nullptr;
    BaseValue::SubType m_Sub0 = BaseValue::SubWhole;
    BaseValue* m_Operand1 = nullptr;
    BaseValue::SubType m_Sub1 = BaseValue::SubWhole;
};

}  // namespace PelmoraLib
