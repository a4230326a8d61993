// The recordings and results that a run of the service leaves in /tmp.
#pragma once

#include <time.h>

#include "run/log_follower.h"

namespace orvex::tools {

// Now, by the clock that gives files their times, which goes in steps of some milliseconds. A file that is written from
// now on gets no earlier time; one that was written just before may get a later one.
timespec FileTimeNow();

// Forgets what the run has named but not written since `begin`: the service does not touch what another program has put
// in the place of its files. In RunReport::debugFiles an empty text stands for it.
void ForgetForeignFiles(RunReport& report, const timespec& begin);

// Removes what is left after ForgetForeignFiles(); the report names none any more.
void RemoveDebugFiles(RunReport& report);

}  // namespace orvex::tools
