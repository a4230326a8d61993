// One application's life on Ecore: what AppMain() of a port on Linux does.
#pragma once

#include <functional>

#include "orvex/platform/application.h"

namespace orvex::port {

// What a port runs beside the application. Called on the main loop's thread, `begin` in the started main loop before
// the create step, `end` when the main loop has ended, before the destroy step. Either may be empty.
struct MainLoopCompanion {
  std::function<void()> begin;
  std::function<void()> end;
};

// Starts the main loop, runs `application` in it from the create step to the destroy step, and lets the pool's workers
// finish; a worker that takes longer than the contract allows ends the process. Result: the exit code
// (exit_codes.h). Why there is no main loop is reported.
int RunApplication(FwEflApplication* application, const MainLoopCompanion& companion = {});

}  // namespace orvex::port
