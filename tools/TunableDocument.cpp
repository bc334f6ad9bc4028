#include "tools/TunableDocument.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <stdexcept>

#include <tinyxml.h>

#include "tools/Numbers.h"

namespace PelmoraTool {

namespace {

const char* const kBlanks = " \t\r\n";

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

bool Names(const std::string& operand, const std::string& value) {
    return operand == "@" + value || operand.rfind("@" + value + ".", 0) == 0;
}

// Every element of the sections the library reads, in document order.
template <typename Visit>
void ForEachElement(const TiXmlElement& element, const Visit& visit) {
    visit(element);
    for (const TiXmlElement* child = element.FirstChildElement(); child; child = child->NextSiblingElement()) ForEachElement(*child, visit);
}

// Whether `twin` is the mirror image of `q`: the same test, Right and Left
// swapped in its references, and numbers of the same magnitude (a number the
// mirror negates is one whose measure the mirror negates).
bool Mirrors(const QualificationEntry& q, const QualificationEntry& twin) {
    if (q.kind != twin.kind || q.resetOnFailed != twin.resetOnFailed || q.finishOnSucceed != twin.finishOnSucceed) return false;
    const bool tunable = q.kind != "Equal" && q.kind != "NoEqual";
    for (const auto& [operand, mirrored] : {std::pair{q.value1, twin.value1}, std::pair{q.value2, twin.value2}}) {
        double value = 0.0, twinValue = 0.0;
        bool integer = false, twinInteger = false;
        if (tunable && ReadNumber(operand, value, integer)) {
            if (!ReadNumber(mirrored, twinValue, twinInteger) || integer != twinInteger || std::abs(value) != std::abs(twinValue)) return false;
        } else if (mirrored != TunableDocument::MirrorName(operand)) {
            return false;
        }
    }
    return true;
}

}  // namespace

// Finds elements and their operands in the document's text.
struct TunableDocument::Locator {
    const std::string& path;
    const std::string& text;
    std::vector<size_t> lines;
    std::vector<XmlPlace> qualifications;  // of every gesture the library keeps
    std::vector<XmlPlace> gestures;

    // The gesture's element and its name, refused where the text cannot be copied.
    Span GestureSpan(const GestureEntry& gesture) const {
        const size_t element = ElementOffset(text, lines, "Gesture", gesture.place.row, RankOnLine(gestures, gesture.place));
        const TextSpan name = element == std::string::npos ? TextSpan() : AttributeText(text, element, "name");
        const size_t close = element == std::string::npos ? element : text.find("</Gesture", element);
        const size_t end = close == std::string::npos ? close : text.find('>', close);
        if (name.begin == std::string::npos || end == std::string::npos)
            throw std::runtime_error(PlaceText(path, gesture.place) + ": gesture \"" + gesture.name + "\" cannot be copied in place");
        return {element, end + 1, name.begin, name.end};
    }

    // The one gesture of this name; a later gesture of a clone's name would hide the clone.
    const GestureEntry& Gesture(const ConfigDocument& config, const std::string& name, const std::string& missing) const {
        const auto named = [&](const GestureEntry& entry) { return entry.name == name; };
        const auto found = std::find_if(config.gestures.begin(), config.gestures.end(), named);
        if (found == config.gestures.end()) throw std::runtime_error(path + ": the configuration has no gesture \"" + name + "\"" + missing);
        if (std::count_if(config.gestures.begin(), config.gestures.end(), named) > 1)
            throw std::runtime_error(path + ": gesture \"" + name + "\" is declared twice; the library finds only the later one");
        for (const GestureEntry& other : config.gestures) {
            if (other.name.rfind(name + "#", 0) == 0)
                throw std::runtime_error(PlaceText(path, other.place) + ": gesture \"" + other.name + "\" takes a name that tuning \"" +
                                         name + "\" gives its candidates; rename it");
        }
        return *found;
    }

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

std::string TunableConstant::TwinText(const std::string& written) const {
    if (!twinFlipped) return written;
    return written[0] == '-' ? written.substr(1) : "-" + written;
}

std::string TunableDocument::MirrorName(const std::string& name) {
    std::string mirrored;
    for (size_t i = 0; i < name.size();) {
        const bool right = name.compare(i, 5, "Right") == 0, left = name.compare(i, 4, "Left") == 0;
        mirrored += right ? "Left" : left ? "Right" : name.substr(i, 1);
        i += right ? 5 : left ? 4 : 1;
    }
    return mirrored;
}

TunableDocument TunableDocument::Load(const std::string& path, const std::vector<std::string>& gestures,
                                      const std::vector<std::string>& values, bool mirror) {
    const ConfigDocument config = ConfigDocument::Load(path);
    TunableDocument document;
    document.path = path;
    std::optional<std::string> bytes = ConfigDocument::ReadBytes(path);
    if (!bytes) throw std::runtime_error("cannot open " + path);
    document.text = std::move(*bytes);
    document.gestures = gestures;
    Locator locate{path, document.text, LineStarts(document.text), {}, {}};
    for (const GestureEntry& gesture : config.gestures) {
        locate.gestures.push_back(gesture.place);
        for (const SegmentEntry& segment : gesture.segments) {
            for (const QualificationEntry& q : segment.qualifications) locate.qualifications.push_back(q.place);
        }
    }
    std::set<std::string> asked;
    for (size_t g = 0; g < gestures.size(); ++g) {
        const std::string& name = gestures[g];
        if (!asked.insert(name).second) throw std::runtime_error("--gestures names \"" + name + "\" twice");
        const GestureEntry& found = locate.Gesture(config, name, "");
        document.m_Spans.push_back(locate.GestureSpan(found));
        for (const SegmentEntry& segment : found.segments) {
            for (const QualificationEntry& q : segment.qualifications) {
                if (q.kind == "Equal" || q.kind == "NoEqual") continue;
                for (const auto& [attribute, operand] : {std::pair{"value1", q.value1}, std::pair{"value2", q.value2}}) {
                    TunableConstant constant{g, q.place, attribute, operand, 0.0, false, 0, {}, std::string::npos, {}, false};
                    if (!ReadNumber(operand, constant.value, constant.integer)) continue;
                    constant.offset = locate.Operand(q, attribute, operand);
                    document.constants.push_back(constant);
                }
            }
        }
    }
    if (mirror && !values.empty()) throw std::runtime_error("--mirror ties qualifications' constants only: it cannot take --values");
    for (size_t g = 0; mirror && g < gestures.size(); ++g) document.TieTwin(g, locate.Gesture(config, gestures[g], ""), config, locate);
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
    const std::string type = ConfigDocument::TypeKeyword(*declaration);
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
    TunableConstant constant{static_cast<size_t>(reader - gestures.begin()), place, name, written, 0.0, type == "int", begin, {}, std::string::npos, {}, false};
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

void TunableDocument::TieTwin(size_t gesture, const GestureEntry& entry, const ConfigDocument& config, const Locator& locate) {
    const std::string twin = MirrorName(entry.name);
    if (twin == entry.name) throw std::runtime_error("--mirror: gesture \"" + entry.name + "\" has no Right or Left in its name to mirror");
    if (std::find(gestures.begin(), gestures.end(), twin) != gestures.end())
        throw std::runtime_error("--mirror: \"" + twin + "\" is the mirror image of \"" + entry.name + "\" and is tuned with it; name only one");
    const GestureEntry& other = locate.Gesture(config, twin, " to mirror \"" + entry.name + "\"");
    const std::string notMirror = ": gesture \"" + twin + "\" is not the mirror image of \"" + entry.name + "\": ";
    if (other.segments.size() != entry.segments.size())
        throw std::runtime_error(PlaceText(path, other.place) + notMirror + "it has " + std::to_string(other.segments.size()) + " segments, not " +
                                 std::to_string(entry.segments.size()));
    std::vector<std::pair<const QualificationEntry*, const QualificationEntry*>> pairs;
    for (size_t s = 0; s < entry.segments.size(); ++s) {
        const std::vector<QualificationEntry>& theirs = other.segments[s].qualifications;
        if (theirs.size() != entry.segments[s].qualifications.size())
            throw std::runtime_error(PlaceText(path, other.place) + notMirror + "its segment " + std::to_string(s + 1) + " has " +
                                     std::to_string(theirs.size()) + " qualifications, not " +
                                     std::to_string(entry.segments[s].qualifications.size()));
        // Conditions on both sides (both feet down, say) may keep their order in the twin.
        std::vector<bool> taken(theirs.size(), false);
        for (const QualificationEntry& q : entry.segments[s].qualifications) {
            size_t t = 0;
            while (t < theirs.size() && (taken[t] || !Mirrors(q, theirs[t]))) ++t;
            if (t == theirs.size())
                throw std::runtime_error(PlaceText(path, q.place) + notMirror + "no qualification of its segment " + std::to_string(s + 1) +
                                         " mirrors " + q.Describe());
            taken[t] = true;
            pairs.push_back({&q, &theirs[t]});
        }
    }
    for (size_t c : ConstantsOf(gesture)) {
        TunableConstant& constant = constants[c];
        const auto pair = std::find_if(pairs.begin(), pairs.end(), [&](const auto& p) {
            return p.first->place.row == constant.place.row && p.first->place.column == constant.place.column;
        });
        const std::string& operand = constant.attribute == "value1" ? pair->second->value1 : pair->second->value2;
        constant.twinOffset = locate.Operand(*pair->second, constant.attribute, operand);
        constant.twinText = operand;
        constant.twinFlipped = (constant.value < 0.0) != (operand[0] == '-');
    }
    twins.push_back(twin);
    m_TwinSpans.push_back(locate.GestureSpan(other));
}

std::string TunableDocument::Written(const std::vector<std::string>& texts) const {
    return WithClones(texts, 0, {});
}

std::string TunableDocument::WithClones(const std::vector<std::string>& texts, size_t gesture,
                                        const std::vector<std::vector<std::string>>& candidates) const {
    std::vector<Edit> edits;
    for (size_t c = 0; c < constants.size(); ++c) {
        edits.push_back({constants[c].offset, constants[c].text.size(), texts[c]});
        if (constants[c].twinOffset != std::string::npos)
            edits.push_back({constants[c].twinOffset, constants[c].twinText.size(), constants[c].TwinText(texts[c])});
    }
    if (candidates.empty()) return Apply(text, 0, text.size(), edits);
    const std::vector<size_t> own = ConstantsOf(gesture);
    edits.push_back({m_Spans[gesture].end, 0, Clones(m_Spans[gesture], candidates, own, false)});
    if (!twins.empty()) edits.push_back({m_TwinSpans[gesture].end, 0, Clones(m_TwinSpans[gesture], candidates, own, true)});
    return Apply(text, 0, text.size(), edits);
}

// Copies of the gesture at `span` (the twin's, when `twin`), clone k named with the suffix "#k".
std::string TunableDocument::Clones(const Span& span, const std::vector<std::vector<std::string>>& candidates,
                                    const std::vector<size_t>& own, bool twin) const {
    const std::string rawName = text.substr(span.nameBegin, span.nameEnd - span.nameBegin);
    std::string clones;
    for (size_t k = 0; k < candidates.size(); ++k) {
        std::vector<Edit> cloneEdits{{span.nameBegin, rawName.size(), rawName + "#" + std::to_string(k)}};
        for (size_t i = 0; i < own.size(); ++i) {
            const TunableConstant& constant = constants[own[i]];
            if (twin) {
                cloneEdits.push_back({constant.twinOffset, constant.twinText.size(), constant.TwinText(candidates[k][i])});
                continue;
            }
            cloneEdits.push_back({constant.offset, constant.text.size(), candidates[k][i]});
            for (size_t reference : constant.references) cloneEdits.push_back({reference, constant.attribute.size() + 1, candidates[k][i]});
        }
        clones += "\n" + Apply(text, span.begin, span.end, cloneEdits);
    }
    return clones;
}

std::string TunableDocument::CloneName(size_t gesture, size_t clone) const {
    return gestures[gesture] + "#" + std::to_string(clone);
}

std::string TunableDocument::TwinCloneName(size_t gesture, size_t clone) const {
    return twins[gesture] + "#" + std::to_string(clone);
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
