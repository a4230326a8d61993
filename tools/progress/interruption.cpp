// Notes signals.
#include "progress/interruption.h"

#include <signal.h>

#include <atomic>

namespace orvex::tools {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

static_assert(std::atomic<bool>::is_always_lock_free);
std::atomic<bool> hasCome{false};

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  ::sigaction(signal, nullptr, &action);
  if (action.sa_handler == SIG_IGN) {
    return;
  }
  action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

Interruption::Interruption() {
  hasCome = false;
  for (const int signal : kSignals) {
    Handle(signal, [](int) { hasCome = true; });
  }
}

Interruption::~Interruption() {
  for (const int signal : kSignals) {
    Handle(signal, SIG_DFL);
  }
}

bool Interruption::HasCome() const {
  return hasCome;
}

}  // namespace orvex::tools
