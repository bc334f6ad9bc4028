#include "tools/TunableDocument.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

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

}  // namespace

std::string TunableConstant::Label() const { return std::to_string(place.row) + ":" + attribute; }

TunableDocument TunableDocument::Load(const std::string& path, const std::vector<std::string>& gestures) {
    const ConfigDocument config = ConfigDocument::Load(path);
    TunableDocument document;
    document.path = path;
    document.text = ReadText(path);
    document.gestures = gestures;
    const std::vector<size_t> lines = LineStarts(document.text);
    std::vector<XmlPlace> gesturePlaces, qualificationPlaces;
    for (const GestureEntry& gesture : config.gestures) {
        gesturePlaces.push_back(gesture.place);
        for (const SegmentEntry& segment : gesture.segments) {
            for (const QualificationEntry& q : segment.qualifications) qualificationPlaces.push_back(q.place);
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
        const size_t before = document.constants.size();
        for (const SegmentEntry& segment : found->segments) {
            for (const QualificationEntry& q : segment.qualifications) {
                if (q.kind == "Equal" || q.kind == "NoEqual") continue;
                const size_t element = ElementOffset(document.text, lines, "Qualification", q.place.row,
                                                     RankOnLine(qualificationPlaces, q.place));
                for (const auto& [attribute, operand] : {std::pair{"value1", q.value1}, std::pair{"value2", q.value2}}) {
                    TunableConstant constant{g, q.place, attribute, operand, 0.0, false, 0};
                    if (!ReadNumber(operand, constant.value, constant.integer)) continue;
                    const TextSpan span = element == std::string::npos ? TextSpan() : AttributeText(document.text, element, attribute);
                    if (span.begin == std::string::npos || document.text.compare(span.begin, span.end - span.begin, operand) != 0)
                        throw std::runtime_error(PlaceText(path, q.place) + ": the " + attribute +
                                                 " of this qualification is not written plainly enough to be changed in place");
                    constant.offset = span.begin;
                    document.constants.push_back(constant);
                }
            }
        }
        if (document.constants.size() == before)
            throw std::runtime_error(path + ": gesture \"" + name + "\" has no numeric constant to tune");
        const size_t element = ElementOffset(document.text, lines, "Gesture", found->place.row, RankOnLine(gesturePlaces, found->place));
        const TextSpan nameText = element == std::string::npos ? TextSpan() : AttributeText(document.text, element, "name");
        const size_t close = element == std::string::npos ? element : document.text.find("</Gesture", element);
        const size_t end = close == std::string::npos ? close : document.text.find('>', close);
        if (nameText.begin == std::string::npos || end == std::string::npos)
            throw std::runtime_error(PlaceText(path, found->place) + ": gesture \"" + name + "\" cannot be copied in place");
        document.m_Spans.push_back({element, end + 1, nameText.begin, nameText.end});
    }
    return document;
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
