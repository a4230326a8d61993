// Blocks the signals and reads them from a signalfd.
#include "linux/end_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <iterator>

namespace orvex::port {
namespace {

constexpr int kEndSignals[] = {SIGTERM, SIGINT, SIGHUP, SIGQUIT};

int holds = 0;
sigset_t held{};        // those of them that are not ignored
sigset_t maskBefore{};  // as it was found, like the next ones
std::array<struct sigaction, std::size(kEndSignals)> actionsBefore{};
struct sigaction pipeActionBefore {};
bool cameEarly = false;

bool IsIgnored(const struct sigaction& action) {
  return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN;
}

void Ignore(int number) {
  struct sigaction action {};
  action.sa_handler = SIG_IGN;
  sigaction(number, &action, nullptr);
}

bool TakePending() {
  const timespec now{};
  bool hasTaken = false;
  while (sigtimedwait(&held, nullptr, &now) > 0) {
    hasTaken = true;
  }
  return hasTaken;
}

}  // namespace

void HoldEndSignals() {
  if (holds++ > 0) {
    return;
  }
  sigemptyset(&held);
  for (std::size_t i = 0; i < std::size(kEndSignals); ++i) {
    sigaction(kEndSignals[i], nullptr, &actionsBefore[i]);
    if (!IsIgnored(actionsBefore[i])) {
      sigaddset(&held, kEndSignals[i]);
    }
  }
  pthread_sigmask(SIG_BLOCK, &held, &maskBefore);
  sigaction(SIGPIPE, nullptr, &pipeActionBefore);
  Ignore(SIGPIPE);
}

void ReleaseEndSignals() {
  if (--holds > 0) {
    return;
  }
  TakePending();
  cameEarly = false;
  for (std::size_t i = 0; i < std::size(kEndSignals); ++i) {
    sigaction(kEndSignals[i], &actionsBefore[i], nullptr);
  }
  sigaction(SIGPIPE, &pipeActionBefore, nullptr);
  pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

EndSignalKeeper::EndSignalKeeper() : m_StandardInput(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
  cameEarly = TakePending() || cameEarly;
  if (m_StandardInput < 0) {
    // So that the pipe's own ends do not get its number.
    static_cast<void>(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  }
  if (::pipe2(m_Pipe, O_NONBLOCK | O_CLOEXEC) == 0) {
    ::dup2(m_Pipe[1], STDIN_FILENO);
  }
}

EndSignalKeeper::~EndSignalKeeper() {
  pthread_sigmask(SIG_BLOCK, &held, nullptr);
  for (std::size_t i = 0; holds > 0 && i < std::size(kEndSignals); ++i) {
    if (IsIgnored(actionsBefore[i])) {
      Ignore(kEndSignals[i]);
    }
  }
  if (m_Pipe[0] < 0) {
    return;
  }
  if (m_StandardInput >= 0) {
    ::dup2(m_StandardInput, STDIN_FILENO);
    ::close(m_StandardInput);
  } else {
    ::close(STDIN_FILENO);
  }
  // The handler writes the number of the signal first, and more than fits in one int.
  struct {
    int number;
    char rest[sizeof(siginfo_t) + alignof(siginfo_t) - sizeof(int)];
  } record{};
  while (::read(m_Pipe[0], &record, sizeof record) > 0) {
    cameEarly = cameEarly || sigismember(&held, record.number) == 1;
  }
  ::close(m_Pipe[0]);
  ::close(m_Pipe[1]);
}

bool EndSignalWatch::Begin(Callback onSignal) {
  m_OnSignal = onSignal;
  m_Fd = ::signalfd(-1, &held, SFD_NONBLOCK | SFD_CLOEXEC);
  if (m_Fd < 0) {
    return false;
  }
  m_Handler = ecore_main_fd_handler_add(m_Fd, ECORE_FD_READ, &OnReadable, this, nullptr, nullptr);
  // What came between Ecore's pipes and the end of ecore_init().
  m_EcoreHandlers[0] = ecore_event_handler_add(ECORE_EVENT_SIGNAL_EXIT, &OnEcoreEvent, this);
  m_EcoreHandlers[1] = ecore_event_handler_add(ECORE_EVENT_SIGNAL_HUP, &OnEcoreEvent, this);
  const bool hasBegun = m_Handler != nullptr && m_EcoreHandlers[0] != nullptr && m_EcoreHandlers[1] != nullptr;
  if (hasBegun && cameEarly) {
    cameEarly = false;
    m_OnSignal();
  }
  return hasBegun;
}

void EndSignalWatch::End() {
  for (Ecore_Event_Handler*& handler : m_EcoreHandlers) {
    if (handler != nullptr) {
      ecore_event_handler_del(handler);
      handler = nullptr;
    }
  }
  if (m_Handler != nullptr) {
    ecore_main_fd_handler_del(m_Handler);
    m_Handler = nullptr;
  }
  if (m_Fd >= 0) {
    ::close(m_Fd);
    m_Fd = -1;
  }
}

Eina_Bool EndSignalWatch::OnReadable(void* watch, Ecore_Fd_Handler* /*handler*/) {
  const auto& self = *static_cast<EndSignalWatch*>(watch);
  signalfd_siginfo signal{};
  while (::read(self.m_Fd, &signal, sizeof signal) > 0) {
    self.m_OnSignal();
  }
  return ECORE_CALLBACK_RENEW;
}

Eina_Bool EndSignalWatch::OnEcoreEvent(void* watch, int /*type*/, void* /*event*/) {
  static_cast<EndSignalWatch*>(watch)->m_OnSignal();
  return ECORE_CALLBACK_DONE;
}

}  // namespace orvex::port
