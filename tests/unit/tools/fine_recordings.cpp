#include "unit/tools/fine_recordings.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>

#include "orvex/sim/room.h"
#include "orvex/sim/voice_channel.h"
#include "testsound/generator.h"

namespace orvex::fine {
namespace {

std::size_t SampleAt(double ms) {
  return static_cast<std::size_t>(std::lround(ms * 1e-3 * kVoiceRateHz));
}

double Envelope(double ms, const tools::SoundDesign& design) {
  const double inner = std::min(ms, design.burstMs - ms);
  return inner <= 0.0 ? 0.0 : 0.5 - 0.5 * std::cos(tools::kPi * std::min(1.0, inner / design.rampMs));
}

// Every burst has a phase of its own, as its beginning lies anywhere between two samples.
void AddBurst(std::vector<double>& values, const HeardSound& sound, std::size_t tone, double onset, double phase) {
  const double rateHz = kVoiceRateHz * (1.0 + sound.rateErrorPpm * 1e-6);
  const double length = sound.design.burstMs * 1e-3 * rateHz;
  const auto first = static_cast<std::size_t>(std::max(0.0, std::ceil(onset)));
  for (std::size_t n = first; n < values.size() && static_cast<double>(n) < onset + length; ++n) {
    const double s = (static_cast<double>(n) - onset) / rateHz;
    values[n] += sound.amplitudes[tone] * Envelope(s * 1e3, sound.design) *
                 std::cos(2.0 * tools::kPi * sound.tonesHz[tone] * s + phase);
  }
}

}  // namespace

double OnsetOf(const HeardSound& sound, std::size_t tone, std::size_t pair) {
  const double ms = sound.beginMs + static_cast<double>(pair) * sound.design.spacingMs +
                    (tone == 1 ? sound.differenceMs + sound.design.skewMs : 0.0);
  return ms * 1e-3 * kVoiceRateHz * (1.0 + sound.rateErrorPpm * 1e-6);
}

Recording MakeRecording(const HeardSound& sound) {
  std::mt19937 random(sound.seed);
  std::normal_distribution<double> noise(0.0, 1.0);
  std::uniform_real_distribution<double> turn(0.0, 2.0 * tools::kPi);
  std::vector<double> values(SampleAt(sound.lengthMs));
  for (double& value : values) {
    value = sound.noise * noise(random);
  }
  for (std::size_t tone = 0; tone < sound.tonesHz.size(); ++tone) {
    const double phase = turn(random);
    for (std::size_t pair = 0; pair < static_cast<std::size_t>(sound.design.pairs); ++pair) {
      AddBurst(values, sound, tone, OnsetOf(sound, tone, pair), phase);
    }
  }
  const double gain = std::pow(10.0, sound.gainDb / 20.0);
  Recording recording;
  for (const double value : values) {
    recording.push_back(static_cast<std::int16_t>(std::lround(std::clamp(gain * value, -32768.0, 32767.0))));
  }
  return recording;
}

Recording MakeNoise(double ms, double deviation, unsigned seed) {
  HeardSound sound;
  sound.amplitudes = {0.0, 0.0};
  sound.noise = deviation;
  sound.lengthMs = ms;
  sound.seed = seed;
  return MakeRecording(sound);
}

Recording RecordRoom(const sim::RoomConfig& room, double startMs, double lengthMs) {
  static const std::vector<std::int16_t> sound = tools::GenerateSound({});
  sim::RoomConfig config = room;
  config.voiceWindowMs = 2.0 * lengthMs;
  sim::Room made(config);
  sim::VoiceChannel voice(made);
  made.Play(std::chrono::nanoseconds(std::llround(startMs * 1e6)), sound.data(), sound.size() / 2);
  voice.Start({});
  Recording recording;
  sim::VoiceChannel::Block block{};
  while (recording.size() < SampleAt(lengthMs) && voice.NextDelivery()) {
    if (voice.TakeBlock(block)) {
      recording.insert(recording.end(), block.begin(), block.end());
    }
  }
  return recording;
}

Recording SumOf(const Recording& one, const Recording& other) {
  Recording sum(one.size());
  std::transform(one.begin(), one.end(), other.begin(), sum.begin(),
                 [](std::int16_t a, std::int16_t b) { return static_cast<std::int16_t>(a + b); });
  return sum;
}

void LoseBlock(Recording& recording, double atMs) {
  const auto begin = recording.begin() + static_cast<std::ptrdiff_t>(SampleAt(atMs));
  recording.erase(begin, begin + kVoiceBlockSamples);
}

void CutAt(Recording& recording, double ms) {
  recording.resize(SampleAt(ms));
}

const FineReader& Reader() {
  static const FineReader reader;
  return reader;
}

}  // namespace orvex::fine
