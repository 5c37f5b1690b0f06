// Setting a property through the C API, against putting the same into a hash map.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "bench/Documents.h"
#include "bench/StopWatch.h"
#include "plugin/zeliIOHandle.h"
#include "zelcore/TContainer.h"
#include "zelcore/TLogger.h"
#include "zelcore/zel.h"

namespace {

constexpr int kProperties = 20;
constexpr int kRecords = 500;
const char kText[] = "a text of an ordinary length";

std::vector<std::string> MakeNames(const std::string& prefix) {
  std::vector<std::string> names;
  for (int i = 0; i < kProperties; ++i) names.push_back(prefix + std::to_string(i));
  return names;
}

// Fills one instance after the other through `set(handle, name)`; only that is measured.
template <class TSet>
void Fill(benchmark::State& state, const std::string& prefix, TSet set) {
  const std::vector<std::string> names = MakeNames(prefix);
  for (auto round : state) {
    TContainer container;
    bench::LoadSchema(container, kProperties);
    std::vector<std::unique_ptr<zeliIOHandle>> handles;
    for (int i = 0; i < kRecords; ++i) {
      handles.push_back(std::make_unique<zeliIOHandle>(&container, nullptr));
      zelAddClass(handles.back().get(), "BENCH_Disk");
    }
    bench::Time(state, [&] {
      for (const auto& handle : handles) {
        for (const std::string& name : names) {
          if (set(handle.get(), name.c_str()) != zelStatusOK) state.SkipWithError("refused");
        }
      }
    });
  }
  state.SetItemsProcessed(state.iterations() * kRecords * kProperties);
}

using TRecord = std::unordered_map<std::string, std::variant<bool, std::uint32_t, std::string>>;

template <class TValue>
void FillMaps(benchmark::State& state, const std::string& prefix, TValue value) {
  const std::vector<std::string> names = MakeNames(prefix);
  for (auto round : state) {
    std::vector<TRecord> records(kRecords);
    bench::Time(state, [&] {
      for (TRecord& record : records) {
        for (const std::string& name : names) record.emplace(name.c_str(), value);
      }
    });
    benchmark::DoNotOptimize(records);
  }
  state.SetItemsProcessed(state.iterations() * kRecords * kProperties);
}

void AddUint32(benchmark::State& state) {
  Fill(state, "Number", [](zelIOHandle* handle, const char* name) {
    return zelAddUint32Property(handle, name, 42);
  });
}
void AddString(benchmark::State& state) {
  Fill(state, "Text", [](zelIOHandle* handle, const char* name) {
    return zelAddStringProperty(handle, name, kText);
  });
}
void MapUint32(benchmark::State& state) { FillMaps(state, "Number", std::uint32_t{42}); }
void MapString(benchmark::State& state) { FillMaps(state, "Text", kText); }

BENCHMARK(AddUint32)->Name("capi/zelAddUint32Property")->UseManualTime();
BENCHMARK(MapUint32)->Name("capi/map uint32")->UseManualTime();
BENCHMARK(AddString)->Name("capi/zelAddStringProperty")->UseManualTime();
BENCHMARK(MapString)->Name("capi/map string")->UseManualTime();

}  // namespace

int main(int argc, char** argv) {
  TLogger::Initialize();
  TLogger::GetInstance()->SetLogThreshold(zelLogStatus);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
