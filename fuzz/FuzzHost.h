// FuzzHost - what both fuzz harnesses share: a quiet standard output (the
// library's diagnostics would dominate the run time) and a deterministic
// skeleton of the 20 joints a depth tracker reports.
#pragma once

#include <cstdint>
#include <cstdio>

#include "pelmora.h"

namespace PelmoraFuzz {

constexpr int32_t kJoints = 20;
extern int32_t g_JointTypes[kJoints];

// Discards standard output once per process.
void Silence();

// A standing skeleton, its joints displaced by `phase`, about 3 m away.
void MakeFrame(Point3* frame, float phase);

GestureConfigParam MakeParam(int32_t players, bool worker);

}  // namespace PelmoraFuzz
