#include "config/GestureConfigTable.h"

#include <cstdio>

namespace PelmoraLib {

GestureConfigTable::~GestureConfigTable() { Clear(); }

void GestureConfigTable::Clear() {
    for (GestureConfig* gesture : m_Gestures) delete gesture;
    m_Gestures.clear();
}

bool GestureConfigTable::Read(TiXmlElement* element) {
    GestureConfig* gesture = GestureConfig::Read(element);
    if (!gesture) return false;
    m_Gestures.push_back(gesture);
    return true;
}

bool GestureConfigTable::Compiler(int playerIndex, GestureTable& table) {
    bool result = true;
    for (size_t index = 0; index < m_Gestures.size(); ++index) {
        Gesture* gesture = m_Gestures[index]->Compiler(playerIndex);
        if (!gesture) {
            printf("Gesture Compiler failed! Index == %d\n", static_cast<int>(index));
            result = false;
            continue;
        }
        table.AddGesture(gesture);
    }
    return result;
}

}  // namespace PelmoraLib
