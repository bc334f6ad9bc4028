#include "tools/ConfigDocument.h"

#include <tinyxml.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
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
        const std::string keyword = ConfigDocument::TypeKeyword(value);
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

XmlPlace PlaceAt(const std::string& text, size_t offset) {
    XmlPlace place{1, 1};
    for (size_t i = 0; i < offset && i < text.size(); ++i) {
        place.row += text[i] == '\n' ? 1 : 0;
        place.column = text[i] == '\n' ? 1 : place.column + 1;
    }
    return place;
}

std::optional<ConfigNote> EncodingProblem(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return ConfigNote{{1, 1}, "the file is empty"};
    const bool zeroEven = text.size() >= 4 && text[0] == '\0' && text[2] == '\0' && text[1] && text[3];
    const bool zeroOdd = text.size() >= 4 && text[1] == '\0' && text[3] == '\0' && text[0] && text[2];
    if (text.rfind("\xff\xfe", 0) == 0 || text.rfind("\xfe\xff", 0) == 0 || zeroEven || zeroOdd)
        return ConfigNote{{1, 1}, "the file is UTF-16 text; save it as UTF-8"};
    if (text.rfind("\xef\xbb\xbf<", 0) == 0 || text[first] == '<' || text[first] == '\0') return std::nullopt;
    char byte[8];
    snprintf(byte, sizeof byte, "0x%02x", static_cast<unsigned char>(text[first]));
    return ConfigNote{PlaceAt(text, first), std::string("not an XML document: it begins with byte ") + byte};
}

// Where the parser stops reading without an error: it reads the file as a C
// string, and an unclosed comment or a DOCTYPE's internal subset swallows
// the rest of the file.
std::optional<ConfigNote> SwallowedText(const std::string& text) {
    const size_t nul = text.find('\0');
    if (nul != std::string::npos) return ConfigNote{PlaceAt(text, nul), "a NUL byte: the library reads nothing after it"};
    for (size_t open = text.find("<!--"); open != std::string::npos;) {
        const size_t close = text.find("-->", open + 4);
        if (close == std::string::npos)
            return ConfigNote{PlaceAt(text, open), "this comment is never closed: the library reads the rest of the file as a comment"};
        open = text.find("<!--", close + 3);
    }
    const size_t doctype = text.find("<!DOCTYPE");
    if (doctype != std::string::npos && text.find('[', doctype) < text.find('>', doctype))
        return ConfigNote{PlaceAt(text, doctype), "a DOCTYPE with an internal subset: the library reads nothing after it"};
    return std::nullopt;
}

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
    if (gesture.segments.empty())
        document.ignored.push_back({gesture.place, "Gesture \"" + gesture.name +
                                                       "\" has no Segment: the library reports \"SegmentIndex Out of "
                                                       "range!!\" for it on every frame"});
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
    if (const std::optional<ConfigNote> problem = ByteProblem(path)) document.ignored.push_back(*problem);
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

std::optional<ConfigNote> ConfigDocument::ByteProblem(const std::string& path) {
    const std::optional<std::string> text = ReadBytes(path);
    if (!text) return std::nullopt;
    if (std::optional<ConfigNote> problem = EncodingProblem(*text)) return problem;
    return SwallowedText(*text);
}

std::optional<std::string> ConfigDocument::ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

std::string ConfigDocument::TypeKeyword(const TiXmlElement& declaration) {
    std::string keyword = Text(declaration, "type");
    std::transform(keyword.begin(), keyword.end(), keyword.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return keyword;
}

}  // namespace PelmoraTool
