// Replaces the function by which Ecore waits.
#include "virtual/late_main_loop.h"

#include <Ecore.h>
#include <sys/select.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "virtual/faults.h"

namespace orvex::virtual_tv {
namespace {

int SelectLate(int count, fd_set* readable, fd_set* writable, fd_set* exceptional, timeval* timeout) {
  const bool mayWait = timeout == nullptr || timeout->tv_sec > 0 || timeout->tv_usec > 0;
  const int ready = ::select(count, readable, writable, exceptional, timeout);
  const int reason = errno;
  if (mayWait) {
    std::this_thread::sleep_for(std::chrono::milliseconds(Faults::Instance().Next(Fault::kMainLoopLateMs).value_or(0)));
  }
  errno = reason;
  return ready;
}

}  // namespace

void MakeMainLoopLate() {
  if (Faults::Instance().IsListed(Fault::kMainLoopLateMs)) {
    ecore_main_loop_select_func_set(&SelectLate);
  }
}

}  // namespace orvex::virtual_tv
