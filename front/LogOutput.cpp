// Log output: every diagnostic of the library is a printf line on standard
// output. SetGestureLogOutPut makes it unbuffered so a host's console shows
// each line at once; SetDebugInfo switches evaluation to its printing twins.
// Thread-safety: both may be called from any thread at any time.
#include <cstdio>

#include "engine/DebugInfo.h"
#include "pelmora.h"

int32_t SetGestureLogOutPut(void) { return setvbuf(stdout, nullptr, _IONBF, 0); }

void SetDebugInfo(bool on) { PelmoraLib::SwitchDebugInfo(on); }
