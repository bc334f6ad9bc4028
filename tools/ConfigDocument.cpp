#include "tools/ConfigDocument.h"

#include <tinyxml.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <set>
#include <stdexcept>

#include "values/IdentifyValues.h"

namespace PelmoraTool {

namespace {

XmlPlace PlaceOf(const TiXmlElement& element) { return XmlPlace{element.Row(), element.Column()}; }

std::string Text(const TiXmlElement& element, const char* attribute) {
    const char* text = element.Attribute(attribute);
    return text ? text : "";
}

// The library's flag rule: atoi, nonzero is true.
bool Flag(const TiXmlElement& element, const char* attribute) { return atoi(Text(element, attribute).c_str()) != 0; }

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// Mirrors the value pool: the declarations of one player, refused at the
// first unknown type or name already taken, which ends the block.
class ValueDeclarations {
public:
    explicit ValueDeclarations(ConfigDocument& document) : m_Document(document) {}

    void ReadBlock(const TiXmlElement& block) {
        for (const TiXmlElement* value = block.FirstChildElement("Value"); value; value = value->NextSiblingElement("Value")) {
            if (!Declare(*value)) return;
        }
    }

private:
    bool Declare(const TiXmlElement& value) {
        const std::string keyword = Lower(Text(value, "type"));
        PelmoraLib::BaseValue::Type type;
        if (!PelmoraLib::IdentifyValues::LookUpType(keyword, type)) {
            m_Document.refusedValueTypes.push_back(PlaceOf(value));
            return false;
        }
        const std::string name = Text(value, "name");
        if (m_Standard.HasValues(name.c_str()) || !m_Declared.insert(name).second) {
            m_Document.ignored.push_back({PlaceOf(value), "value \"" + name +
                                                              "\" is already declared: this declaration and the rest "
                                                              "of its IdentfyValues block are ignored"});
            return false;
        }
        if (type == PelmoraLib::BaseValue::Quaternion) m_Document.quaternions.push_back(PlaceOf(value));
        return true;
    }

    ConfigDocument& m_Document;
    PelmoraLib::ValuesTable m_Standard;
    std::set<std::string> m_Declared;
};

// A gesture is dropped whole when one of its qualifications has no kind.
void ReadGesture(const TiXmlElement& element, ConfigDocument& document) {
    GestureEntry gesture{PlaceOf(element), Text(element, "name"), {}};
    for (const TiXmlElement* segment = element.FirstChildElement("Segment"); segment;
         segment = segment->NextSiblingElement("Segment")) {
        SegmentEntry entry{PlaceOf(*segment), {}};
        for (const TiXmlElement* q = segment->FirstChildElement("Qualification"); q;
             q = q->NextSiblingElement("Qualification")) {
            if (!q->Attribute("QualificationEnum")) {
                document.ignored.push_back({PlaceOf(*q), "Gesture \"" + gesture.name +
                                                             "\" is ignored: this Qualification has no "
                                                             "QualificationEnum attribute"});
                return;
            }
            entry.qualifications.push_back({PlaceOf(*q), Text(*q, "QualificationEnum"), Text(*q, "value1"),
                                            Text(*q, "value2"), Flag(*q, "IsResetOnFailed"), Flag(*q, "IsFinishOnSucceed")});
        }
        gesture.segments.push_back(entry);
    }
    document.gestures.push_back(gesture);
}

// A processing is dropped whole when one of its functions has no name.
void ReadProcessing(const TiXmlElement& element, ConfigDocument& document) {
    ProcessingEntry processing{PlaceOf(element), {}};
    for (const TiXmlElement* function = element.FirstChildElement("Function"); function;
         function = function->NextSiblingElement("Function")) {
        if (!function->Attribute("name")) {
            document.ignored.push_back({PlaceOf(*function), "Processing is ignored: this Function has no name attribute"});
            return;
        }
        processing.functions.push_back(PlaceOf(*function));
    }
    document.processings.push_back(processing);
}

}  // namespace

std::string QualificationEntry::Describe() const {
    std::string text = kind + "(" + value1 + ", " + value2 + ")";
    if (resetOnFailed) text += " IsResetOnFailed";
    if (finishOnSucceed) text += " IsFinishOnSucceed";
    return text;
}

ConfigDocument ConfigDocument::Load(const std::string& path) {
    TiXmlDocument xml;
    if (!xml.LoadFile(path.c_str())) {
        throw std::runtime_error(path + ":" + std::to_string(xml.ErrorRow()) + ":" + std::to_string(xml.ErrorCol()) +
                                 ": " + xml.ErrorDesc());
    }
    ConfigDocument document;
    ValueDeclarations values(document);
    // "AppConfig" and every top-level element after it are sections alike.
    for (const TiXmlElement* section = xml.FirstChildElement("AppConfig"); section;
         section = section->NextSiblingElement()) {
        for (const TiXmlElement* child = section->FirstChildElement(); child; child = child->NextSiblingElement()) {
            const std::string name = child->Value();
            if (name == "IdentfyValues") values.ReadBlock(*child);
            if (name == "Processing") ReadProcessing(*child, document);
            if (name == "Gesture") ReadGesture(*child, document);
        }
    }
    return document;
}

}  // namespace PelmoraTool
