// Events wait in one list; an eventfd tells the main loop that there are some.
#include "linux/event_queue.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <new>
#include <optional>

#include "linux/no_destroy.h"

namespace orvex::port {

EventQueue& EventQueue::Instance() {
  static const NoDestroy<EventQueue> queue;
  return *queue;
}

bool EventQueue::Send(const FwEvent& event) {
  if (event.GetReceiver() == nullptr) {
    return true;
  }
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_IsClosed) {
    return false;
  }
  try {
    m_Events.push_back(event);
  } catch (const std::bad_alloc&) {
    return false;
  }
  Wake();
  return true;
}

bool EventQueue::Open() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  m_WakeFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  if (m_WakeFd < 0) {
    return false;
  }
  m_Handler = ecore_main_fd_handler_add(m_WakeFd, ECORE_FD_READ, &OnReadable, this, nullptr, nullptr);
  m_IsClosed = false;
  if (!m_Events.empty()) {
    Wake();
  }
  return m_Handler != nullptr;
}

void EventQueue::Close() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  m_IsClosed = true;
  m_Events.clear();
}

void EventQueue::Release() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Handler != nullptr) {
    ecore_main_fd_handler_del(m_Handler);
    m_Handler = nullptr;
  }
  if (m_WakeFd >= 0) {
    ::close(m_WakeFd);
    m_WakeFd = -1;
  }
}

void EventQueue::Wake() const {
  if (m_WakeFd >= 0) {
    // Fails only when the counter is full, and then it is readable anyway.
    [[maybe_unused]] const int result = eventfd_write(m_WakeFd, 1);
  }
}

Eina_Bool EventQueue::OnReadable(void* queue, Ecore_Fd_Handler* /*handler*/) {
  static_cast<EventQueue*>(queue)->DeliverQueued();
  return ECORE_CALLBACK_RENEW;
}

void EventQueue::DeliverQueued() {
  std::size_t count = 0;
  {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    eventfd_t wakeups = 0;
    eventfd_read(m_WakeFd, &wakeups);
    count = m_Events.size();
  }
  // Events that the handlers send wait for the next round, so that timers and files have their turn.
  while (count > 0 && DeliverOne()) {
    --count;
  }
}

bool EventQueue::DeliverOne() {
  std::optional<FwEvent> event;
  {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    if (m_Events.empty()) {
      return false;
    }
    event = m_Events.front();
    m_Events.pop_front();
  }
  event->GetReceiver()->GetApplication().t_OnEvent(&*event);
  return true;
}

}  // namespace orvex::port
