// Owners of libpipewire's loops.
#include "pipewire/client/loops.h"

#include <pipewire/pipewire.h>
#include <signal.h>

#include <cerrno>
#include <utility>

#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {

Library::Library() {
  pw_init(nullptr, nullptr);
}

Library::~Library() {
  pw_deinit();
}

MainLoop::MainLoop(std::function<void()> onEndSignal)
    : m_OnEndSignal(std::move(onEndSignal)), m_Loop(pw_main_loop_new(nullptr)) {
  if (m_Loop == nullptr) {
    throw PipeWireError("no main loop", errno);
  }
  const auto call = [](void* self, int /*number*/) { static_cast<MainLoop*>(self)->m_OnEndSignal(); };
  for (const int number : {SIGTERM, SIGINT}) {
    if (pw_loop_add_signal(Get(), number, call, this) == nullptr) {
      const int error = errno;
      pw_main_loop_destroy(m_Loop);
      throw PipeWireError("no handler of signal " + std::to_string(number), error);
    }
  }
}

MainLoop::~MainLoop() {
  pw_main_loop_destroy(m_Loop);
}

pw_loop* MainLoop::Get() const {
  return pw_main_loop_get_loop(m_Loop);
}

void MainLoop::Run() {
  pw_main_loop_run(m_Loop);
}

void MainLoop::Quit() {
  pw_main_loop_quit(m_Loop);
}

ThreadLoop::ThreadLoop(const std::string& threadName) : m_Loop(pw_thread_loop_new(threadName.c_str(), nullptr)) {
  if (m_Loop == nullptr) {
    throw PipeWireError("no loop", errno);
  }
  if (const int result = pw_thread_loop_start(m_Loop); result < 0) {
    pw_thread_loop_destroy(m_Loop);
    throw PipeWireError("no thread", -result);
  }
}

ThreadLoop::~ThreadLoop() {
  pw_thread_loop_destroy(m_Loop);
}

pw_loop* ThreadLoop::Get() const {
  return pw_thread_loop_get_loop(m_Loop);
}

void ThreadLoop::Stop() {
  pw_thread_loop_stop(m_Loop);
}

ThreadLoop::Lock::Lock(const ThreadLoop& loop) : m_Loop(loop.m_Loop) {
  pw_thread_loop_lock(m_Loop);
}

ThreadLoop::Lock::~Lock() {
  pw_thread_loop_unlock(m_Loop);
}

bool ThreadLoop::WaitUntil(const std::function<bool()>& isReached, std::chrono::milliseconds patience) {
  timespec deadline{};
  pw_thread_loop_get_time(m_Loop, &deadline, std::chrono::nanoseconds(patience).count());
  while (!isReached()) {
    if (pw_thread_loop_timed_wait_full(m_Loop, &deadline) == -ETIMEDOUT) {
      return isReached();
    }
  }
  return true;
}

void ThreadLoop::Notify() {
  pw_thread_loop_signal(m_Loop, false);
}

}  // namespace orvex::pipewire
