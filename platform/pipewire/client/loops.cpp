// Owners of libpipewire's loops.
#include "pipewire/client/loops.h"

#include <pipewire/pipewire.h>

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

struct MainLoop::SignalAction {
  std::function<void()> act;
};

MainLoop::MainLoop() : m_Loop(pw_main_loop_new(nullptr)) {
  if (m_Loop == nullptr) {
    throw PipeWireError("no main loop", errno);
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

void MainLoop::OnSignal(int number, std::function<void()> act) {
  m_Signals.push_back(std::make_unique<SignalAction>(SignalAction{std::move(act)}));
  const auto call = [](void* action, int /*number*/) { static_cast<SignalAction*>(action)->act(); };
  if (pw_loop_add_signal(Get(), number, call, m_Signals.back().get()) == nullptr) {
    throw PipeWireError("no handler of signal " + std::to_string(number), errno);
  }
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
