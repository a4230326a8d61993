// Remembers a termination signal in one flag, all that a signal handler may do.
#include "end_signals.h"

#include <atomic>

namespace orvex::host {
namespace {

using Handler = void (*)(int);

constexpr int kEndSignals[] = {SIGTERM, SIGINT};

std::atomic<bool> remembered{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler must not wait");

void Remember(int /*number*/) {
  remembered = true;
}

void SetHandler(int number, Handler handler) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigaction(number, &action, nullptr);
}

bool HasHandler(int number, Handler handler) {
  struct sigaction action {};
  sigaction(number, nullptr, &action);
  return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == handler;
}

void ReplaceHandlers(Handler from, Handler to) {
  for (const int number : kEndSignals) {
    if (HasHandler(number, from)) {
      SetHandler(number, to);
    }
  }
}

}  // namespace

void RememberEndSignals() {
  ReplaceHandlers(SIG_DFL, &Remember);
}

void TakeOverEndSignals() {
  for (const int number : kEndSignals) {
    SetHandler(number, &Remember);
  }
}

void ForgetEndSignals() {
  ReplaceHandlers(&Remember, SIG_DFL);
  remembered = false;
}

bool TakeRememberedEndSignal() {
  return remembered.exchange(false);
}

EndSignalBlock::EndSignalBlock() {
  sigset_t set;
  sigemptyset(&set);
  for (const int number : kEndSignals) {
    sigaddset(&set, number);
  }
  pthread_sigmask(SIG_BLOCK, &set, &m_Before);
}

EndSignalBlock::~EndSignalBlock() {
  pthread_sigmask(SIG_SETMASK, &m_Before, nullptr);
}

}  // namespace orvex::host
