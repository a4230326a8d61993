// orvex-tv events: the telemetry records that a virtual television has collected.
#include <cstdio>
#include <memory>

#include "options/errors.h"
#include "tv/commands.h"
#include "tv/event_records.h"
#include "tv/television_option.h"
#include "tv/value_names.h"

namespace orvex::tools {
namespace {

constexpr char kConsent[] = "agree";

struct EventsArguments {
  std::string directory;
  bool json = false;
};

bool IsConsentOff(const virtual_tv::Television& television) {
  try {
    return television.GetNumber(FullValueName(kConsent)) == 0;
  } catch (const virtual_tv::TelevisionError&) {
    return false;
  }
}

void ExplainNothing(const EventsArguments& arguments, const virtual_tv::Television& television) {
  if (IsConsentOff(television)) {
    const std::string option = arguments.directory.empty() ? "" : " --tv " + arguments.directory;
    std::fprintf(stderr,
                 "orvex-tv: no records are collected, as the user has not agreed; orvex-tv set%s %s 1 does that\n",
                 option.c_str(), kConsent);
  }
}

void Events(const EventsArguments& arguments) {
  const virtual_tv::Television television = ExistingTelevision(arguments.directory);
  const EventRecords events = ReadEventRecords(television.PathOf("events.jsonl").string());
  std::fputs((arguments.json ? EventLines(events.records) : EventTable(events.records)).c_str(), stdout);
  for (const std::string& problem : events.problems) {
    std::fprintf(stderr, "orvex-tv: %s\n", problem.c_str());
  }
  if (events.records.empty()) {
    ExplainNothing(arguments, television);
  }
}

}  // namespace

void AddEventsCommand(Command& program) {
  const auto arguments = std::make_shared<EventsArguments>();
  Command& command = program.AddCommand("events", "print the collected telemetry records as a table");
  AddTelevisionOption(command, arguments->directory);
  command.AddFlag("--json", arguments->json, "print the records as they are, one JSON object per line");
  command.AddExample("orvex-tv events --tv /tmp/mytv");
  command.SetAction([=] {
    Events(*arguments);
    return kExitGood;
  });
}

}  // namespace orvex::tools
