#include "config/XmlText.h"

#include <sys/stat.h>
#include <tinyxml.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace PelmoraLib {
namespace XmlText {

namespace {

const size_t kPadding = 8;

std::string NormaliseLineEnds(const std::string& raw) {
    std::string text;
    text.reserve(raw.size() + kPadding);
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\r') {
            text += raw[i];
            continue;
        }
        text += '\n';
        if (i + 1 < raw.size() && raw[i + 1] == '\n') ++i;
    }
    return text;
}

// Walks a text the way TinyXML 2.6 reads it, only to learn how deeply its
// elements nest (the parser recurses once per level), how many attributes
// an element carries (the parser looks each new one up among the earlier
// ones) and how long their values are once read. A plain scan for tags is not enough: the parser's own reading moves
// the end of a text or an attribute value (a UTF-8 lead byte swallows the
// bytes after it, a numeric character reference runs to the next ';', a
// declaration's quoted values may hold '>', an end tag outside every element
// is skipped as an unknown node), so markup that a scan would count may be
// plain text to it and the other way round. Wherever the parser gives up, the
// walk stops too: nothing after that point is parsed. Positions at the
// terminating NUL end every loop, as in the parser; texts are padded, so
// nothing reads past them.
class LimitWalker {
public:
    explicit LimitWalker(const char* text) : m_Text(text) {}

    // False, with a description in `error`, at the first element past a limit.
    bool Walk(std::string& error);

private:
    enum class Encoding { Unknown, Utf8, Legacy };
    enum class Node { Declaration, Comment, CData, Unknown, Element };

    static bool IsSpace(char c) { return isspace(static_cast<unsigned char>(c)) || c == '\n' || c == '\r'; }
    static bool IsAlpha(unsigned char c) { return c < 127 ? isalpha(c) != 0 : true; }
    static bool IsNameChar(unsigned char c) {
        return c < 127 ? isalnum(c) || c == '_' || c == '-' || c == '.' || c == ':' : true;
    }
    static bool StartsWith(const char* p, const char* prefix, bool ignoreCase) {
        for (; *prefix; ++p, ++prefix) {
            const unsigned char a = static_cast<unsigned char>(*p), b = static_cast<unsigned char>(*prefix);
            const bool same = ignoreCase ? a < 128 && tolower(a) == tolower(b) : a == b;
            if (!a || !same) return false;
        }
        return true;
    }

    const char* SkipSpace(const char* p) const;
    Node Identify(const char* p) const;
    const char* Char(const char* p, std::string* value) const;
    const char* Entity(const char* p, std::string* value) const;
    const char* ReadText(const char* p, char end, std::string* value) const;
    const char* ReadName(const char* p) const;
    const char* Attribute(const char* p, std::string* name, std::string* value) const;
    const char* Declaration(const char* p, std::string* encoding) const;
    const char* OtherNode(Node kind, const char* p) const;
    const char* Element(const char* p);

    const char* Refuse(const char* format, int limit);

    const char* m_Text;
    Encoding m_Encoding = Encoding::Unknown;
    std::string m_Error;
};

const char* LimitWalker::Refuse(const char* format, int limit) {
    char buffer[128];
    snprintf(buffer, sizeof buffer, format, limit);
    m_Error = buffer;
    return nullptr;
}

const char* LimitWalker::SkipSpace(const char* p) const {
    while (*p) {
        const unsigned char* u = reinterpret_cast<const unsigned char*>(p);
        // In UTF-8 the parser also skips byte order marks and two non-characters.
        if (m_Encoding == Encoding::Utf8 && u[0] == 0xEF &&
            ((u[1] == 0xBB && u[2] == 0xBF) || (u[1] == 0xBF && (u[2] == 0xBE || u[2] == 0xBF)))) {
            p += 3;
        } else if (IsSpace(*p)) {
            ++p;
        } else {
            break;
        }
    }
    return p;
}

LimitWalker::Node LimitWalker::Identify(const char* p) const {
    if (StartsWith(p, "<?xml", true)) return Node::Declaration;
    if (StartsWith(p, "<!--", false)) return Node::Comment;
    if (StartsWith(p, "<![CDATA[", false)) return Node::CData;
    if (StartsWith(p, "<!", false)) return Node::Unknown;
    const unsigned char next = static_cast<unsigned char>(p[1]);
    return IsAlpha(next) || next == '_' ? Node::Element : Node::Unknown;
}

// One character of a text or attribute value, as the parser steps over it.
const char* LimitWalker::Char(const char* p, std::string* value) const {
    const int length = m_Encoding == Encoding::Utf8 ? TiXmlBase::utf8ByteTable[static_cast<unsigned char>(*p)] : 1;
    if (length == 1) {
        if (*p == '&') return Entity(p, value);
        if (value) *value += *p;
        return p + 1;
    }
    return length == 0 ? nullptr : p + length;  // the bytes of the sequence, whatever they are
}

// A character reference. Values are only collected while the encoding is
// still unknown, where the parser keeps the low byte of a numeric one.
const char* LimitWalker::Entity(const char* p, std::string* value) const {
    if (p[1] == '#' && p[2]) {
        const bool hex = p[2] == 'x';
        if (hex && !p[3]) return nullptr;
        const char* q = strchr(p + (hex ? 3 : 2), ';');
        if (!q) return nullptr;
        const char* const end = q;
        uint32_t code = 0, scale = 1;
        for (--q; *q != (hex ? 'x' : '#'); --q, scale *= hex ? 16 : 10) {
            int digit;
            if (*q >= '0' && *q <= '9') {
                digit = *q - '0';
            } else if (hex && *q >= 'a' && *q <= 'f') {
                digit = *q - 'a' + 10;
            } else if (hex && *q >= 'A' && *q <= 'F') {
                digit = *q - 'A' + 10;
            } else {
                return nullptr;
            }
            code += scale * static_cast<uint32_t>(digit);
        }
        if (value) *value += static_cast<char>(code);
        return end + 1;
    }
    static const struct {
        const char* text;
        char character;
    } kNamed[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
    for (const auto& named : kNamed) {
        if (StartsWith(p, named.text, false)) {
            if (value) *value += named.character;
            return p + strlen(named.text);
        }
    }
    if (value) *value += *p;
    return p + 1;
}

// Just past `end`, or null when the text runs out first.
const char* LimitWalker::ReadText(const char* p, char end, std::string* value) const {
    while (p && *p && *p != end) p = Char(p, value);
    if (p && *p) ++p;
    return p && *p ? p : nullptr;
}

const char* LimitWalker::ReadName(const char* p) const {
    if (!IsAlpha(static_cast<unsigned char>(*p)) && *p != '_') return nullptr;
    while (*p && IsNameChar(static_cast<unsigned char>(*p))) ++p;
    return p;
}

const char* LimitWalker::Attribute(const char* p, std::string* name, std::string* value) const {
    p = SkipSpace(p);
    const char* const start = p;
    p = ReadName(p);
    if (!p || !*p) return nullptr;
    if (name) name->assign(start, p);
    p = SkipSpace(p);
    if (*p != '=') return nullptr;
    p = SkipSpace(p + 1);
    if (!*p) return nullptr;
    if (*p == '\'' || *p == '"') return ReadText(p + 1, *p, value);
    for (; *p && !IsSpace(*p) && *p != '/' && *p != '>'; ++p) {
        if (*p == '\'' || *p == '"') return nullptr;
        if (value) *value += *p;
    }
    return p;
}

const char* LimitWalker::Declaration(const char* p, std::string* encoding) const {
    p += 5;
    while (p && *p) {
        if (*p == '>') return p + 1;
        p = SkipSpace(p);
        if (StartsWith(p, "version", true) || StartsWith(p, "standalone", true)) {
            p = Attribute(p, nullptr, nullptr);
        } else if (StartsWith(p, "encoding", true)) {
            encoding->clear();
            p = Attribute(p, nullptr, encoding);
        } else {
            while (*p && *p != '>' && !IsSpace(*p)) ++p;
        }
    }
    return nullptr;
}

const char* LimitWalker::OtherNode(Node kind, const char* p) const {
    if (kind == Node::Comment) {
        const char* end = strstr(p + 4, "-->");
        return end ? end + 3 : nullptr;
    }
    if (kind == Node::CData) {
        const char* end = strstr(p + 9, "]]>");
        return end && end[3] ? end + 3 : nullptr;
    }
    const char* end = strchr(p + 1, '>');
    return end ? end + 1 : nullptr;
}

// An element with everything nested in it, p at its '<'. Iterative, so
// that the walk itself needs no deep stack.
const char* LimitWalker::Element(const char* p) {
    std::vector<std::string> open;  // names of the elements whose content is being read
    for (;;) {
        // The parser's frame for this element exists from its '<' on.
        if (open.size() == static_cast<size_t>(kMaxDepth)) {
            return Refuse("Elements nested deeper than %d levels.", kMaxDepth);
        }
        p = SkipSpace(p + 1);
        const char* const nameStart = p;
        p = ReadName(p);
        if (!p || !*p) return nullptr;
        const std::string name(nameStart, p);
        std::vector<std::string> attributes;
        bool hasContent = false;
        for (;;) {
            p = SkipSpace(p);
            if (!*p) return nullptr;
            if (*p == '/') {
                if (p[1] != '>') return nullptr;
                p += 2;
                break;
            }
            if (*p == '>') {
                ++p;
                hasContent = true;
                break;
            }
            std::string attribute, value;
            p = Attribute(p, &attribute, &value);
            if (!p || !*p || std::find(attributes.begin(), attributes.end(), attribute) != attributes.end()) {
                return nullptr;
            }
            if (value.size() > static_cast<size_t>(kMaxValueLength)) {
                return Refuse("An attribute value is longer than %d bytes.", kMaxValueLength);
            }
            if (attributes.size() == static_cast<size_t>(kMaxAttributes)) {
                return Refuse("An element carries more than %d attributes.", kMaxAttributes);
            }
            attributes.push_back(attribute);
        }
        if (hasContent) open.push_back(name);
        // Content up to the next start tag, closing elements on the way.
        for (;;) {
            if (open.empty()) return p;
            p = SkipSpace(p);
            if (!*p) return nullptr;
            if (*p != '<') {
                p = ReadText(p, '<', nullptr);
                if (!p) return nullptr;
                --p;
                continue;
            }
            if (p[1] == '/') {
                const std::string& innermost = open.back();
                if (strncmp(p + 2, innermost.c_str(), innermost.size()) != 0) return nullptr;
                p = SkipSpace(p + 2 + innermost.size());
                if (*p != '>') return nullptr;
                ++p;
                open.pop_back();
                continue;
            }
            const Node kind = Identify(p);
            if (kind == Node::Element) break;
            std::string ignored;
            p = kind == Node::Declaration ? Declaration(p, &ignored) : OtherNode(kind, p);
            if (!p) return nullptr;
        }
    }
}

bool LimitWalker::Walk(std::string& error) {
    const unsigned char* u = reinterpret_cast<const unsigned char*>(m_Text);
    if (u[0] == 0xEF && u[1] == 0xBB && u[2] == 0xBF) m_Encoding = Encoding::Utf8;
    const char* p = m_Text;
    while (p && *p) {
        p = SkipSpace(p);
        if (*p != '<') break;
        const Node kind = Identify(p);
        if (kind == Node::Element) {
            p = Element(p);
        } else if (kind == Node::Declaration) {
            // The first declaration at the top decides how the rest is read.
            std::string encoding;
            p = Declaration(p, &encoding);
            if (m_Encoding == Encoding::Unknown) {
                const char* name = encoding.c_str();
                const bool utf8 = !*name || StartsWith(name, "UTF-8", true) || StartsWith(name, "UTF8", true);
                m_Encoding = utf8 ? Encoding::Utf8 : Encoding::Legacy;
            }
        } else {
            p = OtherNode(kind, p);
        }
    }
    if (m_Error.empty()) return true;
    error = m_Error;
    return false;
}

}  // namespace

std::string Padded(const char* text) {
    std::string copy(text);
    copy.append(kPadding, '\0');
    return copy;
}

bool ReadFile(const char* path, std::string& text, std::string& error) {
    struct stat info;
    if (stat(path, &info) == 0 && !S_ISREG(info.st_mode)) {
        error = std::string("Failed to open file: not a regular file: ") + path;
        return false;
    }
    FILE* file = fopen(path, "rb");
    if (!file) {
        error = std::string("Failed to open file: ") + path;
        return false;
    }
    std::string raw;
    char chunk[65536];
    size_t read;
    while ((read = fread(chunk, 1, sizeof chunk, file)) > 0) raw.append(chunk, read);
    fclose(file);
    // The parser's own loader ends the text at the first NUL; past it, a
    // multi-byte lead byte could carry the parser on into the rest.
    raw.resize(strlen(raw.c_str()));
    text = NormaliseLineEnds(raw);
    text.append(kPadding, '\0');
    return true;
}

bool CheckLimits(const std::string& text, std::string& error) { return LimitWalker(text.c_str()).Walk(error); }

}  // namespace XmlText
}  // namespace PelmoraLib
