#include "engine/Diagnostics.h"

#include <cstdio>

namespace PelmoraLib {
namespace Diagnostics {

const char* const kPelmora = "Pelmora::Instance";
const char* const kGestureConfigManager = "GestureConfigManager::Instance";
const char* const kPlayerManager = "PlayerManager::Instance";
const char* const kGestureTable = "GestureTable";
const char* const kGesture = "Gesture";
const char* const kIdentifyValues = "IdentifyValues";

void Located(const char* site, int line, const char* missing) {
    printf("%s line: %d Error: %s is NULL\n", site, line, missing);
}

}  // namespace Diagnostics
}  // namespace PelmoraLib
