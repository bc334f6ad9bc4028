// GestureConfigTable - the gestures of every loaded document, in load order,
// compiled on request into one player's gesture table.
// Thread-safety: none; used on the host's thread while no pass runs.
#pragma once

#include <vector>

#include "config/GestureConfig.h"
#include "gesture/GestureTable.h"

namespace PelmoraLib {

class PELMORA_API GestureConfigTable {
public:
    GestureConfigTable() = default;
    ~GestureConfigTable();
    GestureConfigTable(const GestureConfigTable&) = delete;
    GestureConfigTable& operator=(const GestureConfigTable&) = delete;

    // Appends one "Gesture" element; false (silently) when it was dropped.
    bool Read(TiXmlElement* element);
    // Adds every gesture that compiles; false when any failed.
    bool Compiler(int playerIndex, GestureTable& table);
    void Clear();
    size_t GetGestureConfigNum() const { return m_Gestures.size(); }

private:
    std::vector<GestureConfig*> m_Gestures;
};

}  // namespace PelmoraLib
