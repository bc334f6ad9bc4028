#include "tools/Csv.h"

#include <stdexcept>

namespace PelmoraTool {
namespace Csv {

void Split(const std::string& line, std::vector<std::string>& fields, char separator) {
    size_t count = 1;
    if (fields.empty()) fields.emplace_back();
    fields[0].clear();
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted && c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
            fields[count - 1] += '"';
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (c == separator && !quoted) {
            if (fields.size() == count) fields.emplace_back();
            fields[count++].clear();
        } else {
            fields[count - 1] += c;
        }
    }
    if (quoted) throw std::runtime_error("a quoted field is not closed on its line");
    fields.resize(count);
}

std::vector<std::string> Split(const std::string& line, char separator) {
    std::vector<std::string> fields;
    Split(line, fields, separator);
    return fields;
}

std::string Quote(const std::string& field) {
    if (field.find_first_of(",\"") == std::string::npos) return field;
    std::string quoted = "\"";
    for (char c : field) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

}  // namespace Csv
}  // namespace PelmoraTool
