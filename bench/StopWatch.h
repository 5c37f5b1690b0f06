#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace bench {

// Runs `work` and makes its time the round's: what stands around it is not measured.
template <class TWork>
void Time(benchmark::State& state, TWork&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  state.SetIterationTime(seconds.count());
}

}  // namespace bench
