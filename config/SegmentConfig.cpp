#include "config/SegmentConfig.h"

#include <tinyxml.h>

#include <cstdio>

namespace PelmoraLib {

SegmentConfig::~SegmentConfig() { Clear(); }

void SegmentConfig::Clear() {
    for (QualificationConfig* qualification : m_Qualifications) delete qualification;
    m_Qualifications.clear();
}

SegmentConfig* SegmentConfig::Read(TiXmlElement* element) {
    SegmentConfig* config = new SegmentConfig();
    for (TiXmlElement* child = element->FirstChildElement("Qualification"); child;
         child = child->NextSiblingElement("Qualification")) {
        QualificationConfig* qualification = QualificationConfig::Read(child);
        if (!qualification) {
            delete config;
            return nullptr;
        }
        config->m_Qualifications.push_back(qualification);
    }
    return config;
}

Segment* SegmentConfig::Compiler(int playerIndex) {
    Segment* segment = new Segment();
    segment->Reserve(m_Qualifications.size());
    for (size_t index = 0; index < m_Qualifications.size(); ++index) {
        Qualification* qualification = m_Qualifications[index]->Compiler(playerIndex);
        if (!qualification) {
            printf("PlayerIndex: %d Qualification Index %d Compiler Failed!\n", playerIndex, static_cast<int>(index));
            delete segment;
            return nullptr;
        }
        segment->AddQualification(qualification);
    }
    return segment;
}

}  // namespace PelmoraLib
