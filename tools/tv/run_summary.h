// What a run came to, as text and as JSON.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <json/value.h>

#include "run/log_follower.h"
#include "run/service_process.h"

namespace orvex::tools {

struct RunSummary {
  RunReport report;
  ServiceEnding ending;
  std::optional<double> misalignmentBeforeMs;  // optical minus speaker, of the room itself
  std::optional<double> misalignmentAfterMs;
  std::optional<std::int64_t> delayAfterMs;  // in force when the run had ended
  std::vector<Json::Value> events;
};

// What is not known is null.
Json::Value SummaryValue(const RunSummary& summary);
// The same as an indented text with a line end.
std::string SummaryJson(const RunSummary& summary);
// Some lines for a person.
std::string SummaryText(const RunSummary& summary);

}  // namespace orvex::tools
