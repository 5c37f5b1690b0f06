// Writing a container against reading what was written: the same objects, the other way round.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "bench/Documents.h"
#include "bench/StopWatch.h"
#include "zelcore/TCIMXMLWriter.h"
#include "zelcore/TContainer.h"
#include "zelcore/TLogger.h"

namespace {

using ECompression = TCIMXMLWriter::ECompression;

// A file that is gone at the end.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& extension)
      : fPath("/tmp/zel-bench-" + std::to_string(getpid()) + extension) {}
  ~ScratchFile() { Remove(); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string& GetPath() const { return fPath; }
  void Remove() const { unlink(fPath.c_str()); }
  void Write(const TContainer& container, ECompression compression) const {
    const int descriptor = open(fPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    TCIMXMLWriter(descriptor, compression).WriteContainer(container);
    close(descriptor);
  }

 private:
  std::string fPath;
};

void Write(benchmark::State& state, const std::string& document, const std::string& extension,
           ECompression compression) {
  TContainer container;
  container.PopulateContainerFromFile(bench::GetDocument(document));
  const ScratchFile file(extension);
  for (auto round : state) {
    file.Remove();  // to throw the former one away takes time, too
    bench::Time(state, [&] { file.Write(container, compression); });
  }
}

void Read(benchmark::State& state, const std::string& document, const std::string& extension,
          ECompression compression) {
  const ScratchFile file(extension);
  {
    TContainer container;
    container.PopulateContainerFromFile(bench::GetDocument(document));
    file.Write(container, compression);
  }
  for (auto round : state) {
    TContainer container;
    bench::Time(state, [&] { container.PopulateContainerFromFile(file.GetPath()); });
  }
}

void Register() {
  const auto add = [](const std::string& name, auto work) {
    benchmark::RegisterBenchmark(name.c_str(), work)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  };
  for (const std::string document : {"1.xml", "10.xml"}) {
    for (const std::string packing : {"", ".gz"}) {
      const ECompression compression = packing.empty() ? ECompression::kNone : ECompression::kGzip;
      const auto work = [=](auto function) {
        return [=](benchmark::State& state) {
          function(state, document, ".xml" + packing, compression);
        };
      };
      add("write/" + document + packing, work(Write));
      add("read/" + document + packing, work(Read));
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  TLogger::Initialize();
  Register();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
