// A run whose journal is compared with a golden one: a television, a remote that hears what it is told, and a sound.
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <string>

#include "support/wave_file.h"
#include "world/runs/golden_steps.h"
#include "world/runs/run_rules.h"
#include "world/runs/scripted_remote.h"
#include "world/runs/service_run.h"

namespace orvex::runs {

class GoldenRun : public testing::Test {
protected:
  using Workers = RunGolden::Workers;
  using EndRecord = RunGolden::EndRecord;
  using Consent = RunGolden::Consent;
  using Speaker = RunGolden::Speaker;

  static constexpr int kSoundFrames = 24000;
  using Sound = RunGolden::Sound;
  static constexpr Workers kBoth{true, Sound::kWritten};
  static constexpr Workers kRecorderAndEndedSound{true, Sound::kEnded};
  static constexpr Workers kRecorder{true, Sound::kNotStarted};
  static constexpr Workers kNobody{false, Sound::kNotStarted};

  // Does `action` on the main loop at this time.
  void AtMs(double milliseconds, const std::function<void()>& action) {
    run.world.scheduler.At(world::Time(static_cast<std::int64_t>(milliseconds * 1e6)), world::Lane::kMainLoop, action);
  }
  void RunToEnd() {
    ASSERT_TRUE(run.Start());
    ASSERT_TRUE(run.ToEnd());
  }
  void ExpectGolden() {
    EXPECT_TRUE(Agree(golden, run.world.journal));
    EXPECT_THAT(CheckRun(run), testing::IsEmpty());
  }

  test::SilentWave sound{kSoundFrames / 48000.0};
  ServiceRun run{sound.Path()};
  ScriptedRemote remote{run.world};
  RunGolden golden{[this](int block, double startMs) { return remote.DeliveredAtMs(block, startMs); }, kSoundFrames};
};

}  // namespace orvex::runs
