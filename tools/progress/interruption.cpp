// Notes signals.
#include "interruption.h"

#include <signal.h>

#include <atomic>

namespace orvex::tools {
namespace {

static_assert(std::atomic<bool>::is_always_lock_free);
std::atomic<bool> hasCome{false};

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

Interruption::Interruption() {
  hasCome = false;
  Handle(SIGINT, [](int) { hasCome = true; });
  Handle(SIGTERM, [](int) { hasCome = true; });
}

Interruption::~Interruption() {
  Handle(SIGINT, SIG_DFL);
  Handle(SIGTERM, SIG_DFL);
}

bool Interruption::HasCome() const {
  return hasCome;
}

}  // namespace orvex::tools
