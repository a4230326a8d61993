// Makes the sounds that are not ours.
#include "sweep/disturbance.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <stdexcept>

#include "Application/OrvexDetector.h"
#include "testsound/sound_design.h"

namespace orvex::tools {
namespace {

constexpr std::size_t kLength = static_cast<std::size_t>(4.0 * kVoiceRateHz);
constexpr double kAmbientEndS = (detector::kAmbientBuffer + 1) * kVoiceBlockSamples / kVoiceRateHz;

using Random = std::mt19937_64;

double Even(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

int EvenInt(Random& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

float Noise(Random& random) {
  return std::normal_distribution<float>()(random);
}

// Calls value(seconds since the beginning) for each sample of a stretch and adds what it gives.
template <class Value>
void Add(Sound& sound, double beginS, double lengthS, Value value) {
  const auto begin = static_cast<std::size_t>(beginS * kVoiceRateHz);
  const std::size_t end = std::min(begin + static_cast<std::size_t>(lengthS * kVoiceRateHz), sound.size());
  for (std::size_t n = begin; n < end; ++n) {
    sound[n] += static_cast<float>(value(static_cast<double>(n - begin) / kVoiceRateHz));
  }
}

// A sine that dies away, to a thousandth within `lengthS`: a phasor that turns and shrinks.
void AddRinging(Sound& sound, double beginS, double lengthS, double frequencyHz, double amplitude) {
  const auto step = std::polar(std::exp(-6.9 / (lengthS * kVoiceRateHz)), 2.0 * M_PI * frequencyHz / kVoiceRateHz);
  std::complex<double> phasor = amplitude;
  Add(sound, beginS, lengthS, [&](double) {
    const double re = phasor.real() * step.real() - phasor.imag() * step.imag();
    phasor = {re, phasor.real() * step.imag() + phasor.imag() * step.real()};
    return phasor.imag();
  });
}

void AddNoiseHit(Sound& sound, Random& random, double beginS, double lengthS, double amplitude) {
  Add(sound, beginS, lengthS, [&](double t) { return amplitude * std::exp(-6.9 * t / lengthS) * Noise(random); });
}

void AddClaps(Sound& sound, Random& random, double beginS) {
  const int claps = EvenInt(random, 1, 5);
  for (int clap = 0; clap < claps; ++clap) {
    AddNoiseHit(sound, random, beginS, Even(random, 0.02, 0.1), Even(random, 0.5, 1.0));
    beginS += Even(random, 0.15, 0.6);
  }
}

// Metal on metal: many short rings, most of them high.
void AddKeys(Sound& sound, Random& random, double beginS) {
  const int strokes = EvenInt(random, 5, 30);
  for (int stroke = 0; stroke < strokes; ++stroke) {
    const double strokeS = beginS + Even(random, 0.0, 1.5);
    for (int partial = EvenInt(random, 2, 6); partial > 0; --partial) {
      AddRinging(sound, strokeS, Even(random, 0.02, 0.2), Even(random, 3000.0, 21000.0), Even(random, 0.2, 1.0));
    }
  }
}

void AddBurst(Sound& sound, double beginS, double frequencyHz) {
  const SoundDesign design;
  const double lengthS = design.burstMs / 1000.0;
  const double rampS = design.rampMs / 1000.0;
  Add(sound, beginS, lengthS, [&](double t) {
    const double ramp = std::min({t / rampS, (lengthS - t) / rampS, 1.0});
    return (0.5 - 0.5 * std::cos(M_PI * ramp)) * std::sin(2.0 * M_PI * frequencyHz * t);
  });
}

void AddBothBursts(Sound& sound, Random& random, double beginS) {
  const bool reverse = EvenInt(random, 0, 1) == 1;
  const double apartS = Even(random, 0.03, 0.3);
  AddBurst(sound, beginS, reverse ? kRightToneHz : kLeftToneHz);
  AddBurst(sound, beginS + apartS, reverse ? kLeftToneHz : kRightToneHz);
}

// Chords with all their overtones up to the microphone's limit, over kick and hi-hat.
void AddMusic(Sound& sound, Random& random, double beginS) {
  const double beatS = 60.0 / Even(random, 80.0, 160.0);
  const double rootHz = Even(random, 110.0, 220.0);
  const double lastS = static_cast<double>(sound.size()) / kVoiceRateHz;
  for (double nowS = beginS; nowS < lastS; nowS += beatS) {
    AddRinging(sound, nowS, 0.3, 60.0, 1.0);
    AddNoiseHit(sound, random, nowS + beatS / 2.0, 0.08, 0.3);
    const double chordHz = rootHz * std::pow(2.0, EvenInt(random, 0, 11) / 12.0);
    for (const double step : {1.0, 1.25, 1.5}) {
      for (int overtone = 1; overtone * chordHz * step < kVoiceRateHz / 2.0; overtone = overtone * 3 / 2 + 1) {
        AddRinging(sound, nowS, beatS * 2.0, overtone * chordHz * step, 0.4 / overtone);
      }
    }
  }
}

void AddRecording(Sound& sound, Random& random, double beginS, const std::vector<Sound>* recordings) {
  if (recordings == nullptr || recordings->empty()) {
    throw std::invalid_argument("--disturbance recording needs a --recording FILE");
  }
  const Sound& recording =
      (*recordings)[static_cast<std::size_t>(EvenInt(random, 0, static_cast<int>(recordings->size()) - 1))];
  auto next = static_cast<std::size_t>(Even(random, 0.0, 0.999) * static_cast<double>(recording.size()));
  Add(sound, beginS, 10.0, [&](double) {
    const float value = recording[next];
    next = (next + 1) % recording.size();
    return value;
  });
}

void ScaleToPeak(Sound& sound, double peakDbfs) {
  float peak = 0.0F;
  for (const float value : sound) {
    peak = std::max(peak, std::abs(value));
  }
  const float gain = peak > 0.0F ? static_cast<float>(std::pow(10.0, peakDbfs / 20.0)) / peak : 0.0F;
  for (float& value : sound) {
    value *= gain;
  }
}

}  // namespace

const std::vector<std::string> kDisturbanceNames = {"none",  "hiss",        "claps", "keys",     "whine",
                                                    "burst", "both-bursts", "music", "recording"};

Sound MakeDisturbance(const DisturbanceSettings& settings, Random& random) {
  if (settings.kind == DisturbanceKind::kNone) {
    return {};
  }
  Sound sound(kLength, 0.0F);
  const double earlyS = Even(random, 0.0, 2.0);
  const double lateS = kAmbientEndS + earlyS;
  switch (settings.kind) {
    case DisturbanceKind::kNone:
      break;
    case DisturbanceKind::kHiss:
      Add(sound, lateS, settings.blocks * kVoiceBlockSamples / kVoiceRateHz, [&](double) { return Noise(random); });
      break;
    case DisturbanceKind::kClaps:
      AddClaps(sound, random, lateS);
      break;
    case DisturbanceKind::kKeys:
      AddKeys(sound, random, lateS);
      break;
    case DisturbanceKind::kWhine:
      Add(sound, earlyS, 10.0, [](double t) { return std::sin(2.0 * M_PI * 15600.0 * t); });
      break;
    case DisturbanceKind::kBurst:
      AddBurst(sound, lateS, EvenInt(random, 0, 1) == 0 ? kLeftToneHz : kRightToneHz);
      break;
    case DisturbanceKind::kBothBursts:
      AddBothBursts(sound, random, lateS);
      break;
    case DisturbanceKind::kMusic:
      AddMusic(sound, random, earlyS);
      break;
    case DisturbanceKind::kRecording:
      AddRecording(sound, random, earlyS, settings.recordings);
      break;
  }
  ScaleToPeak(sound, settings.peakDbfs);
  return sound;
}

}  // namespace orvex::tools
