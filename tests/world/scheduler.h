// Virtual time: a queue of things to do, and threads that take turns, so that a run is the same every time.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvex::world {

using Time = std::chrono::nanoseconds;

// Work of the main loop waits while the main loop is blocked; the rest of the world goes on.
enum class Lane { kMainLoop, kElsewhere };

// A thread of the simulated process. It is a real thread, but runs only when the scheduler hands it the turn.
struct VirtualThread {
  std::string name;
  std::function<void()> body;
  bool hasTurn = false;
  bool finished = false;
  bool isHeld = false;                      // it gave way, and has not gone on yet
  std::deque<std::function<void()>> tasks;  // of a thread that RunOn() made
  bool isBusy = false;                      // with one of them
  std::condition_variable wake;
  std::thread thread;
};

// One at a time runs: the main thread (the test's) or one virtual thread. Time moves only between two items of the
// queue.
class Scheduler {
public:
  using Id = std::pair<Time, std::uint64_t>;

  Scheduler();
  // Threads that still wait are unwound.
  ~Scheduler();
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  // Is the calling thread one of a scheduler's? Others, such as a watcher of the test program, live in real time.
  static bool RunsThisThread();

  Time Now() const { return m_Now; }
  // Name of the thread that runs: "main", or what Spawn() or RunAs() was told.
  const std::string& CurrentThread() const { return m_CurrentThread; }

  // From now on the main loop comes so much late to whatever is put into its lane.
  void MakeMainLoopLate(Time lateness) { m_MainLoopLateness = lateness; }

  // Puts an item into the queue; items due at the same time run in the order in which they were put. `thread`: whose
  // turn it is when the item is not the main loop's.
  Id At(Time when, Lane lane, std::function<void()> action, const std::string& thread = {});
  void Cancel(Id id) { m_Items.erase(id); }

  // Runs what is due until `until`, on the main thread; stops early when `stop` says so after an item.
  void RunUntil(Time until, const std::function<bool()>& stop);
  // Runs `action` under another thread's name, on the thread that calls.
  void RunAs(const std::string& name, const std::function<void()>& action);
  // Runs `action` on a virtual thread of this name, behind what that thread is still busy with; returns when the thread
  // waits, gives way or has nothing left to do. Called on a virtual thread, as RunAs().
  void RunOn(const std::string& name, std::function<void()> action);

  // Names of the threads that could take a turn within `longest`, were the running one held back; "main" among them.
  std::vector<std::string> OthersWithWork(Time longest) const;
  // The running thread is held back until thread `name` has taken its next turn, or waits, for at most `longest`.
  // False: that thread could take no turn, and nothing has happened.
  bool GiveWayTo(const std::string& name, Time longest);

  // The running thread waits until the time has come, or `ready` says so.
  void Sleep(Time duration);
  // The main thread waits for a virtual thread's end.
  void Join(const VirtualThread* thread);

  // A new thread, which begins when the running one waits.
  VirtualThread* Spawn(const std::string& name, std::function<void()> body);
  // Ends a thread that waits, as if its process had ended. Main thread only.
  void UnwindAll();

private:
  struct Item {
    Lane lane;
    std::string thread;
    std::function<void()> action;
  };
  // A thread that is held back until another one has taken a turn.
  struct Held {
    VirtualThread* thread;
    std::string until;
    Id deadline;
  };
  struct Unwinding {};

  bool RunNext(Time until, bool mainLoopIsFree);
  void RunBlocked(Time until, const std::function<bool()>& ready);
  void BlockMain(Time until, const std::function<bool()>& ready);
  bool CanTakeTurn(const std::string& name, Time until) const;
  void HoldMain(const std::string& name, Time until);
  void Hold(VirtualThread& thread, const std::string& name, Time until);
  // A thread has done an item, or waits: those that gave way to it go on.
  void EndTurn(const std::string& name);
  void Release(const std::function<bool(const Held& held)>& which);
  void DoTasks(VirtualThread& thread);
  VirtualThread* Make(const std::string& name, std::function<void()> body);
  void HandTurnTo(VirtualThread& thread);
  void ReturnTurn(VirtualThread& thread);
  void RunThread(VirtualThread& thread);

  std::map<Id, Item> m_Items;
  std::uint64_t m_NextNumber = 0;
  Time m_Now{0};
  Time m_MainLoopLateness{0};
  std::string m_CurrentThread = "main";
  VirtualThread* m_Running = nullptr;  // null: the main thread
  bool m_Unwinding = false;
  std::mutex m_Turn;
  std::condition_variable m_MainWake;
  bool m_MainHasTurn = true;
  std::vector<std::unique_ptr<VirtualThread>> m_Threads;
  std::map<std::string, VirtualThread*> m_TaskThreads;
  std::map<std::string, int> m_Turns;  // taken, by name of the thread
  std::vector<Held> m_Held;
  bool m_MainIsBlocked = false;
  bool m_MainIsHeld = false;
  bool m_MainIsWanted = false;  // another thread gives way to the main thread, which is held
};

}  // namespace orvex::world
