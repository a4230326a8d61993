// The one queue through which events go from any thread to the main loop.
#pragma once

#include <Ecore.h>

#include <deque>
#include <mutex>

#include "orvex/platform/application.h"

namespace orvex::port {

class EventQueue {
public:
  static EventQueue& Instance();

  // Any thread. False: the main loop is ending, or memory is exhausted.
  bool Send(const FwEvent& event);

  // Main loop. Events are delivered from now on, those that were sent before the first main loop first. False: the
  // system has no more file descriptors.
  bool Open();
  // Main loop. Drops what is queued and refuses what comes.
  void Close();
  // Main loop, after Close(): gives the file descriptor back.
  void Release();

private:
  static Eina_Bool OnReadable(void* queue, Ecore_Fd_Handler* handler);
  void DeliverQueued();
  bool DeliverOne();
  void Wake() const;

  std::mutex m_Mutex;
  // Guarded by the mutex.
  std::deque<FwEvent> m_Events;
  bool m_IsClosed = false;
  int m_WakeFd = -1;  // an eventfd, readable while there may be events; -1 while there is no main loop
  // Main loop only.
  Ecore_Fd_Handler* m_Handler = nullptr;
};

}  // namespace orvex::port
