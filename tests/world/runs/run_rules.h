// What has to be true of every run, whatever failed in it and however it ended.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "world/runs/service_run.h"

namespace orvex::runs {

// How long a port lets a worker finish its sound after the process was asked to end.
constexpr world::Time kLongestDrain = std::chrono::seconds(6);

using Violations = std::vector<std::string>;

// Checks a run whose process has ended, but whose application object still exists. Empty: all rules are kept.
Violations CheckRun(const ServiceRun& run);

// The rules by theme; each adds what it finds.
void CheckEnd(const ServiceRun& run, Violations& violations);        // ended in time, destroyed once
void CheckLines(const ServiceRun& run, Violations& violations);      // only listed lines and calls, on their threads
void CheckSpeaker(const ServiceRun& run, Violations& violations);    // volume and mute are given back
void CheckDelay(const ServiceRun& run, Violations& violations);      // old delay, or base minus difference
void CheckRecords(const ServiceRun& run, Violations& violations);    // telemetry: what, when and to whom
void CheckResources(const ServiceRun& run, Violations& violations);  // what was taken is given back

}  // namespace orvex::runs
