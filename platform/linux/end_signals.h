// The signals that end a run in order: SIGTERM, SIGINT, SIGHUP and SIGQUIT. They are held back from every thread, and
// the main loop reads them.
#pragma once

#include <Ecore.h>

namespace orvex::port {

// From now on the calling thread, and threads that it starts, are not interrupted by the signals; those that come wait.
// One that the process was started to ignore, as nohup does, stays ignored. A closed pipe at stdout or stderr no longer
// ends the process either. Calls are counted.
void HoldEndSignals();
// Takes one HoldEndSignals() back. With the last one the signals have their usual effect again, and those that came are
// forgotten.
void ReleaseEndSignals();

// Keeps the signals while an object lives around ecore_init(), which lets them through before its own handler can store
// one.
//
// Ecore sets its handler, unblocks the signals and only then makes the pipes that the handler writes to. Until then
// their descriptors are 0: what comes in this moment is written to stdin. A pipe of ours stands there meanwhile. That
// is so in the first ecore_init() of a process; in a later one a signal in this moment is lost.
class EndSignalKeeper {
public:
  EndSignalKeeper();
  ~EndSignalKeeper();
  EndSignalKeeper(const EndSignalKeeper&) = delete;
  EndSignalKeeper& operator=(const EndSignalKeeper&) = delete;

private:
  int m_StandardInput;  // -1: there was none
  int m_Pipe[2] = {-1, -1};
};

// Tells the main loop of the signals, also of one that came before. Main loop only.
class EndSignalWatch {
public:
  using Callback = void (*)();

  ~EndSignalWatch() { End(); }

  // `onSignal` is called for each signal, for one that came before inside this call. False: the system has no more file
  // descriptors.
  bool Begin(Callback onSignal);
  void End();

private:
  static Eina_Bool OnReadable(void* watch, Ecore_Fd_Handler* handler);
  static Eina_Bool OnEcoreEvent(void* watch, int type, void* event);

  Callback m_OnSignal = nullptr;
  int m_Fd = -1;
  Ecore_Fd_Handler* m_Handler = nullptr;
  Ecore_Event_Handler* m_EcoreHandlers[2] = {};
};

}  // namespace orvex::port
