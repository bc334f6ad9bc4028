#include "config/XmlText.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

namespace PelmoraLib {
namespace XmlText {

namespace {

const size_t kPadding = 8;

// Index just past `terminator` at or after `from`, or the text's end.
size_t SkipPast(const std::string& text, size_t from, const char* terminator) {
    const size_t found = text.find(terminator, from);
    return found == std::string::npos ? text.size() : found + strlen(terminator);
}

// Index of the '>' that closes a start tag opened before `from`, honouring
// quoted attribute values; the text's end when there is none.
size_t EndOfTag(const std::string& text, size_t from) {
    char quote = 0;
    for (size_t i = from; i < text.size(); ++i) {
        const char c = text[i];
        if (quote) {
            if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return i;
        }
    }
    return text.size();
}

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

}  // namespace

std::string Padded(const char* text) {
    std::string copy(text);
    copy.append(kPadding, '\0');
    return copy;
}

bool ReadFile(const char* path, std::string& text, std::string& error) {
    struct stat info;
    if (stat(path, &info) != 0 || !S_ISREG(info.st_mode)) {
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
    text = NormaliseLineEnds(raw);
    text.append(kPadding, '\0');
    return true;
}

bool CheckNesting(const std::string& text, std::string& error) {
    int depth = 0;
    size_t i = 0;
    while ((i = text.find('<', i)) != std::string::npos) {
        if (text.compare(i, 4, "<!--") == 0) {
            i = SkipPast(text, i + 4, "-->");
        } else if (text.compare(i, 9, "<![CDATA[") == 0) {
            i = SkipPast(text, i + 9, "]]>");
        } else if (text.compare(i, 2, "</") == 0) {
            --depth;
            i = SkipPast(text, i + 2, ">");
        } else if (text.compare(i, 2, "<?") == 0 || text.compare(i, 2, "<!") == 0) {
            i = SkipPast(text, i + 2, ">");
        } else {
            const size_t end = EndOfTag(text, i + 1);
            const bool selfClosing = end < text.size() && text[end - 1] == '/';
            if (!selfClosing && ++depth > kMaxDepth) {
                char buffer[128];
                snprintf(buffer, sizeof buffer, "Elements nested deeper than %d levels.", kMaxDepth);
                error = buffer;
                return false;
            }
            i = end < text.size() ? end + 1 : end;
        }
    }
    return true;
}

}  // namespace XmlText
}  // namespace PelmoraLib
