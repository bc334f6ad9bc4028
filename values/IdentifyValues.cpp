#include "values/IdentifyValues.h"

#include <tinyxml.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <strings.h>

namespace PelmoraLib {

namespace {

const std::map<std::string, BaseValue::Type>& TypeKeywords() {
    static const std::map<std::string, BaseValue::Type> keywords = {
        {"int", BaseValue::Int},
        {"float", BaseValue::Float},
        {"vector3", BaseValue::Vector3},
        {"quaternion", BaseValue::Quaternion},
    };
    return keywords;
}

std::string LowerCase(const char* text) {
    std::string lower = text ? text : "";
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

BaseValue::SubType ParseComponent(const char* text) {
    if (strcasecmp(text, "x") == 0) return BaseValue::SubX;
    if (strcasecmp(text, "y") == 0) return BaseValue::SubY;
    if (strcasecmp(text, "z") == 0) return BaseValue::SubZ;
    if (strcasecmp(text, "w") == 0) return BaseValue::SubW;
    return BaseValue::SubWhole;
}

const char* AttributeOrEmpty(const TiXmlElement* element, const char* name) {
    const char* text = element->Attribute(name);
    return text ? text : "";
}

const char* ElementText(const TiXmlElement* element) {
    const TiXmlNode* child = element->FirstChild();
    if (child && child->ToText()) return child->Value();
    return "";
}

}  // namespace

IdentifyValues::IdentifyValues() { InitCommon(); }

// The keyword map is an immutable function-local static: built once, thread-safely.
void IdentifyValues::InitCommon() { TypeKeywords(); }

bool IdentifyValues::LookUpType(const std::string& keyword, BaseValue::Type& type) {
    const auto found = TypeKeywords().find(keyword);
    if (found == TypeKeywords().end()) return false;
    type = found->second;
    return true;
}

bool IdentifyValues::Read(TiXmlElement* section) {
    if (!section) return true;
    for (TiXmlElement* element = section->FirstChildElement("Value"); element;
         element = element->NextSiblingElement("Value")) {
        const std::string keyword = LowerCase(element->Attribute("type"));
        BaseValue::Type type;
        if (!LookUpType(keyword, type)) {
            printf("%s type is undefine value type!!\n", keyword.c_str());
            return false;
        }
        if (CreateValue(type, AttributeOrEmpty(element, "name"), ElementText(element)) == kInvalidIndex) return false;
    }
    return true;
}

BaseValue* IdentifyValues::GetValueFromString(const char* text, BaseValue::SubType& sub, bool noConstant) {
    sub = BaseValue::SubWhole;
    if (!text) return nullptr;
    if (text[0] != '@') return noConstant ? nullptr : GetConstValue(text);

    const char* name = text + 1;
    const char* dot = strchr(name, '.');
    if (!dot) return GetValue(name);
    sub = ParseComponent(dot + 1);
    return GetValue(std::string(name, dot).c_str());
}

void IdentifyValues::ValueToString(BaseValue* value, BaseValue::SubType& sub, std::string& out) {
    if (!value) return;
    char buffer[260] = {0};
    const char* name = value->Name();
    CommonPtr storage = value->GetValue();
    switch (value->GetType()) {
        case BaseValue::Int:
            snprintf(buffer, sizeof buffer, "%s(%d)", name, storage.i ? *storage.i : 0);
            break;
        case BaseValue::Float:
            snprintf(buffer, sizeof buffer, "%s(%f)", name, storage.f ? static_cast<double>(*storage.f) : 0.0);
            break;
        case BaseValue::Vector3: {
            const float* v = storage.v3;
            switch (sub) {
                case BaseValue::SubWhole: snprintf(buffer, sizeof buffer, "%s(%f,%f,%f)", name, v[0], v[1], v[2]); break;
                case BaseValue::SubX: snprintf(buffer, sizeof buffer, "%s.x(%f)", name, v[0]); break;
                case BaseValue::SubY: snprintf(buffer, sizeof buffer, "%s.y(%f)", name, v[1]); break;
                case BaseValue::SubZ: snprintf(buffer, sizeof buffer, "%s.z(%f)", name, v[2]); break;
                default: break;
            }
            break;
        }
        default:
            break;
    }
    out += buffer;
}

}  // namespace PelmoraLib
