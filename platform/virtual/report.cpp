// Problems go where the service's own lines go, under the port's tag.
#include "virtual/report.h"

#include "orvex/platform/system_log.h"

void orvex::port::ReportProblem(const std::string& text) {
  system_log_print(LogBuffer::kSystem, LogPriority::kError, "orvex-host", "orvex-host: %s\n", text.c_str());
}
