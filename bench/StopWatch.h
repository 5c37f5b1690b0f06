#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

namespace bench {

// Seconds of processor time that this process has taken, the kernel's on its behalf included; what
// else the machine is busy with does not count.
inline double ReadClock() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Runs `work` and makes its time the round's: what stands around it is not measured.
template <class TWork>
void Time(benchmark::State& state, TWork&& work) {
  const double start = ReadClock();
  work();
  state.SetIterationTime(ReadClock() - start);
}

}  // namespace bench
