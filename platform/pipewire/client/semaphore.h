// A semaphore that a real-time thread may raise.
#pragma once

#include <semaphore.h>

#include <cerrno>

namespace orvex::pipewire {

class Semaphore {
public:
  Semaphore() { ::sem_init(&m_Semaphore, 0, 0); }
  ~Semaphore() { ::sem_destroy(&m_Semaphore); }
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  void Post() { ::sem_post(&m_Semaphore); }
  void Wait() {
    while (::sem_wait(&m_Semaphore) != 0 && errno == EINTR) {
    }
  }

private:
  sem_t m_Semaphore{};
};

}  // namespace orvex::pipewire
