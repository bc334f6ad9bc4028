// The benchmark families of the suite, registered by the main program in the
// order they run.
#pragma once

#include <cstddef>

namespace PelmoraBench {

void RegisterUpdateBenchmarks();
void RegisterWorkerBenchmarks();
void RegisterLoadBenchmarks();
void RegisterReplayBenchmarks();
void RegisterTuneBenchmarks();

// The candidates per replay of the tuning benchmark, the first being one.
extern const size_t kCandidateCounts[4];
void RegisterAllocationBenchmarks();

}  // namespace PelmoraBench
