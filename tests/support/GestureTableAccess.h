// GestureTableAccess - adds gestures assembled in code to a table, which in
// the library only the configuration's compiler does; GestureTable names it
// a friend for the tests.
// Thread-safety: as GestureTable's own AddGesture.
#pragma once

#include "gesture/GestureTable.h"

namespace PelmoraLib {

struct GestureTableAccess {
    static void Add(GestureTable& table, Gesture* gesture) { table.AddGesture(gesture); }
};

}  // namespace PelmoraLib
