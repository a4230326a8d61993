// The life of the Ecore main loop: start, end request, end. Main loop only, unless a line says otherwise.
#pragma once

#include <chrono>
#include <string>

namespace orvex::port {

// Starts Ecore on this thread. Empty: it has started. Otherwise what is missing; nothing is left behind.
std::string StartMainLoop();
// Runs until the end is requested; returns at once when it was requested before.
void RunMainLoop();
// Iterates until no worker of the pool runs and their end and cancel functions have been called. False: some still run
// after `limit`.
bool DrainWorkers(std::chrono::milliseconds limit);
// Ends all alarms and stops Ecore. Other timers, monitors and handlers are void afterwards.
void StopMainLoop();

// Asks the main loop to end; events still queued are dropped.
void RequestMainLoopEnd();
// Any thread. True from the request on; false again when a further main loop starts.
bool IsMainLoopEnding();
// Counts the main loops of this process, 0 while none runs: what was made in one is void in the next.
unsigned CurrentMainLoop();

}  // namespace orvex::port
