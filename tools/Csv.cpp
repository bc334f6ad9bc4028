#include "tools/Csv.h"

namespace PelmoraTool {
namespace Csv {

std::vector<std::string> Split(const std::string& line, char separator) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted && c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
            fields.back() += '"';
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (c == separator && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
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
