// BaseFunction - a compiled processing step: computes one value of a player's
// pool from one or two others, by a routine chosen at compile time from the
// function keyword and the operand types.
// Thread-safety: none; run by the thread that updates its player. The keyword
// table and the routine registries are built once per process, thread-safely.
#pragma once

#include <string>

#include "PelmoraExport.h"

namespace PelmoraLib {

class BaseValue;

class PELMORA_API BaseFunction {
public:
    enum Type {
        SET = 0, ABS, LENGTH, SQRLENGTH, NORMALIZE,           // one operand
        ADD, SUB, MUL, DIV, DOT, CROSS, DISTANCE, SQRDISTANCE, ANGLE  // two operands
    };

    BaseFunction() = default;
    explicit BaseFunction(const char* name) : m_Name(name ? name : "") {}
    BaseFunction(const BaseFunction&) = default;
    BaseFunction& operator=(const BaseFunction&) = default;
    virtual ~BaseFunction() = default;

    // A routine computes `result` from `first` (and `second`, null for one
    // operand). The direct form computes on the values' storage, found
    // beforehand (see PartStorage): no virtual accessor on the way.
    using Routine = void (*)(BaseValue* result, BaseValue* first, BaseValue* second);
    using DirectRoutine = void (*)(void* result, void* first, void* second);

    virtual void Run() = 0;
    virtual void RunAndPrint() = 0;

    const char* GetName() const { return m_Name.c_str(); }

    // Upper-case keyword ("SET" ... "ANGLE") to type; false when unknown.
    static bool GetFunctionType(const char* keyword, Type& type);

protected:
    std::string m_Name;
};

}  // namespace PelmoraLib
