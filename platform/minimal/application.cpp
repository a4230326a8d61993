// The application framework on Ecore: one application's life, its events and its alarms. No message ever comes.
#include "orvex/platform/application.h"

#include <Ecore.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <new>
#include <optional>
#include <string>

#include "linux/ecore_start.h"
#include "linux/end_signals.h"

namespace {

// What a worker of the pool may still take after the destroy step.
constexpr std::chrono::seconds kWorkerLimit{6};
constexpr useconds_t kLookEveryUs = 1000;

// Events on their way to the main loop. Open from the main loop's start to the request of its end.
class EventQueue {
public:
  // Counts the events, so that Ecore calls once for each. -1: the system has no more file descriptors.
  int GetDescriptor() const { return m_Fd; }

  void Open() {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_IsOpen = true;
  }
  void Close() {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_IsOpen = false;
    m_Events.clear();
  }
  bool IsOpen() {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    return m_IsOpen;
  }

  bool Put(const FwEvent& event) {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    if (!m_IsOpen) {
      return false;
    }
    try {
      m_Events.push_back(event);
    } catch (const std::bad_alloc&) {
      return false;
    }
    return eventfd_write(m_Fd, 1) == 0;
  }
  std::optional<FwEvent> Take() {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    eventfd_t one = 0;
    if (eventfd_read(m_Fd, &one) != 0 || m_Events.empty()) {
      return std::nullopt;
    }
    const FwEvent event = m_Events.front();
    m_Events.pop_front();
    return event;
  }

private:
  const int m_Fd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC | EFD_SEMAPHORE);
  std::mutex m_Mutex;
  // Guarded by the mutex.
  std::deque<FwEvent> m_Events;
  bool m_IsOpen = false;
};

EventQueue& Queue() {
  // Never destroyed: threads may send until the process is gone.
  static auto& queue = *new EventQueue;
  return queue;
}

Eina_Bool DeliverOne(void* /*data*/, Ecore_Fd_Handler* /*handler*/) {
  if (std::optional<FwEvent> event = Queue().Take()) {
    event->GetReceiver()->GetApplication().t_OnEvent(&*event);
  }
  return ECORE_CALLBACK_RENEW;
}

bool WatchEvents() {
  const int fd = Queue().GetDescriptor();
  return fd >= 0 && ecore_main_fd_handler_add(fd, ECORE_FD_READ, &DeliverOne, nullptr, nullptr, nullptr) != nullptr;
}

constexpr char kNoDescriptors[] = "Ecore cannot watch file descriptors";

// Ecore from AppMain() to the process's end, since an alarm may outlive AppMain().
class Ecore {
public:
  Ecore() : m_Problem(orvex::port::BeginEcore()) {
    m_HasBegun = m_Problem.empty();
    if (m_HasBegun && !WatchEvents()) {
      m_Problem = kNoDescriptors;
    }
  }
  ~Ecore() {
    if (m_HasBegun) {
      ecore_shutdown();
    }
  }
  Ecore(const Ecore&) = delete;
  Ecore& operator=(const Ecore&) = delete;

  // Why there is no main loop; empty when there is one.
  const std::string& Problem() const { return m_Problem; }

private:
  bool m_HasBegun = false;
  std::string m_Problem;
};

bool HasWorkers() {
  return ecore_thread_active_get() > 0 || ecore_thread_pending_total_get() > 0;
}

// False: a worker still runs at the end of the limit.
bool LetWorkersFinish() {
  const auto deadline = std::chrono::steady_clock::now() + kWorkerLimit;
  while (HasWorkers()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    usleep(kLookEveryUs);
    ecore_main_loop_iterate();
  }
  // The end function of a worker that is gone waits in the main loop, as may a late signal.
  ecore_main_loop_iterate();
  return true;
}

}  // namespace

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

bool FwEventIO::t_OnEvent(FwEvent* /*event*/) {
  return false;
}

bool SendEvent(const FwEvent& event) {
  return event.GetReceiver() == nullptr || Queue().Put(event);
}

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  static const Ecore ecore;
  std::string problem = application == nullptr ? "expected an application" : ecore.Problem();
  orvex::port::EndSignalWatch signals;
  Queue().Open();
  if (problem.empty() && !signals.Begin(&ui_app_exit)) {
    problem = kNoDescriptors;
  }
  if (!problem.empty()) {
    std::fprintf(stderr, "orvex-minimal: the main loop cannot run: %s\n", problem.c_str());
    return EXIT_FAILURE;
  }
  if (!application->t_OnCreate()) {
    ui_app_exit();
  }
  while (Queue().IsOpen()) {
    ecore_main_loop_iterate_may_block(1);
  }
  application->t_OnDestroy();
  if (!LetWorkersFinish()) {
    // Without destructors, which that worker may still need things of.
    std::fflush(nullptr);
    std::_Exit(EXIT_SUCCESS);
  }
  return EXIT_SUCCESS;
}

void ui_app_exit() {
  Queue().Close();
}

struct FwAlarm::Port {
  Ecore_Timer* timer = nullptr;
  int callsLeft = 0;
  Callback callback = nullptr;
  void* userData = nullptr;

  static Eina_Bool OnPeriod(void* data) {
    Port& port = *static_cast<Port*>(data);
    Ecore_Timer* const timer = port.timer;
    const bool isLast = port.callsLeft != kRepeatForever && --port.callsLeft == 0;
    if (isLast) {
      port.timer = nullptr;
    }
    if (port.callback != nullptr && Queue().IsOpen()) {
      port.callback(port.userData);
    }
    // The callback may have ended the alarm, or started it anew.
    return !isLast && port.timer == timer ? ECORE_CALLBACK_RENEW : ECORE_CALLBACK_CANCEL;
  }
};

FwAlarm::FwAlarm() : m_Port(std::make_unique<Port>()) {}

FwAlarm::~FwAlarm() {
  Destroy();
}

bool FwAlarm::Create(FwEventIO* /*eventInput*/, std::uint32_t periodMs, int repeatCount) {
  constexpr double kMsPerSecond = 1000.0;
  if (IsActive() || periodMs == 0 || (repeatCount < 1 && repeatCount != kRepeatForever)) {
    return false;
  }
  m_Port->callsLeft = repeatCount;
  m_Port->timer = ecore_timer_add(periodMs / kMsPerSecond, &Port::OnPeriod, m_Port.get());
  return IsActive();
}

void FwAlarm::SetAlarmCallback(Callback callback, void* userData) {
  m_Port->callback = callback;
  m_Port->userData = userData;
}

void FwAlarm::Destroy() {
  if (IsActive()) {
    ecore_timer_del(m_Port->timer);
    m_Port->timer = nullptr;
  }
}

bool FwAlarm::IsActive() const {
  return m_Port->timer != nullptr;
}
