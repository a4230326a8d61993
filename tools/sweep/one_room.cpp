// What both have in common is the trial: room, sound and disturbance.
#include "sweep/one_room.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "orvex/sim/truth.h"
#include "sweep/trial.h"
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

Trial TrialOf(const RoomValues& values, std::uint64_t seed, const std::vector<Sound>& recordings) {
  Trial trial = MakeTrial(values, seed);
  const SoundDesign design = DesignOf(values);
  trial.sound = GenerateSound(design);
  RemoveTone(design, values[axis::kMissedTone], trial.sound);
  if (values[axis::kSilent] != 0.0) {
    std::fill(trial.sound.begin(), trial.sound.end(), std::int16_t{0});
  }
  trial.disturbance = DrawDisturbance(values, trial.room.seed, recordings);
  return trial;
}

// From the sound's first frame to the end of the recording. A room's distance is 0, its latencies are all of the way.
double ListenMs(const RoomValues& values, const SoundDesign& design, const sim::RoomConfig& room) {
  const double cutMs = values[axis::kCutMs];
  if (cutMs == 0.0) {
    return design.DurationMs() + std::max(room.tv.latencyMs, room.optical.latencyMs);
  }
  return design.leadInMs + std::max(room.tv.latencyMs, room.optical.latencyMs + design.skewMs) + cutMs;
}

void LoseBlocks(const std::vector<double>& places, std::vector<std::int16_t>& recording) {
  for (const double place : places) {
    const std::size_t blocks = recording.size() / kVoiceBlockSamples;
    if (blocks == 0) {
      return;
    }
    const std::size_t lost = std::min(static_cast<std::size_t>(place * static_cast<double>(blocks)), blocks - 1);
    const auto first = recording.begin() + static_cast<std::ptrdiff_t>(lost * kVoiceBlockSamples);
    recording.erase(first, first + kVoiceBlockSamples);
  }
}

}  // namespace

RoomResult RunRoom(const Plan& plan, std::size_t row, std::size_t room, const std::vector<Sound>& recordings) {
  const RoomValues values = plan.Draw(row, room);
  const Trial trial = TrialOf(values, plan.RoomSeed(room), recordings);
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

std::shared_ptr<const fine::FineReader> FineReaders::For(const SoundDesign& design) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (!(m_Design == design)) {
    m_Reader = std::make_shared<fine::FineReader>(design);
    m_Design = design;
  }
  return m_Reader;
}

RoomResult ReadRoom(const Plan& plan, std::size_t row, std::size_t room, FineReaders& readers,
                    const std::vector<Sound>& recordings) {
  const RoomValues values = plan.Draw(row, room);
  const SoundDesign design = DesignOf(values);
  const Trial trial = TrialOf(values, plan.RoomSeed(room), recordings);
  const std::shared_ptr<const fine::FineReader> reader = readers.For(design);
  std::vector<std::int16_t> recording = RecordTrial(trial, ListenMs(values, design, trial.room));
  LoseBlocks(values.lostPlaces, recording);
  const fine::Reading reading = reader->Read({recording.data(), recording.size()});

  RoomResult result;
  result.beforeMs = sim::MisalignmentMs(trial.room, 0.0);
  result.found = reading.differenceS.has_value();
  result.decidedMs = result.endedMs = static_cast<double>(recording.size()) * 1e3 / kVoiceRateHz;
  if (result.found) {
    const double lowMs = reading.intervalS.low * 1e3;
    const double highMs = reading.intervalS.high * 1e3;
    result.errorMs = *reading.differenceS * 1e3 - result.beforeMs;
    result.halfWidthMs = (highMs - lowMs) / 2.0;
    result.held = lowMs <= result.beforeMs && result.beforeMs <= highMs;
  }
  return result;
}

}  // namespace orvex::tools
