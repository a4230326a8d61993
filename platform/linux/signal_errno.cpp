// Puts a handler of ours around Ecore's, which is one function for all signals.
#include "linux/signal_errno.h"

#include <atomic>
#include <cerrno>
#include <csignal>

namespace orvex::port {
namespace {

using Handler = void (*)(int, siginfo_t*, void*);

std::atomic<Handler> ecoreHandler{nullptr};
static_assert(std::atomic<Handler>::is_always_lock_free, "a signal handler must not wait");

void HandleKeepingErrno(int number, siginfo_t* info, void* context) {
  const int before = errno;
  ecoreHandler.load()(number, info, context);
  errno = before;
}

Handler HandlerOf(const struct sigaction& action) {
  return (action.sa_flags & SA_SIGINFO) != 0 ? action.sa_sigaction : nullptr;
}

}  // namespace

void KeepErrnoInEcoreHandlers() {
  struct sigaction action {};
  sigaction(SIGTERM, nullptr, &action);
  const Handler handler = HandlerOf(action);
  if (handler == nullptr || handler == &HandleKeepingErrno) {
    return;
  }
  ecoreHandler = handler;
  for (int number = 1; number < SIGRTMIN; ++number) {
    if (sigaction(number, nullptr, &action) == 0 && HandlerOf(action) == handler) {
      action.sa_sigaction = &HandleKeepingErrno;
      sigaction(number, &action, nullptr);
    }
  }
}

}  // namespace orvex::port
