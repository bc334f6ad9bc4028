// Diagnostics - the located error line that follows a missing singleton or
// per-player object: "<site> line: <n> Error: <what> is NULL". Site and line
// are fixed texts of each call site, part of the log format.
// Thread-safety: printf only.
#pragma once

namespace PelmoraLib {
namespace Diagnostics {

extern const char* const kPelmora;               // "Pelmora::Instance"
extern const char* const kGestureConfigManager;  // "GestureConfigManager::Instance"
extern const char* const kPlayerManager;         // "PlayerManager::Instance"
extern const char* const kGestureTable;
extern const char* const kGesture;
extern const char* const kIdentifyValues;

void Located(const char* site, int line, const char* missing);

}  // namespace Diagnostics
}  // namespace PelmoraLib
