// The application framework on Ecore: one application's life from create step to destroy step. AppMain() is the port's.
#include "orvex/platform/application.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "linux/end_signals.h"
#include "linux/event_queue.h"
#include "linux/exit_codes.h"
#include "linux/main_loop.h"
#include "linux/port.h"
#include "linux/run_application.h"

namespace orvex::port {
namespace {

// What a worker of the pool may still take: the test sound's remaining length, and room.
constexpr std::chrono::seconds kWorkerLimit{6};

void Call(const std::function<void()>& function) {
  if (function) {
    function();
  }
}

}  // namespace

int RunApplication(FwEflApplication* application, const MainLoopCompanion& companion) {
  const std::string problem = application == nullptr ? "expected an application" : StartMainLoop();
  if (!problem.empty()) {
    ReportProblem("the main loop cannot run: " + problem);
    return kExitNoMainLoop;
  }
  Call(companion.begin);
  if (!application->t_OnCreate()) {
    RequestMainLoopEnd();
  }
  RunMainLoop();
  Call(companion.end);
  application->t_OnDestroy();
  if (!DrainWorkers(kWorkerLimit)) {
    ReportProblem("a worker thread did not finish within 6 s; ending without it");
    // Without destructors, which that thread may still need things of; what was written to files is kept.
    std::fflush(nullptr);
    std::_Exit(kExitInOrder);
  }
  StopMainLoop();
  return kExitInOrder;
}

}  // namespace orvex::port

FwEflApplication::FwEflApplication(const char* identifier) : m_Identifier(identifier == nullptr ? "" : identifier) {
  // From here on there is a destroy step to be run.
  orvex::port::HoldEndSignals();
}

FwEflApplication::~FwEflApplication() {
  orvex::port::ReleaseEndSignals();
}

bool FwEflApplication::IfMessageReceived(const std::string& /*sender*/, const FwMessage& /*received*/,
                                         FwMessage& /*reply*/) {
  return false;
}

// There are no event types of the framework's own.
bool FwEventIO::t_OnEvent(FwEvent* /*event*/) {
  return false;
}

bool SendEvent(const FwEvent& event) {
  return orvex::port::EventQueue::Instance().Send(event);
}

void ui_app_exit() {
  orvex::port::RequestMainLoopEnd();
}
