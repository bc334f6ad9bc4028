#include "config/GestureConfig.h"

#include <tinyxml.h>

#include <cstdio>

namespace PelmoraLib {

GestureConfig::~GestureConfig() { Clear(); }

void GestureConfig::Clear() {
    for (SegmentConfig* segment : m_Segments) delete segment;
    m_Segments.clear();
}

GestureConfig* GestureConfig::Read(TiXmlElement* element) {
    GestureConfig* config = new GestureConfig();
    if (const char* name = element->Attribute("name")) config->m_Name = name;
    for (TiXmlElement* child = element->FirstChildElement("Segment"); child;
         child = child->NextSiblingElement("Segment")) {
        SegmentConfig* segment = SegmentConfig::Read(child);
        if (!segment) {
            delete config;
            return nullptr;
        }
        config->m_Segments.push_back(segment);
    }
    return config;
}

Gesture* GestureConfig::Compiler(int playerIndex) {
    Gesture* gesture = new Gesture(m_Name.c_str());
    gesture->Reserve(m_Segments.size());
    printf("Gesture:%s Begin to Compiler\n", m_Name.c_str());
    for (size_t index = 0; index < m_Segments.size(); ++index) {
        Segment* segment = m_Segments[index]->Compiler(playerIndex);
        if (!segment) {
            printf("PlayerIndex:%d Gesture:%s Segment %d Compiler Failed!\n", playerIndex, m_Name.c_str(),
                   static_cast<int>(index));
            delete gesture;
            return nullptr;
        }
        gesture->AddSegment(segment);
    }
    printf("Gesture:%s Compiler Succeed!\n", m_Name.c_str());
    return gesture;
}

}  // namespace PelmoraLib
