// Runs the rooms of a plan on several cores.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "sweep/disturbance.h"
#include "sweep/plan.h"
#include "sweep/statistics.h"

namespace orvex::tools {

struct SweepOptions {
  std::size_t rooms = 1000;       // of each row
  unsigned jobs = 1;              // threads
  bool isFine = false;            // rooms are recorded and read finely, instead of run
  std::vector<Sound> recordings;  // for the disturbances
  // Called every 200 ms, from one thread, with the number of rooms that are done.
  std::function<void(std::size_t done)> progress = [](std::size_t) {};
  // Asked by every thread before each room: true ends the sweep with the rooms that have begun.
  std::function<bool()> isInterrupted = [] { return false; };
};

struct SweepResult {
  bool isFine = false;
  std::vector<std::vector<RoomResult>> rows;  // by row, by room: the same whatever the number of jobs
  double recordedS = 0.0;                     // length of all recordings
  std::size_t done = 0;                       // rooms; they are the first of those that were planned
  std::size_t planned = 0;

  bool IsComplete() const { return done == planned; }
};

// Throws what making or running a room throws: std::invalid_argument, sim::RoomError.
SweepResult RunSweep(const Plan& plan, const SweepOptions& options);
}  // namespace orvex::tools
