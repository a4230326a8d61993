// Ecore's timers and pool workers in virtual time.
#include <Ecore.h>

#include <set>

#include "world.h"

using orvex::world::Lane;
using orvex::world::Scheduler;
using orvex::world::Time;
using orvex::world::World;

namespace {

struct Timer;

// Timers that run.
std::set<Timer*>& Timers() {
  static std::set<Timer*> timers;
  return timers;
}

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
    Timers().erase(this);
    delete this;
  }
};

struct Worker {
  Ecore_Thread_Cb body;
  Ecore_Thread_Cb end;
  Ecore_Thread_Cb cancel;
  const void* data;
  bool cancelled = false;
};

Ecore_Thread* Handle(Worker* worker) {
  return reinterpret_cast<Ecore_Thread*>(worker);
}

// Workers that have not yet run their end or cancel function.
std::set<Worker*>& Alive() {
  static std::set<Worker*> alive;
  return alive;
}

void Finish(Worker* worker) {
  Alive().erase(worker);
  const Ecore_Thread_Cb last = worker->cancelled ? worker->cancel : worker->end;
  last(const_cast<void*>(worker->data), Handle(worker));
  --World::Current().runningWorkers;
  delete worker;
}

}  // namespace

Ecore_Timer* ecore_timer_add(double in, Ecore_Task_Cb func, const void* data) {
  World& world = World::Current();
  world.Call("ecore_timer_add(" + std::to_string(in) + ")");
  if (world.answers.Take("ecore_timer_add").has_value()) {
    return nullptr;
  }
  auto* timer = new Timer{Time(static_cast<std::int64_t>(in * 1e9)), func, data, {}};
  ++world.openTimers;
  Timers().insert(timer);
  timer->Arm(timer->interval);
  return reinterpret_cast<Ecore_Timer*>(timer);
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
  for (Timer* timer : Timers()) {
    scheduler.Cancel(timer->next);
    timer->Arm(Time(0));
  }
}

Ecore_Thread* ecore_thread_run(Ecore_Thread_Cb funcBlocking, Ecore_Thread_Cb funcEnd, Ecore_Thread_Cb funcCancel,
                               const void* data) {
  World& world = World::Current();
  world.Call("ecore_thread_run()");
  if (world.answers.Take("ecore_thread_run").has_value()) {
    return nullptr;
  }
  auto* worker = new Worker{funcBlocking, funcEnd, funcCancel, data};
  Alive().insert(worker);
  world.poolJobs.push_back({funcBlocking, funcEnd, funcCancel});
  ++world.runningWorkers;
  static_cast<void>(world.scheduler.Spawn("worker", [worker] {
    worker->body(const_cast<void*>(worker->data), Handle(worker));
    Scheduler& scheduler = World::Current().scheduler;
    scheduler.At(scheduler.Now(), Lane::kMainLoop, [worker] { Finish(worker); });
  }));
  return Handle(worker);
}

// A worker that has ended is cancelled without effect.
Eina_Bool ecore_thread_cancel(Ecore_Thread* thread) {
  World::Current().Call("ecore_thread_cancel()");
  auto* worker = reinterpret_cast<Worker*>(thread);
  if (Alive().count(worker) == 0) {
    return EINA_TRUE;
  }
  worker->cancelled = true;
  return EINA_FALSE;
}
