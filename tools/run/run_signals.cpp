// A signalfd takes the signals; the mask of before is put back when the run is over.
#include "run/run_signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace orvex::tools {
namespace {

bool IsIgnored(int number) {
  struct sigaction action {};
  ::sigaction(number, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

// A signal that is held back comes even if it is ignored. That suits SIGINT and SIGQUIT, which shells ignore in every
// background job.
sigset_t SignalsToHold() {
  sigset_t held;
  sigemptyset(&held);
  for (const int number : {SIGINT, SIGQUIT, SIGTERM, SIGCHLD, SIGPIPE}) {
    sigaddset(&held, number);
  }
  if (!IsIgnored(SIGHUP)) {
    sigaddset(&held, SIGHUP);
  }
  return held;
}

}  // namespace

RunSignals::RunSignals() {
  const sigset_t held = SignalsToHold();
  m_Fd.Reset(::signalfd(-1, &held, SFD_CLOEXEC | SFD_NONBLOCK));
  if (m_Fd.Get() < 0) {
    throw std::system_error(errno, std::generic_category(), "signalfd");
  }
  ::pthread_sigmask(SIG_BLOCK, &held, &m_MaskBefore);
}

RunSignals::~RunSignals() {
  static_cast<void>(Interruption());
  ::pthread_sigmask(SIG_SETMASK, &m_MaskBefore, nullptr);
}

int RunSignals::Next() {
  signalfd_siginfo info{};
  while (::read(m_Fd.Get(), &info, sizeof info) == sizeof info) {
    const int number = static_cast<int>(info.ssi_signo);
    if (number == SIGPIPE) {
      continue;  // the write that failed tells more
    }
    if (number != SIGCHLD && m_Interruption == 0) {
      m_Interruption = number;
    }
    return number;
  }
  return 0;
}

int RunSignals::Interruption() {
  while (Next() != 0) {
    // What has come is taken note of.
  }
  return m_Interruption;
}

}  // namespace orvex::tools
