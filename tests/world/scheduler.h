// Virtual time: a queue of things to do, and threads that take turns, so that a run is the same every time.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
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

  // Puts an item into the queue; items due at the same time run in the order in which they were put.
  Id At(Time when, Lane lane, std::function<void()> action);
  void Cancel(Id id) { m_Items.erase(id); }

  // Runs what is due until `until`, on the main thread; stops early when `stop` says so after an item.
  void RunUntil(Time until, const std::function<bool()>& stop);
  // Runs `action` under another thread's name, on the thread that calls.
  void RunAs(const std::string& name, const std::function<void()>& action);

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
    std::function<void()> action;
  };
  struct Unwinding {};

  bool RunNext(Time until, bool mainLoopIsFree);
  void RunBlocked(Time until, const std::function<bool()>& ready);
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
};

}  // namespace orvex::world
