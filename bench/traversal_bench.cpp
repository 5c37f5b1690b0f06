// How the time to follow associations grows with the number of instances.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/StopWatch.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"

namespace {

using TCIMType = TCIMValue::TCIMType;

// A chain of disks: an association instance leads from each to the one before it.
class TChain {
 public:
  TChain() {
    for (const char* name : {"KEY", "ASSOCIATION"}) {
      fContainer
          .AllocateQualifierDecl(name, TCIMValue(false), TCIMQualifierDecl::ScopeNone,
                                 TCIMQualifierDecl::FlavorOverridable)
          ->AddToContainer();
    }
    fDisk = fContainer.AllocateClass("BENCH_Disk", nullptr);
    AddKey(*fDisk, "DeviceID", TCIMValue(TCIMType::TypeString, 0));
    fDisk->AddToContainer();

    fNext = fContainer.AllocateClass("BENCH_Next", nullptr);
    Qualify(*fNext, "ASSOCIATION");
    TCIMValue reference(TCIMType::TypeReference, 0);
    reference.SetReferencedClass(*fDisk);
    AddKey(*fNext, "Antecedent", reference);
    AddKey(*fNext, "Dependent", reference);
    fNext->AddToContainer();
  }

  void Commit(long number) {
    TCIMInstance* const disk = fContainer.AllocateInstance(fDisk);
    disk->SetPropertyValue("DeviceID", TCIMValue(MakeKey(number)));
    disk->AddToContainer();
    if (number == 0) return;
    TCIMInstance* const next = fContainer.AllocateInstance(fNext);
    next->SetPropertyValue("Antecedent", TCIMValue(PathOf(number - 1)));
    next->SetPropertyValue("Dependent", TCIMValue(PathOf(number)));
    next->AddToContainer();
  }
  void CommitAll(long count) {
    for (long i = 0; i < count; ++i) Commit(i);
  }

  const TCIMInstance* Disk(long number) const { return fDisk->FindInstance(PathOf(number)); }
  const TCIMClass& Disks() const { return *fDisk; }

 private:
  // Keys in no order.
  static std::string MakeKey(long number) {
    return "disk" + std::to_string(number * 7919 % 1000003);
  }

  void Qualify(ICIMAllowQualifiers& element, const char* name) {
    element.AddQualifier(*new TCIMQualifier(*fContainer.GetQualifierDecl(name), TCIMValue(true)));
  }

  void AddKey(TCIMClass& cls, const char* name, const TCIMValue& value) {
    auto* const decl = new TCIMPropertyDecl(name, cls, value);
    Qualify(*decl, "KEY");
    decl->AddToContainer();
  }

  TCIMReference PathOf(long number) const {
    TCIMReference path(&fContainer);
    path.SetClass(*fDisk);
    path.AddKeyValue("DeviceID", TCIMValue(MakeKey(number)));
    return path;
  }

  TContainer fContainer;
  TCIMClass* fDisk;
  TCIMClass* fNext;
};

// The first query, which works out what later ones need, is part of it.
template <class TQuery>
void Walk(benchmark::State& state, TQuery query) {
  for (auto round : state) {
    TChain chain;
    chain.CommitAll(state.range(0));
    std::size_t found = 0;
    bench::Time(state, [&] {
      for (const TCIMInstance* disk : chain.Disks().EnumerateInstances(false)) {
        found += query(*disk);
      }
    });
    if (found != 2 * static_cast<std::size_t>(state.range(0) - 1)) {
      state.SkipWithError("associations are missing");
    }
  }
}

void WalkReferences(benchmark::State& state) {
  Walk(state, [](const TCIMInstance& disk) { return disk.References("", "").size(); });
}

// With the role Dependent given, each leads to the one before; with Antecedent, to the one after.
void WalkAssociators(benchmark::State& state) {
  Walk(state, [](const TCIMInstance& disk) {
    return disk.Associators("", "", "Dependent", "").size() +
           disk.Associators("", "", "Antecedent", "").size();
  });
}

void CommitAndQuery(benchmark::State& state) {
  for (auto round : state) {
    TChain chain;
    chain.Commit(0);
    bench::Time(state, [&] {
      for (long i = 1; i < state.range(0); ++i) {
        chain.Commit(i);
        if (chain.Disk(i)->References("", "").size() != 1) {
          state.SkipWithError("an association is missing");
        }
      }
    });
  }
}

void Register(const char* name, void (*work)(benchmark::State&)) {
  benchmark::RegisterBenchmark(name, work)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond)
      ->RangeMultiplier(10)
      ->Range(1000, 1000000);
}

}  // namespace

int main(int argc, char** argv) {
  Register("references", WalkReferences);
  Register("associators", WalkAssociators);
  Register("alternate", CommitAndQuery);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
