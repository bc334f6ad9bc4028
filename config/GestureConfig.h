// GestureConfig - a "Gesture" element as read from the document.
// Thread-safety: none; read and compiled on the host's thread.
#pragma once

#include <string>
#include <vector>

#include "config/SegmentConfig.h"
#include "gesture/Gesture.h"

namespace PelmoraLib {

class PELMORA_API GestureConfig {
public:
    GestureConfig() = default;
    ~GestureConfig();
    GestureConfig(const GestureConfig&) = delete;
    GestureConfig& operator=(const GestureConfig&) = delete;

    // Null when any qualification of the gesture lacks its keyword.
    static GestureConfig* Read(TiXmlElement* element);
    Gesture* Compiler(int playerIndex);
    void Clear();

    std::string m_Name;
    std::vector<SegmentConfig*> m_Segments;
};

}  // namespace PelmoraLib
