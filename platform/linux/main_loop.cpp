// Ecore's main loop, its termination signals and its worker pool.
#include "linux/main_loop.h"

#include <Ecore.h>

#include <atomic>

#include "linux/alarm.h"
#include "linux/ecore_start.h"
#include "linux/end_signals.h"
#include "linux/event_queue.h"
#include "linux/signal_errno.h"

namespace orvex::port {
namespace {

std::atomic<bool> isEnding{false};
unsigned startedLoops = 0;
bool isStarted = false;
EndSignalWatch endSignals;

Eina_Bool KeepAwake(void* /*data*/) {
  return ECORE_CALLBACK_RENEW;
}

bool HasWorkers() {
  return ecore_thread_active_get() > 0 || ecore_thread_pending_total_get() > 0;
}

}  // namespace

std::string StartMainLoop() {
  if (std::string problem = BeginEcore(); !problem.empty()) {
    return problem;
  }
  KeepErrnoInEcoreHandlers();
  isStarted = true;
  ++startedLoops;
  isEnding = false;
  if (!EventQueue::Instance().Open() || !endSignals.Begin(&RequestMainLoopEnd)) {
    StopMainLoop();
    return "Ecore cannot watch file descriptors";
  }
  return "";
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
  endSignals.End();
  EndAllAlarms();
  isStarted = false;
  ecore_shutdown();
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

}  // namespace orvex::port
