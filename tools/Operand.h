// Operand - one number the report follows through a replay: a plotted value,
// or one side of a qualification, read straight from a player's value pool
// (an int or float value, or a component of a vector; a literal reads as the
// constant the library made of it). It reads what the library last left
// there, so it is valid between evaluations only. Not thread-safe: read by
// the thread that drives the replay.
#pragma once

#include <string>

namespace PelmoraLib {
class BaseValue;
class IdentifyValues;
}  // namespace PelmoraLib

namespace PelmoraTool {

class Operand {
public:
    Operand() = default;  // reads NaN
    // `part` must be an int or float value or component.
    explicit Operand(PelmoraLib::BaseValue* part) : m_Part(part) {}

    // What a qualification's operand text names in the pool, as the
    // library's compiler resolves it; reads NaN when that is not a number.
    static Operand Named(PelmoraLib::IdentifyValues& pool, const std::string& text);

    double Read() const;

private:
    PelmoraLib::BaseValue* m_Part = nullptr;
};

// The two sides of a qualification, in its order.
struct OperandPair {
    Operand left;
    Operand right;
};

}  // namespace PelmoraTool
