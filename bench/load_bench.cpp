// Whole documents into a container, against a peer that only builds its tree; and how the time to
// commit and to find instances grows.

#include <benchmark/benchmark.h>

#include <fstream>
#include <memory>
#include <pugixml.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "bench/Documents.h"
#include "bench/StopWatch.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"
#include "zelcore/TLogger.h"

namespace {

void Load(benchmark::State& state, const std::string& name) {
  const std::string path = bench::GetDocument(name);
  for (auto round : state) {
    TContainer container;
    bench::Time(state, [&] { container.PopulateContainerFromFile(path); });
    state.counters["lines"] = static_cast<double>(TLogger::GetInstance()->GetLog().size());
    TLogger::GetInstance()->ClearLog();
  }
}

void ParseWithPugixml(benchmark::State& state, const std::string& name) {
  const std::string document = bench::ReadFile(bench::GetDocument(name));
  std::vector<char> buffer(document.size());
  for (auto round : state) {
    std::copy(document.begin(), document.end(), buffer.begin());
    pugi::xml_document dom;
    bench::Time(state, [&] { dom.load_buffer_inplace(buffer.data(), buffer.size()); });
  }
}

// The cost of the log lines alone: as many as a document makes in which every datetime is bad.
void WriteLogLines(benchmark::State& state) {
  TLogger& logger = *TLogger::GetInstance();
  for (auto round : state) {
    bench::Time(state, [&] {
      for (int i = 0; i < state.range(0); ++i) {
        std::ostringstream line;
        line << "Invalid datetime found on line " << i
             << ".  Defaulting the datetime to 1970-01-01 00:00:00.";
        logger.OutputLogEntry(nullptr, zelLogError, line.str());
      }
    });
    logger.ClearLog();
  }
}

long ReadMemory(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(field, 0) == 0) return std::stol(line.substr(field.size())) * 1024;
  }
  return 0;
}

// To be run in a process of its own: what was used once stays in the high-water mark.
void PeakMemory(benchmark::State& state, const std::string& name) {
  const std::string path = bench::GetDocument(name);
  const auto size = static_cast<double>(std::ifstream(path, std::ios::ate).tellg());
  const long before = ReadMemory("VmRSS:");
  for (auto round : state) {
    TContainer container;
    bench::Time(state, [&] { container.PopulateContainerFromFile(path); });
    state.counters["documents"] =
        (static_cast<double>(ReadMemory("VmHWM:") - before) - size) / size;
  }
}

// Keys in no order.
std::string MakeKey(long number) { return "disk" + std::to_string(number * 7919 % 1000003); }

void CommitDisks(TContainer& container, long count) {
  TCIMClass* const cls = container.GetClass("BENCH_Disk");
  for (long i = 0; i < count; ++i) {
    std::unique_ptr<TCIMInstance> disk(container.AllocateInstance(cls));
    disk->SetPropertyValue("DeviceID", TCIMValue(MakeKey(i)));
    disk->AddToContainer();
    disk.release();
  }
}

void Commit(benchmark::State& state) {
  for (auto round : state) {
    TContainer container;
    bench::LoadSchema(container, 1);
    bench::Time(state, [&] { CommitDisks(container, state.range(0)); });
  }
}

// Each from a path that is made for it.
void FindByPath(benchmark::State& state) {
  TContainer container;
  bench::LoadSchema(container, 1);
  CommitDisks(container, state.range(0));
  const TCIMClass& cls = *container.GetClass("BENCH_Disk");
  for (auto round : state) {
    bench::Time(state, [&] {
      for (long i = 0; i < state.range(0); ++i) {
        TCIMReference path(&container);
        path.SetClassName("BENCH_Disk");
        path.AddKeyValue("DeviceID", TCIMValue(MakeKey(i)));
        if (!cls.FindInstance(path)) state.SkipWithError("an instance is missing");
      }
    });
  }
}

void Register() {
  const auto add = [](const std::string& name, auto work) {
    benchmark::RegisterBenchmark(name.c_str(), work)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  };
  for (const std::string document : {"1.xml", "10.xml", "100.xml", "10-bad.xml"}) {
    add("load/" + document, [=](benchmark::State& state) { Load(state, document); });
    add("pugixml/" + document, [=](benchmark::State& state) { ParseWithPugixml(state, document); });
  }
  benchmark::RegisterBenchmark("memory/100.xml",
                               [](benchmark::State& state) { PeakMemory(state, "100.xml"); })
      ->UseManualTime()
      ->Iterations(1);
  for (const auto& [name, work] : {std::pair("commit", Commit), std::pair("find", FindByPath)}) {
    benchmark::RegisterBenchmark(name, work)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->RangeMultiplier(10)
        ->Range(1000, 1000000);
  }
  benchmark::RegisterBenchmark("log", WriteLogLines)->UseManualTime()->Arg(10000);
}

}  // namespace

int main(int argc, char** argv) {
  TLogger::Initialize();
  Register();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
