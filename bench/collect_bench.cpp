// A whole collection of this machine against a peer that lists its hardware: processes from start
// to end, as a person runs them.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// The process's exit status and what it and its children used. Its output goes nowhere.
int Run(const std::vector<std::string>& command, rusage& usage) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
  }
  int status = -1;
  wait4(child, &status, 0, &usage);
  return status;
}

// Wall time; and the largest memory of a process among it and its children, in MiB.
void RunProcess(benchmark::State& state, const std::vector<std::string>& command) {
  double peak = 0;
  for (auto round : state) {
    rusage usage{};
    const auto start = std::chrono::steady_clock::now();
    if (Run(command, usage) != 0) state.SkipWithError("the process failed");
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(seconds.count());
    peak = std::max(peak, static_cast<double>(usage.ru_maxrss) / 1024);
  }
  state.counters["MiB"] = peak;
}

void Zel(benchmark::State& state) {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  RunProcess(state, {program.parent_path().parent_path() / "zel", "collect"});
}
void Lshw(benchmark::State& state) { RunProcess(state, {"lshw", "-json"}); }

BENCHMARK(Zel)->Name("collect/zel")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Lshw)->Name("collect/lshw")->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
