// The benchmark families of the suite, registered by the main program in the
// order they run.
#pragma once

namespace PelmoraBench {

void RegisterUpdateBenchmarks();
void RegisterWorkerBenchmarks();
void RegisterLoadBenchmarks();
void RegisterReplayBenchmarks();
void RegisterAllocationBenchmarks();

}  // namespace PelmoraBench
