// Ecore's main loop, its termination signals and its worker pool.
#include "main_loop.h"

#include <Ecore.h>

#include <atomic>

#include "end_signals.h"
#include "event_queue.h"
#include "signal_errno.h"

namespace orvex::host {
namespace {

std::atomic<bool> isEnding{false};
unsigned startedLoops = 0;
bool isStarted = false;
Ecore_Event_Handler* exitHandler = nullptr;

Eina_Bool OnExitSignal(void* /*data*/, int /*type*/, void* /*event*/) {
  RequestMainLoopEnd();
  return ECORE_CALLBACK_DONE;
}

Eina_Bool KeepAwake(void* /*data*/) {
  return ECORE_CALLBACK_RENEW;
}

bool HasWorkers() {
  return ecore_thread_active_get() > 0 || ecore_thread_pending_total_get() > 0;
}

bool InitEcore() {
  // Otherwise Ecore looks for D-Bus services, and complains at length where there are none.
  ecore_app_no_system_modules();
  // Not with the end signals held back: Ecore lets them through before its handler can keep one, and it would be lost.
  if (ecore_init() <= 0) {
    return false;
  }
  KeepErrnoInEcoreHandlers();
  return true;
}

}  // namespace

bool StartMainLoop() {
  if (!InitEcore()) {
    return false;
  }
  isStarted = true;
  ++startedLoops;
  isEnding = false;
  exitHandler = ecore_event_handler_add(ECORE_EVENT_SIGNAL_EXIT, &OnExitSignal, nullptr);
  if (exitHandler == nullptr || !EventQueue::Instance().Open()) {
    StopMainLoop();
    return false;
  }
  if (TakeRememberedEndSignal()) {
    RequestMainLoopEnd();
  }
  return true;
}

void RunMainLoop() {
  if (!isEnding) {
    ecore_main_loop_begin();
  }
}

bool DrainWorkers(std::chrono::milliseconds limit) {
  constexpr double kLookEverySeconds = 0.02;
  const auto deadline = std::chrono::steady_clock::now() + limit;
  Ecore_Timer* const timer = ecore_timer_add(kLookEverySeconds, &KeepAwake, nullptr);
  while (HasWorkers() && std::chrono::steady_clock::now() < deadline) {
    ecore_main_loop_iterate_may_block(1);
  }
  const bool isDrained = !HasWorkers();
  ecore_timer_del(timer);
  if (isDrained) {
    // A worker is gone before its end function was called: that waits in the main loop's queue.
    ecore_main_loop_iterate();
  }
  return isDrained;
}

void StopMainLoop() {
  isEnding = true;
  EventQueue::Instance().Close();
  EventQueue::Instance().Release();
  if (exitHandler != nullptr) {
    ecore_event_handler_del(exitHandler);
    exitHandler = nullptr;
  }
  isStarted = false;
  const EndSignalBlock block;
  ecore_shutdown();
  TakeOverEndSignals();
}

void RequestMainLoopEnd() {
  if (!isStarted || isEnding.exchange(true)) {
    return;
  }
  EventQueue::Instance().Close();
  ecore_main_loop_quit();
}

bool IsMainLoopEnding() {
  return isEnding;
}

unsigned CurrentMainLoop() {
  return isStarted ? startedLoops : 0;
}

}  // namespace orvex::host
