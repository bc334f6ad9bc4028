#include "gesture/GestureTable.h"

namespace PelmoraLib {

GestureTable::~GestureTable() { Clear(); }

uint64_t GestureTable::GetGestureIndex(const char* name) const {
    if (!name) return kInvalidIndex;
    const auto found = m_IndexMap.find(name);
    return found == m_IndexMap.end() ? kInvalidIndex : found->second;
}

Gesture* GestureTable::GetGesture(const char* name) const { return GetGesture(GetGestureIndex(name)); }

Gesture* GestureTable::GetGesture(size_t index) const {
    if (index == kInvalidIndex || index >= m_Gestures.size()) return nullptr;
    return m_Gestures[index];
}

void GestureTable::AddGesture(Gesture* gesture) {
    m_Gestures.push_back(gesture);
    m_IndexMap[gesture->GetName()] = m_Gestures.size() - 1;
}

void GestureTable::Clear() {
    for (Gesture* gesture : m_Gestures) {
        gesture->Clear();
        delete gesture;
    }
    m_Gestures.clear();
    m_IndexMap.clear();
}

}  // namespace PelmoraLib
