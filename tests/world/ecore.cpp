// Ecore's timers and pool workers in virtual time.
#include <Ecore.h>

#include <memory>
#include <stdexcept>

#include "world/world.h"

using orvex::world::Lane;
using orvex::world::Scheduler;
using orvex::world::Time;
using orvex::world::World;

namespace {

// Owned by its world, from which it takes itself when it ends.
struct Timer {
  Time interval;
  Ecore_Task_Cb callback;
  const void* data;
  Scheduler::Id next;

  void Arm(Time after) {
    Scheduler& scheduler = World::Current().scheduler;
    next = scheduler.At(scheduler.Now() + after, Lane::kMainLoop, [this] {
      if (callback(const_cast<void*>(data)) != ECORE_CALLBACK_CANCEL) {
        Arm(interval);
      } else {
        Forget();
      }
    });
  }
  void Forget() {
    --World::Current().openTimers;
    World::Current().timers.erase(this);
  }
};

// Lives as long as its world, so that the handle of a finished worker is nobody else's.
struct Worker {
  Ecore_Thread_Cb body;
  Ecore_Thread_Cb end;
  Ecore_Thread_Cb cancel;
  const void* data;
  bool cancelled = false;
  bool finished = false;

  Ecore_Thread* Handle() { return reinterpret_cast<Ecore_Thread*>(this); }
  // A worker that was cancelled before its body began has none.
  void Run() {
    if (!cancelled) {
      body(const_cast<void*>(data), Handle());
    }
  }
  void Finish() {
    (cancelled ? cancel : end)(const_cast<void*>(data), Handle());
    finished = true;
    --World::Current().runningWorkers;
  }
};

}  // namespace

Ecore_Timer* ecore_timer_add(double in, Ecore_Task_Cb func, const void* data) {
  World& world = World::Current();
  world.Call("ecore_timer_add(" + std::to_string(in) + ")");
  if (world.answers.Take("ecore_timer_add").has_value()) {
    return nullptr;
  }
  const auto timer = std::make_shared<Timer>(Timer{Time(static_cast<std::int64_t>(in * 1e9)), func, data, {}});
  ++world.openTimers;
  world.timers.emplace(timer.get(), timer);
  timer->Arm(timer->interval);
  return reinterpret_cast<Ecore_Timer*>(timer.get());
}

void* ecore_timer_del(Ecore_Timer* timer) {
  World& world = World::Current();
  world.Call("ecore_timer_del()");
  auto* own = reinterpret_cast<Timer*>(timer);
  world.scheduler.Cancel(own->next);
  void* data = const_cast<void*>(own->data);
  own->Forget();
  return data;
}

void World::RingTimers() {
  for (const auto& entry : timers) {
    auto* timer = static_cast<Timer*>(entry.first);
    scheduler.Cancel(timer->next);
    timer->Arm(Time(0));
  }
}

Ecore_Thread* ecore_thread_run(Ecore_Thread_Cb funcBlocking, Ecore_Thread_Cb funcEnd, Ecore_Thread_Cb funcCancel,
                               const void* data) {
  World& world = World::Current();
  world.Call("ecore_thread_run()");
  // As a pool that gets no thread: it calls the cancel function before it returns.
  if (world.answers.Take("ecore_thread_run").has_value()) {
    funcCancel(const_cast<void*>(data), nullptr);
    return nullptr;
  }
  const auto worker = std::make_shared<Worker>(Worker{funcBlocking, funcEnd, funcCancel, data});
  world.poolJobs.push_back({funcBlocking, funcEnd, funcCancel});
  ++world.runningWorkers;
  static_cast<void>(world.scheduler.Spawn("worker", [worker] {
    worker->Run();
    Scheduler& scheduler = World::Current().scheduler;
    scheduler.At(scheduler.Now(), Lane::kMainLoop, [worker] { worker->Finish(); });
  }));
  return worker->Handle();
}

// A worker that runs is never cancelled at once, so the answer is "pending". The handle of one that has finished is not
// to be used any more: the pool has given it to another worker by then, or freed it.
Eina_Bool ecore_thread_cancel(Ecore_Thread* thread) {
  World::Current().Call(thread == nullptr ? "ecore_thread_cancel(null)" : "ecore_thread_cancel()");
  auto* worker = reinterpret_cast<Worker*>(thread);
  if (worker == nullptr) {
    return EINA_TRUE;
  }
  if (worker->finished) {
    throw std::logic_error("a finished worker is cancelled");
  }
  worker->cancelled = true;
  return EINA_FALSE;
}
