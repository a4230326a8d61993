// Virtual time and threads that take turns.
#include "world/scheduler.h"

#include <algorithm>

namespace orvex::world {

namespace {

thread_local bool takesTurns = false;

constexpr char kMain[] = "main";

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

Scheduler::Id Scheduler::At(Time when, Lane lane, std::function<void()> action, const std::string& thread) {
  const Time lateness = lane == Lane::kMainLoop ? m_MainLoopLateness : Time(0);
  const Id id{std::max(when, m_Now) + lateness, m_NextNumber++};
  m_Items.emplace(id, Item{lane, lane == Lane::kMainLoop ? kMain : thread, std::move(action)});
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
  const bool isMainLoop = next->second.lane == Lane::kMainLoop;
  const std::function<void()> action = std::move(next->second.action);
  m_Items.erase(next);
  action();
  if (isMainLoop) {
    EndTurn(kMain);
  }
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

// The main thread waits; the threads that gave way to it go on.
void Scheduler::BlockMain(Time until, const std::function<bool()>& ready) {
  EndTurn(kMain);
  const bool before = std::exchange(m_MainIsBlocked, true);
  RunBlocked(until, ready);
  m_MainIsBlocked = before;
}

void Scheduler::Sleep(Time duration) {
  const Time until = m_Now + duration;
  if (m_Running == nullptr) {
    BlockMain(until, [] { return false; });
    return;
  }
  VirtualThread& self = *m_Running;
  At(
      until, Lane::kElsewhere, [this, &self] { HandTurnTo(self); }, self.name);
  ReturnTurn(self);
}

void Scheduler::Join(const VirtualThread* thread) {
  BlockMain(Time::max(), [thread] { return thread->finished; });
}

VirtualThread* Scheduler::Make(const std::string& name, std::function<void()> body) {
  m_Threads.push_back(std::make_unique<VirtualThread>());
  VirtualThread& made = *m_Threads.back();
  made.name = name;
  made.body = std::move(body);
  made.thread = std::thread([this, &made] { RunThread(made); });
  return &made;
}

VirtualThread* Scheduler::Spawn(const std::string& name, std::function<void()> body) {
  VirtualThread* const created = Make(name, std::move(body));
  At(
      m_Now, Lane::kElsewhere, [this, created] { HandTurnTo(*created); }, name);
  return created;
}

void Scheduler::RunOn(const std::string& name, std::function<void()> action) {
  if (m_Running != nullptr) {
    RunAs(name, action);
    return;
  }
  VirtualThread*& thread = m_TaskThreads[name];
  if (thread == nullptr) {
    thread = Make(name, [this, &thread] { DoTasks(*thread); });
  }
  thread->tasks.push_back(std::move(action));
  if (!thread->isBusy) {
    HandTurnTo(*thread);
  }
}

void Scheduler::DoTasks(VirtualThread& thread) {
  for (;;) {
    thread.isBusy = true;
    while (!thread.tasks.empty()) {
      const std::function<void()> task = std::move(thread.tasks.front());
      thread.tasks.pop_front();
      task();
    }
    thread.isBusy = false;
    ReturnTurn(thread);
  }
}

bool Scheduler::CanTakeTurn(const std::string& name, Time until) const {
  if (name == kMain && m_MainIsHeld) {
    return true;
  }
  return !(name == kMain && m_MainIsBlocked) &&
         std::any_of(m_Items.begin(), m_Items.lower_bound({until, 0}),
                     [&](const auto& entry) { return entry.second.thread == name; });
}

std::vector<std::string> Scheduler::OthersWithWork(Time longest) const {
  std::vector<std::string> others;
  for (const char* const name : {kMain, "recorder", "delivery", "worker"}) {
    if (name != m_CurrentThread && CanTakeTurn(name, m_Now + longest)) {
      others.emplace_back(name);
    }
  }
  return others;
}

bool Scheduler::GiveWayTo(const std::string& name, Time longest) {
  const Time until = m_Now + longest;
  if (name == m_CurrentThread || !CanTakeTurn(name, until)) {
    return false;
  }
  if (m_Running == nullptr) {
    HoldMain(name, until);
  } else {
    Hold(*m_Running, name, until);
  }
  return true;
}

void Scheduler::HoldMain(const std::string& name, Time until) {
  const int turns = m_Turns[name];
  const bool before = std::exchange(m_MainIsHeld, true);
  m_MainIsWanted = false;
  RunBlocked(until, [&] { return m_MainIsWanted || m_Turns[name] != turns; });
  m_MainIsWanted = false;
  m_MainIsHeld = before;
}

void Scheduler::Hold(VirtualThread& thread, const std::string& name, Time until) {
  m_MainIsWanted = name == kMain && m_MainIsHeld;
  const Id deadline = At(until, Lane::kElsewhere,
                         [this, &thread] { Release([&](const Held& held) { return held.thread == &thread; }); });
  m_Held.push_back({&thread, name, deadline});
  thread.isHeld = true;
  ReturnTurn(thread);
}

void Scheduler::EndTurn(const std::string& name) {
  ++m_Turns[name];
  Release([&](const Held& held) { return held.until == name; });
}

void Scheduler::Release(const std::function<bool(const Held& held)>& which) {
  for (const Held& held : m_Held) {
    if (which(held)) {
      Cancel(held.deadline);
      VirtualThread* const thread = held.thread;
      At(
          m_Now, Lane::kElsewhere, [this, thread] { HandTurnTo(*thread); }, thread->name);
    }
  }
  m_Held.erase(std::remove_if(m_Held.begin(), m_Held.end(), which), m_Held.end());
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
  thread.isHeld = false;
  RunAs(thread.name, [&] {
    std::unique_lock<std::mutex> lock(m_Turn);
    m_MainHasTurn = false;
    thread.hasTurn = true;
    thread.wake.notify_one();
    m_MainWake.wait(lock, [this] { return m_MainHasTurn; });
  });
  m_Running = nullptr;
  if (!thread.isHeld) {
    EndTurn(thread.name);
  }
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
  m_TaskThreads.clear();
  m_Held.clear();
  m_Items.clear();
  m_Unwinding = false;
}

}  // namespace orvex::world
