// Virtual time and threads that take turns.
#include "scheduler.h"

#include <algorithm>

namespace orvex::world {

namespace {

thread_local bool takesTurns = false;

}  // namespace

Scheduler::Scheduler() {
  takesTurns = true;
}

Scheduler::~Scheduler() {
  UnwindAll();
  takesTurns = false;
}

bool Scheduler::RunsThisThread() {
  return takesTurns;
}

Scheduler::Id Scheduler::At(Time when, Lane lane, std::function<void()> action) {
  const Time lateness = lane == Lane::kMainLoop ? m_MainLoopLateness : Time(0);
  const Id id{std::max(when, m_Now) + lateness, m_NextNumber++};
  m_Items.emplace(id, Item{lane, std::move(action)});
  return id;
}

void Scheduler::RunUntil(Time until, const std::function<bool()>& stop) {
  while (RunNext(until, true)) {
    if (stop()) {
      return;
    }
  }
  m_Now = std::max(m_Now, until);
}

// Takes the first item that may run; false when none is due.
bool Scheduler::RunNext(Time until, bool mainLoopIsFree) {
  const auto next = std::find_if(m_Items.begin(), m_Items.end(), [&](const auto& entry) {
    return mainLoopIsFree || entry.second.lane == Lane::kElsewhere;
  });
  if (next == m_Items.end() || next->first.first > until) {
    return false;
  }
  m_Now = std::max(m_Now, next->first.first);
  const std::function<void()> action = std::move(next->second.action);
  m_Items.erase(next);
  action();
  return true;
}

void Scheduler::RunBlocked(Time until, const std::function<bool()>& ready) {
  while (!ready()) {
    if (!RunNext(until, false)) {
      m_Now = std::max(m_Now, until);
      return;
    }
  }
}

void Scheduler::RunAs(const std::string& name, const std::function<void()>& action) {
  const std::string before = std::exchange(m_CurrentThread, name);
  action();
  m_CurrentThread = before;
}

void Scheduler::Sleep(Time duration) {
  const Time until = m_Now + duration;
  if (m_Running == nullptr) {
    RunBlocked(until, [] { return false; });
    return;
  }
  VirtualThread& self = *m_Running;
  At(until, Lane::kElsewhere, [this, &self] { HandTurnTo(self); });
  ReturnTurn(self);
}

void Scheduler::Join(const VirtualThread* thread) {
  RunBlocked(Time::max(), [thread] { return thread->finished; });
}

VirtualThread* Scheduler::Spawn(const std::string& name, std::function<void()> body) {
  m_Threads.push_back(std::make_unique<VirtualThread>());
  VirtualThread& created = *m_Threads.back();
  created.name = name;
  created.body = std::move(body);
  created.thread = std::thread([this, &created] { RunThread(created); });
  At(m_Now, Lane::kElsewhere, [this, &created] { HandTurnTo(created); });
  return &created;
}

void Scheduler::RunThread(VirtualThread& thread) {
  takesTurns = true;
  {
    std::unique_lock<std::mutex> lock(m_Turn);
    thread.wake.wait(lock, [&thread] { return thread.hasTurn; });
  }
  if (!m_Unwinding) {
    try {
      thread.body();
    } catch (const Unwinding&) {
    }
  }
  const std::lock_guard<std::mutex> lock(m_Turn);
  thread.finished = true;
  thread.hasTurn = false;
  m_MainHasTurn = true;
  m_MainWake.notify_one();
}

void Scheduler::HandTurnTo(VirtualThread& thread) {
  if (thread.finished) {
    return;
  }
  m_Running = &thread;
  RunAs(thread.name, [&] {
    std::unique_lock<std::mutex> lock(m_Turn);
    m_MainHasTurn = false;
    thread.hasTurn = true;
    thread.wake.notify_one();
    m_MainWake.wait(lock, [this] { return m_MainHasTurn; });
  });
  m_Running = nullptr;
}

void Scheduler::ReturnTurn(VirtualThread& thread) {
  std::unique_lock<std::mutex> lock(m_Turn);
  thread.hasTurn = false;
  m_MainHasTurn = true;
  m_MainWake.notify_one();
  thread.wake.wait(lock, [&thread] { return thread.hasTurn; });
  if (m_Unwinding) {
    throw Unwinding{};
  }
}

void Scheduler::UnwindAll() {
  m_Unwinding = true;
  for (const auto& thread : m_Threads) {
    HandTurnTo(*thread);
    if (thread->thread.joinable()) {
      thread->thread.join();
    }
  }
  m_Threads.clear();
  m_Items.clear();
  m_Unwinding = false;
}

}  // namespace orvex::world
