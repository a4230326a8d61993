// Hands the rooms out to threads by number and keeps their results by number.
#include "sweep/sweep.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

#include "orvex/sim/truth.h"
#include "testsound/generator.h"

namespace orvex::tools {
namespace {

void RemoveTone(const SoundDesign& design, double missedTone, std::vector<std::int16_t>& sound) {
  const auto pair = std::lround(std::abs(missedTone));
  const double startMs = design.leadInMs + static_cast<double>(pair - 1) * design.spacingMs;
  const auto first = static_cast<std::size_t>(std::max(startMs, 0.0) * kSoundRateHz / 1000.0);
  const auto count = static_cast<std::size_t>((design.skewMs + design.burstMs + 1.0) * kSoundRateHz / 1000.0);
  const std::size_t side = missedTone > 0.0 ? 0 : 1;
  for (std::size_t n = first; pair > 0 && n < std::min(first + count, sound.size() / 2); ++n) {
    sound[2 * n + side] = 0;
  }
}

Sound DrawDisturbance(const RoomValues& values, std::uint64_t seed, const std::vector<Sound>& recordings) {
  DisturbanceSettings settings;
  settings.kind = static_cast<DisturbanceKind>(std::lround(values[axis::kDisturbance]));
  settings.peakDbfs = values[axis::kDisturbanceDbfs];
  settings.blocks = std::round(values[axis::kDisturbanceBlocks]);
  settings.recordings = &recordings;
  std::mt19937_64 random(seed);
  return MakeDisturbance(settings, random);
}

class Workers {
public:
  Workers(const Plan& plan, const SweepOptions& options)
      : m_Plan(plan), m_Options(options), m_Results(plan.Rows(), std::vector<RoomResult>(options.rooms)) {}

  SweepResult Run() {
    std::vector<std::thread> threads;
    for (unsigned job = 0; job < m_Options.jobs; ++job) {
      threads.emplace_back([this] { Work(); });
    }
    WatchUntilDone();
    for (std::thread& thread : threads) {
      thread.join();
    }
    if (m_Failure != nullptr) {
      std::rethrow_exception(m_Failure);
    }
    KeepWhatIsDone();
    SweepResult result;
    result.rows = std::move(m_Results);
    result.done = m_Done;
    result.planned = Total();
    return result;
  }

private:
  std::size_t Total() const { return m_Plan.Rows() * m_Options.rooms; }

  void Work() {
    try {
      while (!m_Options.isInterrupted()) {
        const std::size_t next = m_Next++;
        if (next >= Total()) {
          break;
        }
        const std::size_t row = next / m_Options.rooms;
        const std::size_t room = next % m_Options.rooms;
        m_Results[row][room] = RunRoom(m_Plan, row, room, m_Options.recordings);
        ++m_Done;
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(m_Mutex);
      m_Failure = std::current_exception();
      m_Next = Total();
    }
    const std::lock_guard<std::mutex> lock(m_Mutex);
    ++m_Finished;
    m_Changed.notify_one();
  }

  // Every room that was handed out is done, and so they are the first ones.
  void KeepWhatIsDone() {
    const std::size_t wholeRows = m_Done / m_Options.rooms;
    const std::size_t rest = m_Done % m_Options.rooms;
    m_Results.resize(wholeRows + (rest > 0 ? 1 : 0));
    if (rest > 0) {
      m_Results.back().resize(rest);
    }
  }

  void WatchUntilDone() {
    std::unique_lock<std::mutex> lock(m_Mutex);
    constexpr std::chrono::milliseconds kBetween(200);
    while (!m_Changed.wait_for(lock, kBetween, [this] { return m_Finished == m_Options.jobs; })) {
      m_Options.progress(m_Done);
    }
  }

  const Plan& m_Plan;
  const SweepOptions& m_Options;
  std::vector<std::vector<RoomResult>> m_Results;
  std::atomic<std::size_t> m_Next{0};
  std::atomic<std::size_t> m_Done{0};
  std::mutex m_Mutex;
  std::condition_variable m_Changed;
  unsigned m_Finished = 0;
  std::exception_ptr m_Failure;
};

}  // namespace

RoomResult RunRoom(const Plan& plan, std::size_t row, std::size_t room, const std::vector<Sound>& recordings) {
  const RoomValues values = plan.Draw(row, room);
  Trial trial = MakeTrial(values, plan.RoomSeed(room));
  const SoundDesign design = DesignOf(values);
  trial.sound = GenerateSound(design);
  RemoveTone(design, values[axis::kMissedTone], trial.sound);
  if (values[axis::kSilent] != 0.0) {
    std::fill(trial.sound.begin(), trial.sound.end(), std::int16_t{0});
  }
  trial.disturbance = DrawDisturbance(values, trial.room.seed, recordings);
  const TrialOutcome outcome = RunTrial(trial);

  RoomResult result;
  result.found = outcome.ending == Ending::kFound;
  result.abnormal = outcome.ending == Ending::kAbnormal;
  result.beforeMs = sim::MisalignmentMs(trial.room, 0.0);
  result.errorMs = outcome.differenceMs - result.beforeMs;
  result.changed = result.found && outcome.differenceMs != outcome.firstDifferenceMs;
  result.isFalse = result.found && (values[axis::kSilent] != 0.0 || std::abs(result.errorMs) > kFalseMs);
  result.remainingMs = result.beforeMs - std::trunc(outcome.differenceMs);
  result.decidedMs = outcome.decidedMs;
  result.endedMs = outcome.endedMs;
  return result;
}

SweepResult RunSweep(const Plan& plan, const SweepOptions& options) {
  SweepResult result = Workers(plan, options).Run();
  for (const auto& row : result.rows) {
    for (const RoomResult& room : row) {
      result.recordedS += room.decidedMs / 1000.0;
    }
  }
  return result;
}

}  // namespace orvex::tools
