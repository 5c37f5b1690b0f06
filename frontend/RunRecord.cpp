#include "frontend/RunRecord.h"

#include <fmt/format.h>
#include <pwd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "frontend/PluginHost.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TMicroseconds = std::chrono::microseconds;

unsigned Milliseconds(TMicroseconds duration) {
  return static_cast<unsigned>(std::chrono::round<std::chrono::milliseconds>(duration).count());
}

// The local time, with its offset from UTC.
TCIMDateTime DateTimeOf(std::chrono::system_clock::time_point moment) {
  const time_t seconds = std::chrono::system_clock::to_time_t(moment);
  const auto rest =
      std::chrono::duration_cast<TMicroseconds>(moment.time_since_epoch()).count() % 1000000;
  tm local = {};
  localtime_r(&seconds, &local);
  return {static_cast<unsigned short>(local.tm_year + 1900),
          static_cast<unsigned short>(local.tm_mon + 1),
          static_cast<unsigned int>(local.tm_mday),
          static_cast<unsigned short>(local.tm_hour),
          static_cast<unsigned short>(local.tm_min),
          static_cast<unsigned short>(local.tm_sec),
          static_cast<unsigned int>(rest),
          static_cast<short>(local.tm_gmtoff / 60)};
}

std::string UserName() {
  char buffer[4096];
  passwd entry = {};
  passwd* found = nullptr;
  getpwuid_r(geteuid(), &entry, buffer, sizeof buffer, &found);
  return found ? found->pw_name : std::to_string(geteuid());
}

TCIMValue ArrayOf(const std::vector<std::string>& texts) {
  const std::vector<TCIMValue> elements(texts.begin(), texts.end());
  return {TCIMValue::TCIMType::TypeString, 0, elements};
}

void Commit(std::unique_ptr<TCIMInstance> instance) {
  instance->AddToContainer();
  instance.release();
}

void RecordStatus(TContainer& container, const TPluginOutcome& outcome, std::size_t number) {
  std::unique_ptr<TCIMInstance> status(
      container.AllocateInstance(container.GetClass(kStatusClass)));
  status->SetPropertyValue("InstanceID", fmt::format("KVRSG:Plugin:{:03}", number));
  status->SetPropertyValue("PluginName", outcome.Name());
  if (!outcome.records.empty()) {
    status->SetPropertyValue("PluginVersion", outcome.records.front().version);
  }
  status->SetPropertyValue("Path", outcome.path);
  const TStatus result = outcome.Failed() ? TStatus::kFailed : TStatus::kCollected;
  status->SetPropertyValue("Status", static_cast<unsigned short>(result));
  status->SetPropertyValue("Duration", Milliseconds(outcome.duration));
  status->SetPropertyValue("Instances", static_cast<unsigned int>(outcome.instanceCount));
  if (outcome.Failed()) status->SetPropertyValue("Message", outcome.Reason());
  status->SetPropertyValue("Classes", ArrayOf(outcome.classes));
  Commit(std::move(status));
}

}  // namespace

void RecordRun(TContainer& container, const std::vector<TPluginOutcome>& outcomes,
               std::chrono::system_clock::time_point start, TMicroseconds duration) {
  const bool isPartial = std::any_of(outcomes.begin(), outcomes.end(),
                                     [](const auto& outcome) { return outcome.Failed(); });
  std::unique_ptr<TCIMInstance> run(container.AllocateInstance(container.GetClass(kRunClass)));
  run->SetPropertyValue("InstanceID", "KVRSG:Run");
  run->SetPropertyValue("Version", ZEL_VERSION);
  run->SetPropertyValue("StartTime", DateTimeOf(start));
  run->SetPropertyValue("Duration", Milliseconds(duration));
  run->SetPropertyValue("User", UserName());
  run->SetPropertyValue("IsRoot", TOSSpecific::IsAdmin());
  run->SetPropertyValue("IsPartial", isPartial);
  run->SetPropertyValue("IsRedacted", false);
  Commit(std::move(run));
  for (std::size_t i = 0; i < outcomes.size(); ++i) RecordStatus(container, outcomes[i], i + 1);
}

}  // namespace zel
