// A signal to the thread, whose handler sleeps.
#include "pipewire/late_cycles.h"

#include <signal.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>

namespace orvex::integration {
namespace {

namespace fs = std::filesystem;

constexpr int kSignal = SIGUSR2;
// Two cycles of the usual length and some, and as long in order.
constexpr long kHeldUpNs = 50'000'000;
constexpr std::chrono::milliseconds kInOrder{100};

void HoldUp(int /*number*/) {
  const int errnoBefore = errno;
  const timespec duration{0, kHeldUpNs};
  ::nanosleep(&duration, nullptr);
  errno = errnoBefore;
}

}  // namespace

LateCycles::LateCycles() {
  struct sigaction action {};
  action.sa_handler = HoldUp;
  action.sa_flags = SA_RESTART;
  ::sigaction(kSignal, &action, nullptr);
  m_Thread = std::thread(&LateCycles::Run, this);
}

LateCycles::~LateCycles() {
  m_IsEnding = true;
  m_Thread.join();
}

// A thread may end between its listing and the signal, which then reaches nobody.
void LateCycles::Run() const {
  while (!m_IsEnding) {
    std::this_thread::sleep_for(kInOrder);
    std::error_code error;
    for (fs::directory_iterator task("/proc/self/task", error), end; task != end; task.increment(error)) {
      const pid_t thread = std::stoi(task->path().filename());
      if (thread != ::getpid() && thread != ::gettid()) {
        ::syscall(SYS_tgkill, ::getpid(), thread, kSignal);
      }
    }
  }
}

}  // namespace orvex::integration
