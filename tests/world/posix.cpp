// Threads, pauses and the wall clock in virtual time. The linker leads the service's calls here (--wrap); without a
// world, and on threads that are none of its own, they go on to the system.
#include <pthread.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

#include "world/world.h"

using orvex::world::Time;
using orvex::world::VirtualThread;
using orvex::world::World;

namespace {

World* WorldOfThisThread() {
  return orvex::world::Scheduler::RunsThisThread() ? World::CurrentOrNull() : nullptr;
}

}  // namespace

// What a call of gettimeofday() is to the linker.
#ifdef __USE_TIME_BITS64
#define ORVEX_GETTIMEOFDAY(kind) kind##__gettimeofday64
#else
#define ORVEX_GETTIMEOFDAY(kind) kind##gettimeofday
#endif

// NOLINTBEGIN(bugprone-reserved-identifier): the linker fixes these names.
extern "C" {

int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*), void* data);
int __real_pthread_join(pthread_t thread, void** result);
int __real_usleep(useconds_t microseconds);
unsigned int __real_sleep(unsigned int seconds);
int ORVEX_GETTIMEOFDAY(__real_)(timeval* time, void* zone);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*), void* data) {
  World* world = WorldOfThisThread();
  if (world == nullptr) {
    return __real_pthread_create(thread, attributes, body, data);
  }
  const int result = static_cast<int>(world->answers.Take("pthread_create").value_or(0));
  world->Call("pthread_create() = " + std::to_string(result));
  if (result == 0) {
    VirtualThread* created = world->scheduler.Spawn("recorder", [body, data] { body(data); });
    *thread = reinterpret_cast<pthread_t>(created);
  }
  return result;
}

int __wrap_pthread_join(pthread_t thread, void** result) {
  World* world = WorldOfThisThread();
  if (world == nullptr) {
    return __real_pthread_join(thread, result);
  }
  world->scheduler.Join(reinterpret_cast<VirtualThread*>(thread));
  world->Call("pthread_join()");
  return 0;
}

int __wrap_usleep(useconds_t microseconds) {
  World* world = WorldOfThisThread();
  if (world == nullptr) {
    return __real_usleep(microseconds);
  }
  world->Call("usleep(" + std::to_string(microseconds) + ")");
  world->scheduler.Sleep(std::chrono::microseconds(microseconds));
  return 0;
}

unsigned int __wrap_sleep(unsigned int seconds) {
  World* world = WorldOfThisThread();
  if (world == nullptr) {
    return __real_sleep(seconds);
  }
  world->Call("sleep(" + std::to_string(seconds) + ")");
  world->scheduler.Sleep(std::chrono::seconds(seconds));
  return 0;
}

int ORVEX_GETTIMEOFDAY(__wrap_)(timeval* time, void* zone) {
  World* world = WorldOfThisThread();
  if (world == nullptr) {
    return ORVEX_GETTIMEOFDAY(__real_)(time, zone);
  }
  const std::int64_t now =
      world->wallClockUs + std::chrono::duration_cast<std::chrono::microseconds>(world->scheduler.Now()).count();
  time->tv_sec = static_cast<time_t>(now / 1'000'000);
  time->tv_usec = static_cast<suseconds_t>(now % 1'000'000);
  return 0;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
