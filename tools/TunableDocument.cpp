#include "tools/TunableDocument.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

#include <tinyxml.h>

#include <cctype>

#include "tools/Numbers.h"

namespace PelmoraTool {

namespace {

const char* const kBlanks = " \t\r\n";

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot open " + path);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

std::string PlaceText(const std::string& path, const XmlPlace& place) {
    return path + ":" + std::to_string(place.row) + ":" + std::to_string(place.column);
}

// Where each line begins, line 1 first.
std::vector<size_t> LineStarts(const std::string& text) {
    std::vector<size_t> starts{0};
    for (size_t i = text.find('\n'); i != std::string::npos; i = text.find('\n', i + 1)) starts.push_back(i + 1);
    return starts;
}

// The parser counts columns in characters and tab stops, so an element is
// found by its line and by how many elements of its kind come before it on
// that line; the caller checks what it finds.
size_t ElementOffset(const std::string& text, const std::vector<size_t>& lines, const std::string& tag, int row,
                     size_t rank) {
    if (row < 1 || static_cast<size_t>(row) > lines.size()) return std::string::npos;
    const size_t lineEnd = static_cast<size_t>(row) < lines.size() ? lines[row] : text.size();
    size_t at = text.find("<" + tag, lines[row - 1]);
    for (size_t k = 0; k < rank && at < lineEnd; ++k) at = text.find("<" + tag, at + 1);
    return at < lineEnd ? at : std::string::npos;
}

struct TextSpan {
    size_t begin = std::string::npos, end = std::string::npos;
};

// The raw text of an attribute of the element that opens at `element`.
TextSpan AttributeText(const std::string& text, size_t element, const std::string& name) {
    size_t at = text.find_first_of(kBlanks, element);
    while (at < text.size()) {
        at = text.find_first_not_of(kBlanks, at);
        if (at == std::string::npos || text[at] == '>' || text[at] == '/') break;
        const size_t equals = text.find('=', at);
        if (equals == std::string::npos) break;
        const std::string attribute = Numbers::Trim(text.substr(at, equals - at));
        const size_t quote = text.find_first_not_of(kBlanks, equals + 1);
        if (quote == std::string::npos || (text[quote] != '"' && text[quote] != '\'')) break;
        const size_t close = text.find(text[quote], quote + 1);
        if (close == std::string::npos) break;
        if (attribute == name) return {quote + 1, close};
        at = close + 1;
    }
    return {};
}

// The library's reading of an operand: a reference, a vector, or a number.
bool ReadNumber(const std::string& operand, double& value, bool& integer) {
    if (operand.empty() || operand[0] == '@' || std::count(operand.begin(), operand.end(), ',') >= 2) return false;
    integer = operand.find('.') == std::string::npos;
    try {
        value = integer ? static_cast<double>(Numbers::ReadInteger(operand, "")) : Numbers::ReadDouble(operand, "");
    } catch (const std::runtime_error&) {
        return false;  // the library reads a prefix of it: nothing a search could move
    }
    return true;
}

// How many entries on the same line come before this one.
size_t RankOnLine(const std::vector<XmlPlace>& all, const XmlPlace& place) {
    return static_cast<size_t>(std::count_if(all.begin(), all.end(), [&](const XmlPlace& other) {
        return other.row == place.row && other.column < place.column;
    }));
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool Names(const std::string& operand, const std::string& value) {
    return operand == "@" + value || operand.rfind("@" + value + ".", 0) == 0;
}

// Every element of the sections the library reads, in document order.
template <typename Visit>
void ForEachElement(const TiXmlElement& element, const Visit& visit) {
    visit(element);
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) ForEachElement(*child, visit);
}

}  // namespace

// Finds elements and their operands in the document's text.
struct TunableDocument::Locator {
    const std::string& path;
    const std::string& text;
    std::vector<size_t> lines;
    std::vector<XmlPlace> qualifications;  // of every gesture the library keeps

    // Where the operand's text begins; throws when the raw text is not the operand as read.
    size_t Operand(const QualificationEntry& q, const std::string& attribute, const std::string& operand) const {
        const size_t element = ElementOffset(text, lines, "Qualification", q.place.row, RankOnLine(qualifications, q.place));
        const TextSpan span = element == std::string::npos ? TextSpan() : AttributeText(text, element, attribute);
        if (span.begin == std::string::npos || text.compare(span.begin, span.end - span.begin, operand) != 0)
            throw std::runtime_error(PlaceText(path, q.place) + ": the " + attribute +
                                     " of this qualification is not written plainly enough to be changed in place");
        return span.begin;
    }
};

std::string TunableConstant::Label() const { return std::to_string(place.row) + ":" + attribute; }

TunableDocument TunableDocument::Load(const std::string& path, const std::vector<std::string>& gestures,
                                      const std::vector<std::string>& values) {
    const ConfigDocument config = ConfigDocument::Load(path);
    TunableDocument document;
    document.path = path;
    document.text = ReadText(path);
    document.gestures = gestures;
    Locator locate{path, document.text, LineStarts(document.text), {}};
    std::vector<XmlPlace> gesturePlaces;
    for (const GestureEntry& gesture : config.gestures) {
        gesturePlaces.push_back(gesture.place);
        for (const SegmentEntry& segment : gesture.segments) {
            for (const QualificationEntry& q : segment.qualifications) locate.qualifications.push_back(q.place);
        }
    }
    std::set<std::string> asked;
    for (size_t g = 0; g < gestures.size(); ++g) {
        const std::string& name = gestures[g];
        if (!asked.insert(name).second) throw std::runtime_error("--gestures names \"" + name + "\" twice");
        const auto named = [&](const GestureEntry& entry) { return entry.name == name; };
        const auto found = std::find_if(config.gestures.begin(), config.gestures.end(), named);
        if (found == config.gestures.end()) throw std::runtime_error(path + ": the configuration has no gesture \"" + name + "\"");
        if (std::count_if(config.gestures.begin(), config.gestures.end(), named) > 1)
            throw std::runtime_error(path + ": gesture \"" + name + "\" is declared twice; the library finds only the later one");
        // A later gesture of a clone's name would hide the clone.
        for (const GestureEntry& other : config.gestures) {
            if (other.name.rfind(name + "#", 0) == 0)
                throw std::runtime_error(PlaceText(path, other.place) + ": gesture \"" + other.name + "\" takes a name that tuning \"" +
                                         name + "\" gives its candidates; rename it");
        }
        const size_t element = ElementOffset(document.text, locate.lines, "Gesture", found->place.row, RankOnLine(gesturePlaces, found->place));
        const TextSpan nameText = element == std::string::npos ? TextSpan() : AttributeText(document.text, element, "name");
        const size_t close = element == std::string::npos ? element : document.text.find("</Gesture", element);
        const size_t end = close == std::string::npos ? close : document.text.find('>', close);
        if (nameText.begin == std::string::npos || end == std::string::npos)
            throw std::runtime_error(PlaceText(path, found->place) + ": gesture \"" + name + "\" cannot be copied in place");
        document.m_Spans.push_back({element, end + 1, nameText.begin, nameText.end});
        for (const SegmentEntry& segment : found->segments) {
            for (const QualificationEntry& q : segment.qualifications) {
                if (q.kind == "Equal" || q.kind == "NoEqual") continue;
                for (const auto& [attribute, operand] : {std::pair{"value1", q.value1}, std::pair{"value2", q.value2}}) {
                    TunableConstant constant{g, q.place, attribute, operand, 0.0, false, 0, {}};
                    if (!ReadNumber(operand, constant.value, constant.integer)) continue;
                    constant.offset = locate.Operand(q, attribute, operand);
                    document.constants.push_back(constant);
                }
            }
        }
    }
    for (const std::string& value : values) document.AddValue(value, config, locate);
    for (size_t g = 0; g < gestures.size(); ++g) {
        if (document.ConstantsOf(g).empty())
            throw std::runtime_error(path + ": gesture \"" + gestures[g] + "\" has no numeric constant to tune");
    }
    return document;
}

void TunableDocument::AddValue(const std::string& name, const ConfigDocument& config, const Locator& locate) {
    const std::string refused = path + ": value \"" + name + "\" cannot be tuned: ";
    TiXmlDocument xml;
    xml.Parse(text.c_str());
    const TiXmlElement* declaration = nullptr;
    std::vector<XmlPlace> declarations;
    bool computed = false;
    for (const TiXmlElement* section = xml.FirstChildElement("AppConfig"); section; section = section->NextSiblingElement()) {
        ForEachElement(*section, [&](const TiXmlElement& element) {
            const std::string tag = element.Value();
            if (tag == "Value") declarations.push_back({element.Row(), element.Column()});
            if (tag == "Value" && !declaration && element.Attribute("name") && name == element.Attribute("name")) declaration = &element;
            if (tag != "Function") return;
            for (const TiXmlAttribute* a = element.FirstAttribute(); a; a = a->Next()) computed = computed || Names(a->ValueStr(), name);
        });
    }
    if (!declaration) throw std::runtime_error(path + ": the configuration declares no value \"" + name + "\"");
    const std::string type = Lower(declaration->Attribute("type") ? declaration->Attribute("type") : "");
    if (type != "int" && type != "float") throw std::runtime_error(refused + "only int and float values can be");
    if (computed) throw std::runtime_error(refused + "a function computes or reads it, so it is not a constant");
    std::set<std::string> readers;
    for (const GestureEntry& gesture : config.gestures) {
        for (const SegmentEntry& segment : gesture.segments) {
            for (const QualificationEntry& q : segment.qualifications) {
                if (Names(q.value1, name) || Names(q.value2, name)) readers.insert(gesture.name);
            }
        }
    }
    const auto reader = readers.size() == 1 ? std::find(gestures.begin(), gestures.end(), *readers.begin()) : gestures.end();
    if (reader == gestures.end())
        throw std::runtime_error(refused + "the qualifications of exactly one of the gestures being tuned must read it, and no other's");
    const XmlPlace place{declaration->Row(), declaration->Column()};
    const size_t element = ElementOffset(text, locate.lines, "Value", place.row, RankOnLine(declarations, place));
    const size_t open = element == std::string::npos ? element : text.find('>', element);
    const size_t begin = open == std::string::npos ? open : text.find_first_not_of(kBlanks, open + 1);
    const size_t end = begin == std::string::npos ? begin : text.find_last_not_of(kBlanks, text.find('<', begin) - 1) + 1;
    const std::string written = begin == std::string::npos || text[open - 1] == '/' ? "" : text.substr(begin, end - begin);
    TunableConstant constant{static_cast<size_t>(reader - gestures.begin()), place, name, written, 0.0, type == "int", begin, {}};
    if (written.empty() || !declaration->GetText() || written != declaration->GetText() ||
        !ReadNumber(written, constant.value, constant.integer))
        throw std::runtime_error(PlaceText(path, place) + ": value \"" + name + "\" needs its initial number written plainly, as in 0.5");
    constant.integer = type == "int";
    for (const GestureEntry& gesture : config.gestures) {
        if (gesture.name != *readers.begin()) continue;
        for (const SegmentEntry& segment : gesture.segments) {
            for (const QualificationEntry& q : segment.qualifications) {
                for (const auto& [attribute, operand] : {std::pair{"value1", q.value1}, std::pair{"value2", q.value2}}) {
                    if (!Names(operand, name)) continue;
                    if (operand != "@" + name) throw std::runtime_error(PlaceText(path, q.place) + ": " + refused.substr(path.size() + 2) + "it is read as " + operand);
                    constant.references.push_back(locate.Operand(q, attribute, operand));
                }
            }
        }
    }
    constants.push_back(constant);
}

std::string TunableDocument::Written(const std::vector<std::string>& texts) const {
    return WithClones(texts, 0, {});
}

std::string TunableDocument::WithClones(const std::vector<std::string>& texts, size_t gesture,
                                        const std::vector<std::vector<std::string>>& candidates) const {
    std::vector<Edit> edits;
    for (size_t c = 0; c < constants.size(); ++c) edits.push_back({constants[c].offset, constants[c].text.size(), texts[c]});
    if (candidates.empty()) return Apply(text, 0, text.size(), edits);
    const Span& span = m_Spans[gesture];
    const std::vector<size_t> own = ConstantsOf(gesture);
    std::string clones;
    for (size_t k = 0; k < candidates.size(); ++k) {
        const std::string rawName = text.substr(span.nameBegin, span.nameEnd - span.nameBegin);
        std::vector<Edit> cloneEdits{{span.nameBegin, rawName.size(), rawName + CloneName(gesture, k).substr(gestures[gesture].size())}};
        for (size_t i = 0; i < own.size(); ++i) {
            const TunableConstant& constant = constants[own[i]];
            cloneEdits.push_back({constant.offset, constant.text.size(), candidates[k][i]});
            for (size_t reference : constant.references) cloneEdits.push_back({reference, constant.attribute.size() + 1, candidates[k][i]});
        }
        clones += "\n" + Apply(text, span.begin, span.end, cloneEdits);
    }
    edits.push_back({span.end, 0, clones});
    return Apply(text, 0, text.size(), edits);
}

std::string TunableDocument::CloneName(size_t gesture, size_t clone) const {
    return gestures[gesture] + "#" + std::to_string(clone);
}

std::vector<size_t> TunableDocument::ConstantsOf(size_t gesture) const {
    std::vector<size_t> own;
    for (size_t c = 0; c < constants.size(); ++c) {
        if (constants[c].gesture == gesture) own.push_back(c);
    }
    return own;
}

std::string TunableDocument::Apply(const std::string& text, size_t begin, size_t end, std::vector<Edit> edits) {
    std::stable_sort(edits.begin(), edits.end(), [](const Edit& a, const Edit& b) { return a.offset < b.offset; });
    std::string result;
    size_t at = begin;
    for (const Edit& edit : edits) {
        if (edit.offset < begin || edit.offset + edit.length > end) continue;
        result.append(text, at, edit.offset - at);
        result += edit.text;
        at = edit.offset + edit.length;
    }
    result.append(text, at, end - at);
    return result;
}

}  // namespace PelmoraTool
