// Problems go where the service's own lines go, under the port's tag.
#include "report.h"

#include "orvex/platform/system_log.h"

namespace orvex::host {

void ReportProblem(const std::string& text) {
  system_log_print(LogBuffer::kSystem, LogPriority::kError, "orvex-host", "orvex-host: %s\n", text.c_str());
}

}  // namespace orvex::host
