// libpipewire's two kinds of loops: one that a program runs itself, and one with a thread of its own.
#pragma once

#include <chrono>
#include <functional>
#include <string>

struct pw_loop;
struct pw_main_loop;
struct pw_thread_loop;

namespace orvex::pipewire {

// libpipewire is in use. Counted: every loop holds one, and so it is first to come and last to go.
class Library {
public:
  Library();
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
};

// For a program that does nothing else. Everything happens on the thread that calls Run().
class MainLoop {
public:
  // To be made before the program has another thread, as a connection does: SIGTERM and SIGINT are kept from all
  // threads and call `onEndSignal` on this loop.
  explicit MainLoop(std::function<void()> onEndSignal);
  ~MainLoop();
  MainLoop(const MainLoop&) = delete;
  MainLoop& operator=(const MainLoop&) = delete;

  pw_loop* Get() const;
  // Returns after Quit(), which is called from a callback.
  void Run();
  void Quit();

private:
  Library m_Library;
  const std::function<void()> m_OnEndSignal;
  pw_main_loop* m_Loop;
};

// For a program whose own loop is another one. Callbacks come on the loop's thread, with the lock held.
class ThreadLoop {
public:
  explicit ThreadLoop(const std::string& threadName);
  // Ends the thread. What lives on the loop must be gone before; see Stop().
  ~ThreadLoop();
  ThreadLoop(const ThreadLoop&) = delete;
  ThreadLoop& operator=(const ThreadLoop&) = delete;

  pw_loop* Get() const;
  // To be called without the lock. No callback comes after it.
  void Stop();

  // Holds the loop's thread back. Everything that belongs to the loop is used, made and destroyed with the lock held,
  // unless in a callback. Recursive.
  class Lock {
  public:
    explicit Lock(const ThreadLoop& loop);
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

  private:
    pw_thread_loop* m_Loop;
  };

  // With the lock held, once and no more: lets the thread work until `isReached`, which is asked after each Notify().
  // False: not within `patience`.
  bool WaitUntil(const std::function<bool()>& isReached, std::chrono::milliseconds patience);
  // From a callback: something may have been reached.
  void Notify();

private:
  Library m_Library;
  pw_thread_loop* m_Loop;
};

}  // namespace orvex::pipewire
