#include "gesture/GestureTable.h"

#include "gesture/GestureProgram.h"
#include "values/ValuesTable.h"

namespace PelmoraLib {

GestureTable::GestureTable() : m_Program(new GestureProgram) {}

GestureTable::~GestureTable() { Clear(); }

uint64_t GestureTable::GetGestureIndex(const char* name) const {
    if (!name) return kInvalidIndex;
    const auto found = m_IndexMap.find(name);
    return found == m_IndexMap.end() ? kInvalidIndex : found->second;
}

Gesture* GestureTable::GetGesture(const char* name) const { return GetGesture(GetGestureIndex(name)); }

Gesture* GestureTable::GetGesture(size_t index) const { return GestureAt(index); }

void GestureTable::AddGesture(Gesture* gesture) {
    m_Gestures.push_back(gesture);
    m_IndexMap[gesture->GetName()] = m_Gestures.size() - 1;
    GestureEpoch::Advance();
}

const GestureProgram& GestureTable::Program(const ValuesTable* literals) {
    const uint64_t epoch = GestureEpoch::Current();
    const uint64_t generation = literals ? literals->GetGeneration() : 0;
    if (m_ProgramEpoch != epoch || m_ProgramLiterals != literals || m_ProgramGeneration != generation) {
        m_Program->Build(m_Gestures, literals);
        m_ProgramEpoch = epoch;
        m_ProgramLiterals = literals;
        m_ProgramGeneration = generation;
    }
    return *m_Program;
}

void GestureTable::Clear() {
    for (Gesture* gesture : m_Gestures) {
        gesture->Clear();
        delete gesture;
    }
    m_Gestures.clear();
    m_IndexMap.clear();
    GestureEpoch::Advance();
}

}  // namespace PelmoraLib
