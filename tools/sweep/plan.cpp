// Draws rooms.
#include "sweep/plan.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "orvex/platform/remote_voice.h"

namespace orvex::tools {
namespace {

std::mt19937_64 MakeRandom(std::uint64_t seed, std::uint64_t room, std::uint64_t use) {
  std::seed_seq sequence{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32U),
                         static_cast<std::uint32_t>(room), static_cast<std::uint32_t>(use)};
  return std::mt19937_64(sequence);
}

}  // namespace

bool operator==(const RoomValues& a, const RoomValues& b) {
  return std::tie(a.numbers, a.tvReflections, a.opticalReflections, a.lostPlaces) ==
         std::tie(b.numbers, b.tvReflections, b.opticalReflections, b.lostPlaces);
}

Plan::Plan(const std::map<Axis, std::string>& given, std::uint64_t seed) : m_Seed(seed) {
  for (std::size_t axis = 0; axis < axis::kCount; ++axis) {
    const AxisKind& kind = AxisKinds()[axis];
    const auto found = given.find(static_cast<Axis>(axis));
    m_Axes.emplace_back(kind, found == given.end() ? kind.byDefault : found->second);
    m_Rows *= m_Axes.back().Rows();
  }
}

std::vector<Axis> Plan::ListedAxes() const {
  std::vector<Axis> listed;
  for (std::size_t axis = 0; axis < axis::kCount; ++axis) {
    if (m_Axes[axis].Rows() > 1) {
      listed.push_back(static_cast<Axis>(axis));
    }
  }
  return listed;
}

// The last axis turns fastest.
std::size_t Plan::Position(Axis axis, std::size_t row) const {
  for (std::size_t faster = axis::kCount - 1; faster > axis; --faster) {
    row /= m_Axes[faster].Rows();
  }
  return row % m_Axes[axis].Rows();
}

const std::string& Plan::Text(Axis axis, std::size_t row) const {
  return m_Axes[axis].Text(Position(axis, row));
}

std::string Plan::Name(const std::vector<Axis>& axes, std::size_t row) const {
  std::string name;
  for (const Axis axis : axes) {
    name += (name.empty() ? "" : ", ") + std::string(AxisKinds()[axis].name) + " " + Text(axis, row);
  }
  return name;
}

RoomValues Plan::Draw(std::size_t row, std::size_t room) const {
  RoomValues values{};
  std::mt19937_64 random = MakeRandom(m_Seed, room, 0);
  for (std::size_t axis = 0; axis < axis::kCount; ++axis) {
    values[axis] = m_Axes[axis].Draw(Position(static_cast<Axis>(axis), row), random);
  }
  DrawReflections(row, room, values);
  DrawLostPlaces(room, values);
  return values;
}

void Plan::DrawReflections(std::size_t row, std::size_t room, RoomValues& values) const {
  std::mt19937_64 random = MakeRandom(m_Seed, room, 2);
  const auto draw = [&](Axis axis) { return m_Axes[axis].Draw(Position(axis, row), random); };
  for (long left = std::lround(values[axis::kReflections]); left > 0; --left) {
    for (auto* reflections : {&values.tvReflections, &values.opticalReflections}) {
      const double delayMs = draw(axis::kReflectionMs);
      reflections->push_back({delayMs, draw(axis::kReflectionDb)});
    }
  }
}

void Plan::DrawLostPlaces(std::size_t room, RoomValues& values) const {
  std::mt19937_64 random = MakeRandom(m_Seed, room, 3);
  std::uniform_real_distribution<double> even(0.0, 1.0);
  for (long left = std::lround(values[axis::kLostBlocks]); left > 0; --left) {
    values.lostPlaces.push_back(even(random));
  }
}

std::uint64_t Plan::RoomSeed(std::size_t room) const {
  return MakeRandom(m_Seed, room, 1)();
}

// A tone of amplitude A fills a block with the magnitude A n / 2; that of white noise is Rayleigh distributed with the
// mean sqrt(pi n) / 2 times its deviation.
double NoiseDbfs(double toneDb) {
  const double toneOverDeviationDb = 20.0 * std::log10(kVoiceBlockSamples / std::sqrt(M_PI * kVoiceBlockSamples));
  return kReferenceToneDbfs + kReferenceGainDb + toneOverDeviationDb - toneDb;
}

SoundDesign DesignOf(const RoomValues& values) {
  SoundDesign design;
  design.burstMs = values[axis::kBurstMs];
  design.rampMs = values[axis::kRampMs];
  design.skewMs = values[axis::kSkewMs];
  design.pairs = static_cast<int>(std::lround(values[axis::kPairs]));
  design.spacingMs = values[axis::kSpacingMs];
  design.leadInMs = values[axis::kLeadInMs];
  design.tailMs = values[axis::kTailMs];
  design.levelDbfs = values[axis::kLevelDbfs];
  return design;
}

Trial MakeTrial(const RoomValues& values, std::uint64_t seed) {
  Trial trial;
  trial.startMs = values[axis::kStartMs];
  trial.lateMs = values[axis::kLateMs];
  trial.finishedMark = values[axis::kFinishedMark] != 0.0;
  sim::RoomConfig& room = trial.room;
  room.tv.distanceM = room.optical.distanceM = 0.0;
  room.tv.reflections = values.tvReflections;
  room.optical.reflections = values.opticalReflections;
  room.tv.latencyMs = values[axis::kWayMs] + std::max(-values[axis::kDifferenceMs], 0.0);
  room.optical.latencyMs = values[axis::kWayMs] + std::max(values[axis::kDifferenceMs], 0.0);
  room.tv.gainDb = kReferenceGainDb + values[axis::kTvGainDb];
  room.optical.gainDb = kReferenceGainDb + values[axis::kOpticalGainDb];
  room.tv.rt60S = room.optical.rt60S = values[axis::kRt60S];
  room.tv.directToReverberantDb = room.optical.directToReverberantDb = values[axis::kDirectToReverberantDb];
  room.opticalLockMs = values[axis::kLockMs];
  room.rateErrorPpm = values[axis::kRateErrorPpm];
  room.noiseDbfs = NoiseDbfs(values[axis::kToneDb]);
  room.voiceLatencyMs = values[axis::kVoiceLatencyMs];
  room.voiceJitterMs = values[axis::kJitterMs];
  room.voiceLossProbability = values[axis::kLossPercent] / 100.0;
  room.seed = seed;
  return trial;
}

}  // namespace orvex::tools
