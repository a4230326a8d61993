// The event-log collector: the television's events.jsonl, and its faults.
#include "orvex/platform/event_log.h"

#include "linux/event_file.h"
#include "virtual/faults.h"
#include "virtual/television.h"

using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;

class CLogger {};

CLogger* event_log_get_instance() {
  static CLogger logger;
  return Faults::Instance().IsAbsent(Fault::kEventLog) ? nullptr : &logger;
}

int event_log_add_sync(CLogger* logger, std::string service, std::string event, std::string category,
                       std::string value) {
  if (const auto fault = Faults::Instance().Next(Fault::kEventLogAdd)) {
    return *fault;
  }
  if (logger == nullptr) {
    return kEventLogUnreachable;
  }
  const auto file = orvex::virtual_tv::Television::Instance().PathOf("events.jsonl");
  return orvex::port::AppendEventRecord(file, service, event, category, value);
}
