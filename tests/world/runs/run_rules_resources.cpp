// What a run takes it gives back, but for what it leaves on purpose.
#include <algorithm>

#include "world/runs/journal_reading.h"
#include "world/runs/run_rules.h"

namespace orvex::runs {

namespace {

// The last entry that reads `text`, or none.
const world::Entry* Last(const ServiceRun& run, const std::string& text) {
  const auto& entries = run.world.journal.Entries();
  const auto found =
      std::find_if(entries.rbegin(), entries.rend(), [&](const world::Entry& entry) { return entry.text == text; });
  return found == entries.rend() ? nullptr : &*found;
}

bool WasWorkerGivenUp(const ServiceRun& run) {
  const world::Entry* end = Last(run, "> ~FwAlarm()");
  return end != nullptr && run.world.scheduler.Now() >= end->at + kLongestDrain;
}

bool WasStartRefused(const ServiceRun& run) {
  return run.world.journal.CountStartingWith("E2 Fail to start bt audio") > 0;
}

bool WasStopRefused(const ServiceRun& run) {
  return run.world.journal.CountStartingWith("E2 Fail to stop bt audio") > 0;
}

bool WasDumpLeftOpen(const ServiceRun& run) {
  const world::Entry* start = Last(run, "I0 CDebugDumpImplFile start");
  const world::Entry* stop = Last(run, "I0 CDebugDumpImplFile Stop");
  return start != nullptr &&
         (stop == nullptr || stop < start || run.world.journal.Count("I0 CDebugDumpImplFile start") > 1);
}

// At most the files of every recording; none beyond the last one's when only one was made.
bool HasOpenFiles(const ServiceRun& run) {
  return !run.world.openFiles.empty();
}

bool HasTooManyFiles(const ServiceRun& run) {
  return static_cast<int>(run.world.openFiles.size()) > 2 * run.world.journal.Count("I0 CDebugDumpImplFile start");
}

bool HasOwnSubscription(const ServiceRun& run) {
  const auto& all = run.world.subscriptions;
  return std::any_of(all.begin(), all.end(), [](const world::Subscription& s) { return s.key != kConsentKey; });
}

bool HasConsentSubscription(const ServiceRun& run) {
  const auto& all = run.world.subscriptions;
  return std::any_of(all.begin(), all.end(), [](const world::Subscription& s) { return s.key == kConsentKey; });
}

bool HasUnjoinedThread(const ServiceRun& run) {
  return run.world.journal.Count("> pthread_create() = 0") != run.world.journal.Count("> pthread_join()");
}

using Condition = bool (*)(const ServiceRun& run);

constexpr Condition kNever = [](const ServiceRun&) { return false; };
constexpr Condition kAlways = [](const ServiceRun&) { return true; };

struct Resource {
  const char* name;
  Condition isLeft;
  Condition mayBeLeft;
  const char* reason;  // why it may be left
};

const Resource kResources[] = {
    {"a timer", [](const ServiceRun& run) { return run.world.openTimers != 0; }, kNever, ""},
    {"an alarm", [](const ServiceRun& run) { return run.world.openAlarms != 0; }, kNever, ""},
    {"a thread", HasUnjoinedThread, kNever, ""},
    {"the optical flag's subscription", HasOwnSubscription, kNever, ""},
    {"the consent subscription", HasConsentSubscription, kAlways, "the log manager lives as long as the process"},
    {"the receiver of audio data", [](const ServiceRun& run) { return run.world.voiceCallback != nullptr; },
     WasStartRefused, "a start command that the remote refuses leaves the registration"},
    {"the remote's voice", [](const ServiceRun& run) { return run.world.voiceSending; }, WasStopRefused,
     "a remote that does not stop is told five times at most"},
    {"the debug files", HasOpenFiles, WasDumpLeftOpen,
     "only the end of a sync closes the dump, and only the last recording's: a second start leaves the first pair "
     "open"},
    {"more debug files than were made", HasTooManyFiles, kNever, ""},
    {"the playback device", [](const ServiceRun& run) { return run.world.pcm != nullptr; }, WasWorkerGivenUp,
     "a worker that outlives its time is ended with the process"},
    {"a worker", [](const ServiceRun& run) { return run.world.runningWorkers != 0; }, WasWorkerGivenUp,
     "a worker that outlives its time is ended with the process"},
    {"memory", [](const ServiceRun& run) { return !run.world.openBlocks.empty(); }, WasWorkerGivenUp,
     "a worker that outlives its time is ended with the process"},
};

}  // namespace

void CheckResources(const ServiceRun& run, Violations& violations) {
  for (const Resource& resource : kResources) {
    if (resource.isLeft(run) && !resource.mayBeLeft(run)) {
      violations.push_back(std::string("left behind: ") + resource.name);
    }
  }
}

}  // namespace orvex::runs
