// What has to be true of every run: all rules, and those on its end and its lines.
#include "world/runs/run_rules.h"

#include <algorithm>
#include <optional>

#include "world/runs/journal_reading.h"
#include "world/runs/listed_lines.h"

namespace orvex::runs {

namespace {

using namespace std::chrono_literals;

constexpr world::Time kTimeLimit = 10s;
// The main loop may be busy with a second try at a thread (100 ms), with waiting for a recorder thread that asks the
// remote five times, and with a remote that has to be told five times to stop (200 ms each).
constexpr world::Time kBusy = 500ms;
constexpr std::int64_t kNsPerFrame = 1'000'000'000 / 48000;
constexpr world::Time kRounding = 1ms;
// Where threads are held back: twice in a run, 200 ms each, and a chunk of the sound more.
constexpr world::Time kMostHeld = 700ms;

bool IsDestroyStep(const world::Entry& entry) {
  return entry.text == "I0 Destroy" && entry.file == "OrvexManager.cpp";
}

// A device that does as it is told takes no longer than the sound lasts.
void CheckWorker(const std::vector<world::Entry>& entries, world::Time mostHeld, Violations& violations) {
  std::optional<world::Time> begin;
  world::Time end{};
  std::int64_t frames = 0;
  for (const world::Entry& entry : entries) {
    if (entry.thread != "worker") {
      continue;
    }
    if (StartsWith(entry.text, "E2 ") || StartsWith(entry.text, "> sleep")) {
      return;
    }
    if (!begin.has_value() || entry.text == "I0 m_StartPlay") {
      begin = entry.at;
    }
    frames = NumberAfter(entry.text, "I0 buffer length ").value_or(frames * 4) / 4;
    end = entry.at;
  }
  if (begin.has_value() && end > *begin + world::Time(frames * kNsPerFrame) + kRounding + mostHeld) {
    violations.push_back("the worker plays for longer than the sound lasts");
  }
}

// Nothing happens on the main loop between the request to end and the destroy step.
void CheckNothingAfterExit(const std::vector<world::Entry>& entries, Violations& violations) {
  bool isEnding = false;
  for (const world::Entry& entry : entries) {
    if (entry.thread != "main" || StartsWith(entry.text, "* ")) {
      continue;
    }
    if (isEnding && !IsDestroyStep(entry)) {
      violations.push_back("between the request to end and the destroy step: " + entry.text);
    }
    isEnding = entry.text == "> ui_app_exit()";
  }
}

}  // namespace

void CheckEnd(const ServiceRun& run, Violations& violations) {
  const std::vector<world::Entry>& entries = run.world.journal.Entries();
  if (!run.world.HasEnded()) {
    violations.push_back("the process does not end");
    return;
  }
  if (std::count_if(entries.begin(), entries.end(), IsDestroyStep) != 1) {
    violations.push_back("the destroy step does not run once");
    return;
  }
  const world::Time destroyed = std::find_if(entries.begin(), entries.end(), IsDestroyStep)->at;
  const world::Time mostHeld = run.holdsThreads ? kMostHeld : world::Time(0);
  if (destroyed > kTimeLimit + kBusy + mostHeld) {
    violations.push_back("the destroy step comes too late");
  }
  if (entries.back().at > destroyed + kBusy + kLongestDrain + mostHeld) {
    violations.push_back("the process goes on after its end");
  }
  CheckWorker(entries, mostHeld, violations);
  CheckNothingAfterExit(entries, violations);
}

void CheckLines(const ServiceRun& run, Violations& violations) {
  for (const world::Entry& entry : run.world.journal.Entries()) {
    const std::string objection = Objection(entry);
    if (!objection.empty()) {
      violations.push_back(objection);
    }
  }
}

Violations CheckRun(const ServiceRun& run) {
  Violations violations;
  for (const auto check : {CheckEnd, CheckLines, CheckSpeaker, CheckDelay, CheckRecords, CheckResources}) {
    check(run, violations);
  }
  return violations;
}

}  // namespace orvex::runs
