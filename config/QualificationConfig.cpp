#include "config/QualificationConfig.h"

#include <tinyxml.h>

#include <cstdio>
#include <cstdlib>

#include "engine/Pelmora.h"
#include "values/IdentifyValues.h"

namespace PelmoraLib {

namespace {

// Flags read leniently as integers: "2" and "-1" are true, "true" is false.
bool Flag(const TiXmlElement* element, const char* name) {
    const char* text = element->Attribute(name);
    return text && atoi(text) != 0;
}

}  // namespace

QualificationConfig* QualificationConfig::Read(TiXmlElement* element) {
    const char* keyword = element->Attribute("QualificationEnum");
    if (!keyword) return nullptr;
    QualificationConfig* config = new QualificationConfig();
    config->m_QualificationEnum = Qualification::GetQualificationEnum(keyword);
    if (const char* value1 = element->Attribute("value1")) config->m_Values[0] = value1;
    if (const char* value2 = element->Attribute("value2")) config->m_Values[1] = value2;
    config->m_IsResetOnFailed = Flag(element, "IsResetOnFailed");
    config->m_IsFinishOnSucceed = Flag(element, "IsFinishOnSucceed");
    return config;
}

Qualification* QualificationConfig::Compiler(int playerIndex) {
    IdentifyValues* pool = Pelmora::PlayerValues(playerIndex, "PelmoraLib::QualificationConfig::Compiler", 66, 68);
    if (!pool) return nullptr;
    BaseValue::SubType sub0, sub1;
    BaseValue* value0 = pool->GetValueFromString(m_Values[0].c_str(), sub0, false);
    if (!value0) {
        printf("Qualification param 0 value not found\n");
        return nullptr;
    }
    BaseValue* value1 = pool->GetValueFromString(m_Values[1].c_str(), sub1, false);
    if (!value1) {
        printf("Qualification param 1 value not found\n");
        return nullptr;
    }
    Qualification* qualification = new Qualification();
    qualification->SetResetOnFailed(m_IsResetOnFailed);
    qualification->SetFinishOnSucceed(m_IsFinishOnSucceed);
    if (!qualification->SetQualification(m_QualificationEnum, value0, sub0, value1, sub1)) {
        printf("Qualification version not supported.\n");
        delete qualification;
        return nullptr;
    }
    return qualification;
}

}  // namespace PelmoraLib
