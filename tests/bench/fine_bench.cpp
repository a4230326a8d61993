// Measures the fine reading of a recording, and what a reader costs to make.
#include <benchmark/benchmark.h>

#include "unit/tools/fine_recordings.h"

namespace {

using orvex::fine::FineReader;
using orvex::fine::Recording;

constexpr double kRecordingS = 3.3;

void MakeReader(benchmark::State& state) {
  for ([[maybe_unused]] const auto iteration : state) {
    const FineReader reader;
    benchmark::DoNotOptimize(&reader);
  }
}
BENCHMARK(MakeReader);

void Read(benchmark::State& state) {
  orvex::fine::HeardSound sound;
  sound.beginMs = 800.0;
  sound.differenceMs = 100.0;
  sound.lengthMs = kRecordingS * 1e3;
  const Recording recording = orvex::fine::MakeRecording(sound);
  const FineReader reader;
  bool isRead = true;
  for ([[maybe_unused]] const auto iteration : state) {
    isRead = reader.Read(orvex::fine::SamplesOf(recording)).differenceS.has_value() && isRead;
  }
  state.counters["recorded_s"] = kRecordingS;
  if (!isRead) {
    state.SkipWithError("expected a difference");
  }
}
BENCHMARK(Read);

}  // namespace

BENCHMARK_MAIN();
