// A run drawn by lot.
#include "world/runs/random_case.h"

#include <random>
#include <sstream>

#include "Application/OrvexEventId.h"
#include "orvex/sim/room_json.h"
#include "world/runs/faults.h"

namespace orvex::runs {

namespace {

class Lot {
public:
  explicit Lot(std::uint64_t seed) : m_Random(seed) {}

  // One of `list`.
  template <class List>
  const auto& Pick(const List& list) {
    return list[static_cast<std::size_t>(Index(list.size()))];
  }
  // 0 to `count` - 1.
  int Index(std::size_t count) { return static_cast<int>(m_Random() % count); }
  bool Chance(double probability) { return Between(0.0, 1.0) < probability; }
  double Between(double low, double high) {
    return low + (high - low) * static_cast<double>(m_Random() >> 11U) / static_cast<double>(1ULL << 53U);
  }

private:
  std::mt19937_64 m_Random;
};

sim::PathConfig DrawPath(Lot& lot, double mostLatencyMs) {
  sim::PathConfig path;
  path.latencyMs = lot.Between(0, mostLatencyMs);
  path.gainDb = lot.Between(-35, -10);
  path.distanceM = lot.Between(0.3, 6);
  for (int i = lot.Index(4); i > 0; --i) {
    path.reflections.push_back({lot.Between(1, 40), lot.Between(-25, -6)});
  }
  path.rt60S = lot.Chance(0.3) ? 0 : lot.Between(0.1, 0.5);
  path.directToReverberantDb = lot.Between(0, 20);
  return path;
}

sim::RoomConfig DrawRoom(Lot& lot, std::uint64_t seed) {
  sim::RoomConfig room;
  room.tv = DrawPath(lot, 150);
  room.optical = DrawPath(lot, 250);
  room.opticalMuted = lot.Chance(0.05);
  room.opticalLockMs = lot.Chance(0.3) ? lot.Between(0, 600) : 0;
  room.rateErrorPpm = lot.Between(-300, 300) * (lot.Chance(0.1) ? 100 : 1);
  room.noiseDbfs = lot.Between(-90, lot.Chance(0.1) ? -20 : -60);
  room.voiceLatencyMs = lot.Between(5, 120);
  room.voiceJitterMs = lot.Chance(0.3) ? lot.Between(0, 30) : 0;
  room.voiceLossProbability = lot.Chance(0.2) ? lot.Between(0, 0.1) : 0;
  if (lot.Chance(0.1)) {
    room.silentAfterMs = lot.Between(0, 3000);
  }
  room.seed = seed;
  return room;
}

void DrawTelevision(Lot& lot, world::World& world) {
  world.muted = lot.Chance(0.5);
  world.volume = lot.Index(101);
  world.speaker = lot.Index(3);
  world.delayMs = static_cast<std::uint32_t>(lot.Index(400));
  world.settings[kConsentKey] = lot.Index(2);
  world.wallClockUs += static_cast<std::int64_t>(lot.Between(0, 4.3e12));
}

// Without its events, or without its time limit, nothing has to end a run.
bool MayNeverEnd(const FailingOperation& operation) {
  return std::string(operation.name) == "SendEvent" || std::string(operation.name) == "ecore_timer_add";
}

void DrawFault(Lot& lot, world::Answers& answers, std::ostream& drawn) {
  const FailingOperation& operation = lot.Pick(FailingOperations());
  if (MayNeverEnd(operation)) {
    return;
  }
  const long result = lot.Pick(operation.results);
  drawn << "\n  " << operation.name << " answers " << result;
  if (lot.Chance(0.3)) {
    answers.Always(operation.name, result);
    drawn << " for ever";
    return;
  }
  for (int i = 1 + lot.Index(3); i > 0; --i) {
    const int call = 1 + lot.Index(6);
    answers.OnCall(operation.name, call, result);
    drawn << " at call " << call;
  }
}

struct Happening {
  const char* name;
  void (*happen)(ServiceRun& run, int number);
};

void SendWithOrWithoutExit(ServiceRun& run, std::int32_t type, int number) {
  run.SendServiceEvent(type);
  if (number % 2 == 1) {
    run.SendServiceEvent(ORVEX_EXIT);
  }
}

const Happening kHappenings[] = {
    {"optical flag", [](ServiceRun& run, int) { run.SwitchOpticalFlag(); }},
    {"termination", [](ServiceRun& run, int) { run.Terminate(); }},
    {"time limit", [](ServiceRun& run, int) { run.ReachTimeLimit(); }},
    {"consent", [](ServiceRun& run, int number) { run.Consent(number % 2); }},
    {"delay and restart",
     [](ServiceRun& run, int number) {
       run.ChangeDelay(static_cast<std::uint32_t>(number));
       run.SendServiceEvent(ORVEX_RESTART_BT_RECODING);
     }},
    {"restart", [](ServiceRun& run, int) { run.SendServiceEvent(ORVEX_RESTART_BT_RECODING); }},
    {"start of recording", [](ServiceRun& run, int) { run.SendServiceEvent(ORVEX_START_BT_RECODING); }},
    {"end of recording", [](ServiceRun& run, int) { run.SendServiceEvent(ORVEX_FINISH_BT_RECODING); }},
    {"start of sound", [](ServiceRun& run, int) { run.SendServiceEvent(ORVEX_PLAY_INAUDIBLE_SOUND); }},
    {"stop of sound",
     [](ServiceRun& run, int number) { SendWithOrWithoutExit(run, ORVEX_STOP_INAUDIBLE_SOUND, number); }},
    {"sound stopped and started",
     [](ServiceRun& run, int) {
       run.SendServiceEvent(ORVEX_STOP_INAUDIBLE_SOUND);
       run.SendServiceEvent(ORVEX_PLAY_INAUDIBLE_SOUND);
     }},
    {"end of sync", [](ServiceRun& run, int number) { SendWithOrWithoutExit(run, ORVEX_END_SYNC, number); }},
    {"foreign event", [](ServiceRun& run, int) { run.SendServiceEvent(ORVEX_EXIT + 1); }},
};

void DrawHappening(Lot& lot, ServiceRun& run, std::ostream& drawn) {
  const Happening& happening = kHappenings[lot.Index(std::size(kHappenings))];
  const double atMs = lot.Between(0, lot.Chance(0.2) ? 10000 : 2000);
  const int number = lot.Index(300);
  drawn << "\n  " << happening.name << ' ' << number << " at " << atMs << " ms";
  run.world.scheduler.At(world::Time(static_cast<std::int64_t>(atMs * 1e6)), world::Lane::kMainLoop,
                         [&run, &happening, number] {
                           if (!run.world.HasEnded()) {
                             happening.happen(run, number);
                           }
                         });
}

}  // namespace

std::string PrepareRandomRun(std::uint64_t seed, ServiceRun& run) {
  Lot lot(seed);
  std::ostringstream drawn;
  DrawTelevision(lot, run.world);
  const sim::RoomConfig room = DrawRoom(lot, seed);
  drawn << sim::RoomToJson(room) << "muted " << run.world.muted << ", speaker " << run.world.speaker << ", delay "
        << run.world.delayMs << " ms";
  run.world.UseRoom(room);
  for (int i = lot.Index(3); i > 0; --i) {
    DrawFault(lot, run.world.answers, drawn);
  }
  for (int i = lot.Index(5); i > 0; --i) {
    DrawHappening(lot, run, drawn);
  }
  return drawn.str();
}

}  // namespace orvex::runs
