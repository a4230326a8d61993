// What the daemon's profiler tells of the sound graph: cycles that were not done when the next one began, as on a busy
// computer. The sound of such a cycle is lost, or cards lose their places.
#pragma once

#include <cstdint>
#include <map>
#include <string>

struct spa_pod;

namespace orvex::pipewire {

// Of one driver, by which the graphs are told apart.
struct DriverCycles {
  std::uint64_t late = 0;    // cycles since the first report
  std::int32_t xruns = 0;    // since the driver was made, as it counts itself
  std::int64_t lastNs = 0;   // start of the last cycle that was reported, CLOCK_MONOTONIC
  std::int64_t lateNs = -1;  // start of the last one that was late; cycles are told twice
};

class CycleReport {
public:
  // A report of the profiler: some cycles, of one driver or several.
  void Take(const spa_pod* report);
  // By the driver's "node.name".
  const std::map<std::string, DriverCycles>& GetDrivers() const { return m_Drivers; }

private:
  std::map<std::string, DriverCycles> m_Drivers;
};

}  // namespace orvex::pipewire
