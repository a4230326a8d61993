// Measures the time from sending on another thread to the handler on the main loop, for an event of the framework and
// for Ecore's own asynchronous call.
#include <Ecore.h>
#include <benchmark/benchmark.h>
#include <semaphore.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "orvex/platform/application.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t kMeasured = 1;
constexpr std::int32_t kEnd = 2;

// The time at which the handler was called, handed over to the sending thread.
struct Arrival {
  Arrival() { sem_init(&isThere, 0, 0); }
  ~Arrival() { sem_destroy(&isThere); }
  Arrival(const Arrival&) = delete;
  Arrival& operator=(const Arrival&) = delete;

  void Note() {
    time = Clock::now();
    sem_post(&isThere);
  }
  Clock::time_point Wait() {
    while (sem_wait(&isThere) != 0) {
    }
    return time;
  }

  sem_t isThere{};
  Clock::time_point time;
};
Arrival arrival;

// Sends one event at a time, so that the main loop sleeps when it is sent.
template <typename Send>
void Measure(benchmark::State& state, const Send& send) {
  for ([[maybe_unused]] const auto iteration : state) {
    const Clock::time_point sent = Clock::now();
    if (!send()) {
      state.SkipWithError("the event was not accepted");
      return;
    }
    state.SetIterationTime(std::chrono::duration<double>(arrival.Wait() - sent).count());
  }
}

class Application : public FwEflApplication {
public:
  Application() : FwEflApplication("org.velta.event-bench") {}

  bool t_HasWindow() override { return false; }
  bool t_IsSuspendable() override { return false; }
  bool t_RunsInBackground() override { return true; }
  bool t_OnCreate() override {
    m_Sender = std::thread([this] {
      benchmark::RunSpecifiedBenchmarks();
      SendEvent(FwEvent(kEnd, GetEventReceiver()));
    });
    return true;
  }
  void t_OnDestroy() override { m_Sender.join(); }
  bool t_OnEvent(FwEvent* event) override {
    if (event->GetType() == kMeasured) {
      arrival.Note();
    } else {
      ui_app_exit();
    }
    return true;
  }

private:
  std::thread m_Sender;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return EXIT_FAILURE;
  }
  Application application;
  benchmark::RegisterBenchmark("SendEvent", [&](benchmark::State& state) {
    Measure(state, [&] { return SendEvent(FwEvent(kMeasured, application.GetEventReceiver())); });
  })->UseManualTime();
  benchmark::RegisterBenchmark("EcoreAsyncCall", [](benchmark::State& state) {
    Measure(state, [] {
      ecore_main_loop_thread_safe_call_async([](void*) { arrival.Note(); }, nullptr);
      return true;
    });
  })->UseManualTime();
  return AppMain(argc, argv, &application);
}
