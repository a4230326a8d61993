// Times come from the service's own log, which has microseconds; the rest from the system.
#include "bench/run_samples.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "integration/process.h"
#include "integration/service_run.h"
#include "integration/test_television.h"
#include "orvex/platform/remote_voice.h"
#include "orvex/sim/room_config.h"
#include "testsound/sound_design.h"
#include "world/runs/text_pattern.h"

namespace orvex::bench {
namespace {

using integration::LogLine;
using integration::Process;
using integration::ProcessEnding;
using integration::ServiceRun;
using integration::TestTelevision;
using runs::TextPattern;
using Lines = std::vector<LogLine>;
using Microseconds = std::chrono::microseconds;

constexpr int kBaseDelayMs = 300;  // more than any difference, so that each can be subtracted

double Ms(Microseconds time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

Microseconds Now() {
  return std::chrono::duration_cast<Microseconds>(std::chrono::system_clock::now().time_since_epoch());
}

void RequireSuccess(const ProcessEnding& ending, const std::string& program) {
  if (ending.exitCode != 0) {
    throw std::runtime_error(program + ": " + integration::Describe(ending) + ", expected exit code 0");
  }
}

template <typename Iterator>
Iterator Find(Iterator begin, Iterator end, const std::string& pattern) {
  const TextPattern expected(pattern);
  return std::find_if(begin, end, [&](const LogLine& line) { return expected.Matches(line.text); });
}

// Reads the log only when the service has ended: on a busy machine, reading meanwhile would be measured, too.
ProcessCost MeasureServiceTimes(const TestTelevision& television) {
  const Microseconds begin = Now();
  ServiceRun run(television, {});
  const ProcessEnding ending = run.WaitForEnd();
  RequireSuccess(ending, ORVEX_SERVICE_PROGRAM);
  ProcessCost cost;
  cost.processorMs = ending.processorSeconds * 1e3;
  cost.firstEventMs = Ms(Find(run.GetLines().begin(), run.GetLines().end(), "pEvent.type {d}")->time - begin);
  return cost;
}

double MeasureServiceMemoryKib(const TestTelevision& television) {
  ServiceRun run(television, {});
  // After this line the service only waits for the end of the sound.
  if (!run.WaitFor("ORVEX_EXIT")) {
    throw std::runtime_error("the service did not reach its last event");
  }
  const long peakKib = run.ReadPeakMemoryKib();
  RequireSuccess(run.WaitForEnd(), ORVEX_SERVICE_PROGRAM);
  return static_cast<double>(peakKib);
}

// Uses the ALSA configuration that a run of the service has left on this television.
ProcessCost MeasureBare(const TestTelevision& television) {
  const auto output = television.PathOf("bare.output");
  const Microseconds begin = Now();
  Process process({ORVEX_BARE_PROGRAM,
                   {ORVEX_SOUND_FILE},
                   {{"ORVEX_TV", television.GetDirectory().string()},
                    {"ALSA_CONFIG_PATH", television.PathOf("alsa.conf").string()}},
                   output,
                   television.PathOf("bare.errors")});
  const ProcessEnding ending = process.WaitForEnd();
  RequireSuccess(ending, ORVEX_BARE_PROGRAM);
  ProcessCost cost;
  Microseconds::rep firstJob = 0;
  if (!(std::ifstream(output) >> firstJob >> cost.memoryKib)) {
    throw std::runtime_error(output.string() + ": expected the time of the first job and the peak memory");
  }
  cost.processorMs = ending.processorSeconds * 1e3;
  cost.firstEventMs = Ms(Microseconds(firstJob) - begin);
  return cost;
}

double DrawDifferenceMs(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  const double size = std::uniform_real_distribution<double>(30.0, 280.0)(random);
  return std::bernoulli_distribution(0.5)(random) ? size : -size;
}

sim::RoomConfig RoomOf(std::uint64_t seed, double differenceMs) {
  constexpr double kLatencyMs = 20.0;
  const double lead = differenceMs - kBaseDelayMs;  // of the television's speaker, without the delay
  sim::RoomConfig room;
  room.tv.latencyMs = kLatencyMs + std::max(-lead, 0.0);
  room.optical.latencyMs = kLatencyMs + std::max(lead, 0.0);
  room.seed = seed;
  return room;
}

// The least time from the start of the recording to a result, in this order: the ambient phase, the transmission of
// its last block, the sound's lead-in, the way of the tone that comes first, the difference, a buffer for each tone
// to be collected in, and the transmission of the last block.
double DemandedMs(const sim::RoomConfig& room, double differenceMs) {
  constexpr int kAmbientBuffers = 35;
  constexpr int kToneBuffers = 2;
  const double airMs = room.tv.distanceM * 1e3 / sim::kSpeedOfSoundMPerS;
  const double firstWayMs = std::min(room.tv.latencyMs, room.optical.latencyMs + kBaseDelayMs) + airMs;
  return (kAmbientBuffers + kToneBuffers) * kVoiceBlockMs + 2 * room.voiceLatencyMs + tools::SoundDesign{}.leadInMs +
         firstWayMs + std::abs(differenceMs);
}

}  // namespace

CostPair MeasureCosts() {
  const TestTelevision television;
  CostPair pair;
  pair.service = MeasureServiceTimes(television);
  pair.service.memoryKib = MeasureServiceMemoryKib(TestTelevision());
  pair.bare = MeasureBare(television);
  return pair;
}

std::optional<RunTimes> MeasureRun(std::uint64_t seed) {
  const double differenceMs = DrawDifferenceMs(seed);
  const sim::RoomConfig room = RoomOf(seed, differenceMs);
  const TestTelevision television;
  television.SetRoom(room);
  television.Set("delay/spdif", std::to_string(kBaseDelayMs));
  ServiceRun run(television, {});
  RequireSuccess(run.WaitForEnd(), ORVEX_SERVICE_PROGRAM);

  const Lines& lines = run.GetLines();
  const auto recording = Find(lines.begin(), lines.end(), "Start bt audio recorder");
  const auto result = Find(recording, lines.end(), "{s}@ [RESULT]{s}");
  const auto written = Find(result, lines.end(), "after delay = {s}");
  // The line with which the receiver begins its work on a block.
  const auto delivery = Find(std::make_reverse_iterator(result), lines.rend(), "m_ReceiveBTAudioDataCB");
  if (written == lines.end() || delivery == lines.rend()) {
    return std::nullopt;
  }
  return RunTimes{Ms(written->time - delivery->time), Ms(written->time - recording->time),
                  DemandedMs(room, differenceMs)};
}

}  // namespace orvex::bench
