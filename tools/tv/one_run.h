// One run of the service on a virtual television, watched.
#pragma once

#include <functional>
#include <string>

#include "run/run_signals.h"
#include "tv/run_summary.h"
#include "tv/run_television.h"

namespace orvex::tools {

struct RunWatcher {
  // A line of the service's log. False: nobody watches any more, the service is to end.
  std::function<bool(const std::string& line)> onLine;
  // What happens, with its time, as a line for a person.
  std::function<void(const std::string& line)> onNews;
};

// `service`: empty, or the program. A television that is kept has records of earlier runs; the summary has this one's.
RunSummary RunOnce(const std::string& service, const RunTelevision& television, RunSignals& signals,
                   const RunWatcher& watcher);

}  // namespace orvex::tools
