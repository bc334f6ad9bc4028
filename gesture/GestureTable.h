// GestureTable - one player's compiled gestures, found by position or by
// exact name. A later gesture of the same name takes the name over; the
// earlier one stays reachable by index.
// Thread-safety: none; filled while compiling, then only read by the thread
// that updates the player and by the host's look-ups.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "gesture/Gesture.h"

namespace PelmoraLib {

class GestureProgram;
class ValuesTable;

class PELMORA_API GestureTable {
public:
    // The not-found index: the 32-bit all-ones pattern in a 64-bit result.
    static const uint64_t kInvalidIndex = 0xFFFFFFFFull;

    GestureTable();
    ~GestureTable();
    GestureTable(const GestureTable&) = delete;
    GestureTable& operator=(const GestureTable&) = delete;

    uint64_t GetGestureIndex(const char* name) const;
    Gesture* GetGesture(const char* name) const;
    Gesture* GetGesture(size_t index) const;
    // GetGesture by index, inline for the player's gesture loop.
    Gesture* GestureAt(size_t index) const {
        return index == kInvalidIndex || index >= m_Gestures.size() ? nullptr : m_Gestures[index];
    }
    uint64_t GetGestureNum() const { return m_Gestures.size(); }
    void Clear();

    // The gestures laid out for checking, rebuilt first when any gesture
    // definition changed since it was last built, or when asked with another
    // pool (or the same pool refilled) than last time. `literals` is the pool
    // the gestures' literal constants come from; null copies none.
    const GestureProgram& Program(const ValuesTable* literals);

protected:
    friend class GestureConfigTable;
    friend struct GestureTableAccess;  // lets tests build tables without a document

    void AddGesture(Gesture* gesture);

private:
    std::map<std::string, uint64_t> m_IndexMap;
    std::vector<Gesture*> m_Gestures;
    std::unique_ptr<GestureProgram> m_Program;
    uint64_t m_ProgramEpoch = 0;
    const ValuesTable* m_ProgramLiterals = nullptr;
    uint64_t m_ProgramGeneration = 0;
};

}  // namespace PelmoraLib
