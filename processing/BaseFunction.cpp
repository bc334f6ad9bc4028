#include "processing/BaseFunction.h"

#include <map>

#include "engine/Pelmora.h"
#include "engine/Diagnostics.h"

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

bool BaseFunction::EngineForTrace(const char* site, int line) {
    if (Pelmora::Get()) return true;
    Diagnostics::Located(site, line, Diagnostics::kPelmora);
    return false;
}

}  // namespace PelmoraLib
