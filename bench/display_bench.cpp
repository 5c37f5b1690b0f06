// Showing values as text for people, against printing a number with fmt.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TContainer.h"
#include "zelcore/TLogger.h"

namespace {

constexpr unsigned int kCodes = 1024;  // different ones, so that no branch is foreseen

using TQualifiers = std::vector<std::pair<std::string, TCIMValue>>;

TCIMValue Strings(const std::vector<std::string>& texts) {
  return TCIMValue(TCIMValue::TCIMType::TypeString, 0, {texts.begin(), texts.end()});
}

// Properties of one declaration with these qualifiers.
class Column {
 public:
  Column(TQualifiers qualifiers, const std::vector<unsigned long>& numbers) {
    qualifiers.emplace_back("KEY", true);  // a class needs one
    TCIMClass* const cls = fContainer.AllocateClass("BENCH_Disk", nullptr);
    auto* const decl =
        new TCIMPropertyDecl("Number", *cls, TCIMValue(TCIMValue::TCIMType::TypeUint64, 0));
    for (const auto& [name, value] : qualifiers) {
      TCIMQualifierDecl* const qualifier = fContainer.AllocateQualifierDecl(
          name, value, TCIMQualifierDecl::ScopeProperty, TCIMQualifierDecl::FlavorOverridable);
      qualifier->AddToContainer();
      decl->AddQualifier(*new TCIMQualifier(*qualifier, value));
    }
    decl->AddToContainer();
    cls->AddToContainer();
    for (const unsigned long number : numbers) {
      fProperties.push_back(std::make_unique<TCIMProperty>(*decl, TCIMValue(number)));
    }
  }

  void Show(benchmark::State& state) const {
    std::size_t i = 0;
    for (auto round : state) {
      benchmark::DoNotOptimize(fProperties[i]->ToString());
      i = (i + 1) % fProperties.size();
    }
  }

 private:
  TContainer fContainer;
  std::vector<std::unique_ptr<TCIMProperty>> fProperties;
};

std::vector<unsigned long> MakeNumbers(unsigned long end) {
  std::mt19937_64 random(1);
  std::vector<unsigned long> numbers(kCodes);
  for (unsigned long& number : numbers) number = random() % end;
  return numbers;
}

// Through a map of as many rows as the argument says, each text of an ordinary length. An ordered
// map has its codes rising, another in the reverse order.
void ShowMapped(benchmark::State& state, bool isOrdered) {
  const auto rows = static_cast<unsigned int>(state.range(0));
  std::vector<std::string> codes;
  std::vector<std::string> texts;
  for (unsigned int i = 0; i < rows; ++i) {
    codes.push_back(std::to_string(i));
    texts.push_back("Enabled but Offline " + std::to_string(i));
  }
  if (!isOrdered) std::reverse(codes.begin(), codes.end());
  const Column column(
      {
          {"Values",   Strings(texts)},
          {"ValueMap", Strings(codes)}
  },
      MakeNumbers(rows));
  column.Show(state);
}

void ShowOrdered(benchmark::State& state) { ShowMapped(state, true); }
void ShowUnordered(benchmark::State& state) { ShowMapped(state, false); }

void ShowScaled(benchmark::State& state) {
  Column(
      {
          {"UNITS", "Bytes"}
  },
      MakeNumbers(1ul << 50))
      .Show(state);
}

void ShowBare(benchmark::State& state) { Column({}, MakeNumbers(1ul << 50)).Show(state); }

// The number scaled already, with its label.
void FormatWithFmt(benchmark::State& state) {
  const std::string label = "Megabytes";
  std::vector<float> numbers;
  for (const unsigned long number : MakeNumbers(10240)) {
    numbers.push_back(static_cast<float>(number) / 10);
  }
  std::size_t i = 0;
  for (auto round : state) {
    std::string text = fmt::format("{:.1f}", numbers[i]);
    text += ' ';
    text += label;
    benchmark::DoNotOptimize(text);
    i = (i + 1) % numbers.size();
  }
}

BENCHMARK(ShowOrdered)->Name("display/map")->Arg(12)->RangeMultiplier(8)->Range(64, 1 << 15);
BENCHMARK(ShowUnordered)->Name("display/unordered map")->Arg(12)->Arg(512);
BENCHMARK(ShowScaled)->Name("display/scaled");
BENCHMARK(ShowBare)->Name("display/bare");
BENCHMARK(FormatWithFmt)->Name("display/fmt");

}  // namespace

int main(int argc, char** argv) {
  TLogger::Initialize();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
