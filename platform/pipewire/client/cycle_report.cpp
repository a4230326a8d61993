// Versions of PipeWire append members to the profiler's structs; those that are read here stay where they are.
#include "pipewire/client/cycle_report.h"

#include <spa/param/profiler.h>
#include <spa/pod/iter.h>
#include <spa/pod/parser.h>
#include <spa/utils/type.h>

#include <algorithm>

namespace orvex::pipewire {
namespace {

// States of a node in a cycle: 0 its turn has not come, 1 it is to run, 2 it runs, 3 it is done. What waits for another
// one has state 0, too, so the nodes in between tell.
constexpr std::int32_t kIsToRun = 1;
constexpr std::int32_t kRuns = 2;

struct CycleOfDriver {
  std::string driver;
  std::int64_t startNs = 0;
  std::int64_t lengthNs = 0;
  std::int64_t signalNs = 0;  // when the driver began it
  std::int32_t xruns = 0;
  bool isLate = false;
};

void ReadInfo(const spa_pod* info, CycleOfDriver& cycle) {
  std::int64_t count = 0;
  float load = 0.0F;
  spa_pod_parse_struct(info, SPA_POD_Long(&count), SPA_POD_Float(&load), SPA_POD_Float(&load), SPA_POD_Float(&load),
                       SPA_POD_Int(&cycle.xruns));
}

void ReadClock(const spa_pod* clock, CycleOfDriver& cycle) {
  std::int32_t number = 0;
  const char* name = nullptr;
  spa_fraction rate{};
  std::int64_t position = 0;
  std::int64_t frames = 0;
  spa_pod_parse_struct(clock, SPA_POD_Int(&number), SPA_POD_Int(&number), SPA_POD_String(&name),
                       SPA_POD_Long(&cycle.startNs), SPA_POD_Fraction(&rate), SPA_POD_Long(&position),
                       SPA_POD_Long(&frames));
  cycle.lengthNs = rate.denom == 0 ? 0 : frames * 1'000'000'000 * rate.num / rate.denom;
}

// Of the driver and of each node that follows it; empty: unreadable.
std::string ReadNode(const spa_pod* block, std::int64_t& signalNs, std::int32_t& state) {
  std::int32_t id = 0;
  const char* name = nullptr;
  std::int64_t timeNs = 0;
  const int result =
      spa_pod_parse_struct(block, SPA_POD_Int(&id), SPA_POD_String(&name), SPA_POD_Long(&timeNs),
                           SPA_POD_Long(&signalNs), SPA_POD_Long(&timeNs), SPA_POD_Long(&timeNs), SPA_POD_Int(&state));
  return result < 0 || name == nullptr ? "" : name;
}

void ReadProperty(const spa_pod_prop& property, CycleOfDriver& cycle) {
  std::int64_t signalNs = 0;
  std::int32_t state = 0;
  switch (property.key) {
    case SPA_PROFILER_info:
      ReadInfo(&property.value, cycle);
      break;
    case SPA_PROFILER_clock:
      ReadClock(&property.value, cycle);
      break;
    case SPA_PROFILER_driverBlock:
      cycle.driver = ReadNode(&property.value, cycle.signalNs, state);
      break;
    case SPA_PROFILER_followerBlock:
      ReadNode(&property.value, signalNs, state);
      cycle.isLate = cycle.isLate || state == kIsToRun || state == kRuns;
      break;
    default:
      break;
  }
}

CycleOfDriver ReadCycle(const spa_pod* report) {
  CycleOfDriver cycle;
  const auto* const object = reinterpret_cast<const spa_pod_object*>(report);
  for (const spa_pod_prop* property = spa_pod_prop_first(&object->body);
       spa_pod_prop_is_inside(&object->body, object->pod.size, property); property = spa_pod_prop_next(property)) {
    ReadProperty(*property, cycle);
  }
  // A card that follows loses its place when the driver comes so late.
  cycle.isLate = cycle.isLate || (cycle.lengthNs > 0 && cycle.signalNs - cycle.startNs > cycle.lengthNs / 2);
  return cycle;
}

}  // namespace

void CycleReport::Take(const spa_pod* report) {
  spa_pod_parser parser;
  spa_pod_frame frame;
  spa_pod_parser_pod(&parser, report);
  if (spa_pod_parser_push_struct(&parser, &frame) < 0) {
    return;
  }
  spa_pod* part = nullptr;
  while (spa_pod_parser_get_pod(&parser, &part) >= 0) {
    if (!spa_pod_is_object_type(part, SPA_TYPE_OBJECT_Profiler)) {
      continue;
    }
    const CycleOfDriver cycle = ReadCycle(part);
    const auto [entry, isNew] = m_Drivers.try_emplace(cycle.driver);
    DriverCycles& driver = entry->second;
    const bool isLate = cycle.isLate || (!isNew && cycle.xruns > driver.xruns);
    driver.xruns = cycle.xruns;
    driver.lastNs = std::max(driver.lastNs, cycle.startNs);
    if (isLate && cycle.startNs != driver.lateNs) {
      driver.lateNs = cycle.startNs;
      ++driver.late;
    }
  }
}

}  // namespace orvex::pipewire
