// orvex-tv events: the telemetry records that a virtual television has collected.
#include <cstdio>
#include <memory>

#include "options/errors.h"
#include "tv/commands.h"
#include "tv/event_records.h"
#include "tv/television_option.h"

namespace orvex::tools {

void AddEventsCommand(Command& program) {
  const auto directory = std::make_shared<std::string>();
  Command& command = program.AddCommand("events", "print the collected telemetry records as a table");
  AddTelevisionOption(command, *directory);
  command.AddExample("orvex-tv events --tv /tmp/mytv");
  command.SetAction([=] {
    const EventRecords events = ReadEventRecords(TelevisionOf(*directory).PathOf("events.jsonl").string());
    std::fputs(EventTable(events.records).c_str(), stdout);
    for (const std::string& problem : events.problems) {
      std::fprintf(stderr, "%s\n", problem.c_str());
    }
    return kExitGood;
  });
}

}  // namespace orvex::tools
