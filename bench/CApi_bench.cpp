// What setting a property costs through the C API, beside what the same data costs in a hash table.

#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>
#include <variant>

#include "plugin/zeliIOHandle.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"
#include "zelcore/TLogger.h"
#include "zelcore/zel.h"

namespace {

using TType = TCIMValue::TCIMType;
using TPeer = std::unordered_map<std::string, std::variant<std::uint32_t, std::string>>;

// The names and values of one instance, as a collector has them.
constexpr const char* kNumbers[] = {"Speed", "NumberOfCores", "MaxClockSpeed", "Stepping"};
constexpr const char* kTexts[] = {"DeviceID", "Caption", "Manufacturer", "SerialNumber"};
constexpr const char* kText = "Intel(R) Xeon(R) Gold 6338 CPU @ 2.00GHz";

// A data-collection handle with an instance under construction.
class Session {
 public:
  Session() : fHandle(&fContainer, nullptr) {
    if (!TLogger::GetInstance()) TLogger::Initialize();
    TCIMClass* cls = fContainer.AllocateClass("Bench_Processor", nullptr);
    TCIMQualifierDecl* key = fContainer.AllocateQualifierDecl(
        "KEY", TCIMValue(TType::TypeBoolean, 0), TCIMQualifierDecl::ScopeProperty,
        TCIMQualifierDecl::FlavorNone);
    key->AddToContainer();
    for (const char* name : kNumbers) {
      (new TCIMPropertyDecl(name, *cls, TCIMValue(TType::TypeUint32, 0)))->AddToContainer();
    }
    for (const char* name : kTexts) {
      auto* decl = new TCIMPropertyDecl(name, *cls, TCIMValue(TType::TypeString, 0));
      if (name == kTexts[0]) decl->AddQualifier(*new TCIMQualifier(*key, TCIMValue(true)));
      decl->AddToContainer();
    }
    cls->AddToContainer();
    zelAddClass(&fHandle, "Bench_Processor");
  }

  zelIOHandle* Handle() { return &fHandle; }

 private:
  TContainer fContainer;
  zeliIOHandle fHandle;
};

void AddUint32Property(benchmark::State& state) {
  Session session;
  for (auto _ : state) {
    for (const char* name : kNumbers) {
      benchmark::DoNotOptimize(zelAddUint32Property(session.Handle(), name, 2400));
    }
  }
  state.SetItemsProcessed(state.iterations() * std::size(kNumbers));
}
BENCHMARK(AddUint32Property);

void AddStringProperty(benchmark::State& state) {
  Session session;
  for (auto _ : state) {
    for (const char* name : kTexts) {
      benchmark::DoNotOptimize(zelAddStringProperty(session.Handle(), name, kText));
    }
  }
  state.SetItemsProcessed(state.iterations() * std::size(kTexts));
}
BENCHMARK(AddStringProperty);

// The peer starts with an empty table for each instance, as each instance starts empty.
template <class TValue, std::size_t kCount>
void InsertInMap(benchmark::State& state, const char* const (&names)[kCount], TValue value) {
  for (auto _ : state) {
    TPeer map;
    for (const char* name : names) map.emplace(name, value);
    benchmark::DoNotOptimize(map);
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK_CAPTURE(InsertInMap, Uint32, kNumbers, std::uint32_t{2400});
BENCHMARK_CAPTURE(InsertInMap, String, kTexts, kText);

// A whole instance each time, committed with the next one.
void AddClassWithProperties(benchmark::State& state) {
  Session session;
  std::size_t number = 0;
  for (auto _ : state) {
    zelAddStringProperty(session.Handle(), "DeviceID", std::to_string(++number).c_str());
    for (const char* name : kNumbers) zelAddUint32Property(session.Handle(), name, 2400);
    benchmark::DoNotOptimize(zelAddClass(session.Handle(), "Bench_Processor"));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(AddClassWithProperties)->Iterations(100000);

}  // namespace

BENCHMARK_MAIN();
