#include "processing/BaseFunction.h"

#include <map>


namespace PelmoraLib {

bool BaseFunction::GetFunctionType(const char* keyword, Type& type) {
    static const std::map<std::string, Type> keywords = {
        {"SET", SET},   {"ABS", ABS},   {"LENGTH", LENGTH}, {"NORMALIZE", NORMALIZE}, {"SQRLENGTH", SQRLENGTH},
        {"ADD", ADD},   {"SUB", SUB},   {"MUL", MUL},       {"DIV", DIV},             {"DOT", DOT},
        {"CROSS", CROSS}, {"DISTANCE", DISTANCE}, {"SQRDISTANCE", SQRDISTANCE}, {"ANGLE", ANGLE},
    };
    if (!keyword) return false;
    const auto found = keywords.find(keyword);
    if (found == keywords.end()) return false;
    type = found->second;
    return true;
}

}  // namespace PelmoraLib
