// SegmentConfig - a "Segment" element as read from the document.
// Thread-safety: none; read and compiled on the host's thread.
#pragma once

#include <vector>

#include "config/QualificationConfig.h"
#include "gesture/Segment.h"

namespace PelmoraLib {

class PELMORA_API SegmentConfig {
public:
    SegmentConfig() = default;
    ~SegmentConfig();
    SegmentConfig(const SegmentConfig&) = delete;
    SegmentConfig& operator=(const SegmentConfig&) = delete;

    // Null when any "Qualification" child lacks its keyword.
    static SegmentConfig* Read(TiXmlElement* element);
    Segment* Compiler(int playerIndex);
    void Clear();

    std::vector<QualificationConfig*> m_Qualifications;
};

}  // namespace PelmoraLib
