// Compares the receiver's callback for one block of the remote's audio with the arithmetic that it cannot do without.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <random>

#include "Application/OrvexReceiver.h"
#include "orvex/platform/system_log.h"
#include "receiver/null_dump.h"

namespace {

constexpr std::array<double, 4> kFrequenciesHz{17000.0, 17500.0, 18000.0, 19000.0};

using Samples = std::array<std::int16_t, kVoiceBlockSamples>;

// Where formatted lines go; null while the log is off.
std::array<char, 512>* logSink = nullptr;

// Noise of a quiet room, in which no tone is found.
Samples QuietRoom() {
  std::mt19937 random(1);
  std::normal_distribution<double> noise(0.0, 10.0);
  Samples samples{};
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(std::lround(noise(random)));
  }
  return samples;
}

// The angles, computed in advance: Floor() is left with their sines and cosines and the multiply-adds.
std::array<std::array<double, kVoiceBlockSamples>, kFrequenciesHz.size()> Angles() {
  constexpr double kTwoPi = 6.283185307179586;
  std::array<std::array<double, kVoiceBlockSamples>, kFrequenciesHz.size()> angles{};
  for (std::size_t tone = 0; tone < kFrequenciesHz.size(); ++tone) {
    for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
      angles[tone][n] = static_cast<double>(n) * kTwoPi * kFrequenciesHz[tone] / kVoiceRateHz;
    }
  }
  return angles;
}

void Floor(benchmark::State& state) {
  const Samples samples = QuietRoom();
  const auto angles = Angles();
  for ([[maybe_unused]] const auto iteration : state) {
    for (const auto& anglesOfTone : angles) {
      double re = 0.0;
      double im = 0.0;
      for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
        double sine = 0.0;
        double cosine = 0.0;
        sincos(anglesOfTone[n], &sine, &cosine);
        re += samples[n] * cosine;
        im += samples[n] * sine;
      }
      benchmark::DoNotOptimize(re);
      benchmark::DoNotOptimize(im);
    }
  }
}
BENCHMARK(Floor);

void Deliver(benchmark::State& state) {
  constexpr std::int32_t kBeyondAmbient = 40;
  const Samples samples = QuietRoom();
  std::array<std::uint8_t, 2 * kVoiceBlockSamples> bytes{};
  for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
    bytes[2 * n] = static_cast<std::uint8_t>(samples[n] & 0xFF);
    bytes[2 * n + 1] = static_cast<std::uint8_t>(samples[n] >> 8);
  }
  const VoiceData record{static_cast<std::uint16_t>(bytes.size()), bytes.data()};
  orvex::tools::DumpNothing();
  OrvexReceiver receiver{OrvexReceiverCallbacks{}};
  receiver.StartBTRecoder();
  while (receiver.GetBufferCount() < kBeyondAmbient) {
    OrvexReceiver::m_ReceiveBTAudioDataCB(&record, &receiver);
  }
  for ([[maybe_unused]] const auto iteration : state) {
    OrvexReceiver::m_ReceiveBTAudioDataCB(&record, &receiver);
  }
  if (receiver.GetSoundType() != 1 || receiver.GetDirection() != 0) {
    state.SkipWithError("expected what a quiet room gives: an ambient level and no tone");
  }
}

void BlockLogOff(benchmark::State& state) {
  Deliver(state);
}
BENCHMARK(BlockLogOff);

void BlockLogFormatted(benchmark::State& state) {
  std::array<char, 512> sink{};
  logSink = &sink;
  Deliver(state);
  logSink = nullptr;
  if (sink[0] == '\0') {
    state.SkipWithError("no line was formatted");
  }
}
BENCHMARK(BlockLogFormatted);

}  // namespace

int system_log_print(LogBuffer /*buffer*/, LogPriority /*priority*/, const char* /*tag*/, const char* format, ...) {
  if (logSink == nullptr) {
    return 0;
  }
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(logSink->data(), logSink->size(), format, arguments);
  va_end(arguments);
  benchmark::DoNotOptimize(logSink->data());
  return length;
}

BENCHMARK_MAIN();
