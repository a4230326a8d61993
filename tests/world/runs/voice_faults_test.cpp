// The remote's voice misbehaves: blocks of other sizes, lost, late, at once, too many, or from a microphone that is
// off.
#include <gmock/gmock.h>

#include "orvex/platform/remote_voice.h"
#include "support/voice_blocks.h"
#include "world/runs/expected_end.h"
#include "world/runs/good_room.h"
#include "world/runs/scripted_remote.h"

namespace {

using namespace orvex::runs;
using orvex::sim::RoomConfig;
using orvex::world::Lane;

struct Remote {
  const char* name;
  std::function<void(RoomConfig& room)> change;
  const char* terminate;
};

void PrintTo(const Remote& remote, std::ostream* out) {
  *out << remote.name;
}

class VoiceRoom : public testing::TestWithParam<Remote> {};

TEST_P(VoiceRoom, EndsAsItHasToAndKeepsAllRules) {
  ServiceRun run;
  PrepareGoodRun(run);
  RoomConfig room;
  GetParam().change(room);
  run.world.UseRoom(room);
  ExpectEnd(run, GetParam().terminate);
}

INSTANTIATE_TEST_SUITE_P(
    All, VoiceRoom,
    testing::Values(
        Remote{"JitterOfTwentyMs", [](RoomConfig& room) { room.voiceJitterMs = 20; }, "done"},
        Remote{"LosesSomeBlocks", [](RoomConfig& room) { room.voiceLossProbability = 0.05; }, "done"},
        Remote{"LosesAllBlocks", [](RoomConfig& room) { room.voiceLossProbability = 1; }, "etc"},
        Remote{"RateOffByOnePerMille", [](RoomConfig& room) { room.rateErrorPpm = 1000; }, "done"},
        // Each tone stands where nobody looks.
        Remote{"RateThreePerCentTooHigh", [](RoomConfig& room) { room.rateErrorPpm = 30000; }, "diff_fail"},
        // The lower tone stands where the neighbours are measured: all that is heard of the upper one is noisy.
        Remote{"RateThreePerCentTooLow", [](RoomConfig& room) { room.rateErrorPpm = -30000; }, "abnormal_input_fail"},
        Remote{"FallsSilentInTheAmbientPhase", [](RoomConfig& room) { room.silentAfterMs = 300; }, "etc"},
        Remote{"FallsSilentBeforeTheTones", [](RoomConfig& room) { room.silentAfterMs = 700; }, "diff_fail"},
        Remote{"ClosesItsVoiceWindowInTheAmbientPhase", [](RoomConfig& room) { room.voiceWindowMs = 300; }, "etc"},
        Remote{"ComesTwoSecondsLate", [](RoomConfig& room) { room.voiceLatencyMs = 2000; }, "done"},
        Remote{"HearsNothingAtAll", [](RoomConfig& room) { room.noiseDbfs.reset(); }, "diff_fail"},
        Remote{"HearsOnlyNoise", [](RoomConfig& room) { room.noiseDbfs = -20; }, "diff_fail"}),
    [](const auto& row) { return std::string(row.param.name); });

class VoiceBlocks : public testing::Test {
protected:
  VoiceBlocks() {
    PrepareGoodRun(run);
    remote.HearThreeBuffersLate();
  }
  // Delivers, beside what the remote sends, these bytes.
  void Deliver(const std::vector<std::uint8_t>& bytes) {
    const VoiceData record{static_cast<std::uint16_t>(bytes.size()), bytes.data()};
    run.world.Deliver(&record);
  }

  ServiceRun run;
  ScriptedRemote remote{run.world};
};

TEST_F(VoiceBlocks, NullRecordsAreCountedAndNotAnalysed) {
  for (const int block : {10, 11, 40, 51}) {
    remote.Hear(block, Heard::kLost);
  }
  ExpectEnd(run, "done");
  EXPECT_EQ(run.world.journal.Count("E2 voice_data is null."), 4);
  EXPECT_EQ(run.world.delayMs, 51U) << "the lost block between the tones counts";
}

TEST_F(VoiceBlocks, ShortOddAndEmptyBlocksAreReadAsFarAsTheyGo) {
  // Between buffers 44 and 45 of the script.
  run.world.scheduler.At(std::chrono::milliseconds(760), Lane::kElsewhere, [this] {
    for (const std::size_t size : {0U, 1U, 100U, 1535U}) {
      Deliver(std::vector<std::uint8_t>(size, 0));
    }
  });
  ExpectEnd(run, "done");
  EXPECT_EQ(run.world.journal.Count("I0 buffer: 54"), 1) << "the first tone";
  EXPECT_EQ(run.world.delayMs, 51U);
}

TEST_F(VoiceBlocks, AreIgnoredBeforeTheRemoteHasAccepted) {
  run.After("> bt_hid_set_audio_data_receive_cb() = 0", [this] {
    for (int i = 0; i < 40; ++i) {
      run.world.Deliver(orvex::test::Tone(17000, 5000));
    }
  });
  ExpectEnd(run, "done");
  EXPECT_EQ(run.world.journal.Count("I0 buffer: 1"), 1) << "the first one of the accepted recording";
  EXPECT_EQ(run.world.delayMs, 51U);
}

TEST_F(VoiceBlocks, ReachNobodyAfterTheStop) {
  bool isTaken = true;
  run.After("E0 Stop bt audio", [&] { isTaken = run.world.Deliver(orvex::test::Ambient()); });
  ExpectEnd(run, "done");
  EXPECT_FALSE(isTaken);
}

TEST_F(VoiceBlocks, ThatComeBetweenTheEndOfASyncAndTheStopAreAnalysedAndChangeNothing) {
  run.After("> pthread_join()", [this] { run.world.Deliver(orvex::test::Tone(19000, 6000)); });
  ExpectEnd(run, "done");
  EXPECT_EQ(run.world.journal.CountStartingWith("I0 (ruvo_19k)["), 2);
  EXPECT_EQ(run.world.journal.Count("E0 completed calculation of delay"), 1);
  EXPECT_EQ(run.world.delayMs, 100U - 49U) << "the first pair counts";
}

TEST_F(VoiceBlocks, InABurstAreWorthWhatTheyAreAtTheirTimes) {
  remote.EndAfter(0);
  run.world.scheduler.At(std::chrono::seconds(2), Lane::kElsewhere, [this] {
    for (int block = 1; block <= 60; ++block) {
      run.world.Deliver(block == 50   ? orvex::test::Tone(17000, 5000)
                        : block == 53 ? orvex::test::Tone(19000, 5000)
                                      : orvex::test::Ambient());
    }
  });
  ExpectEnd(run, "done");
  EXPECT_EQ(run.world.delayMs, 51U);
  // PLAY, END_SYNC and EXIT came at once, in this order.
  EXPECT_EQ(run.world.journal.Find("I0 ORVEX_PLAY_INAUDIBLE_SOUND").at, std::chrono::seconds(2));
  EXPECT_EQ(run.world.journal.Find("I0 ORVEX_EXIT").at, std::chrono::seconds(2));
}

TEST_F(VoiceBlocks, BeyondAHundredThousandAreCountedFromOneAgain) {
  remote.EndAfter(0);
  run.world.scheduler.At(std::chrono::milliseconds(100), Lane::kElsewhere, [this] {
    for (int block = 1; block <= 100'001; ++block) {
      run.world.Deliver(nullptr);
    }
  });
  ExpectEnd(run, "etc");
  EXPECT_EQ(run.world.journal.Count("I0 buffer: 100000"), 1);
  EXPECT_EQ(run.world.journal.Count("I0 buffer: 1"), 2);
  EXPECT_EQ(run.world.journal.Count("> bt_hid_send_rc_command(null, 03 10, 2) = 0"), 400) << "every 250 buffers";
}

TEST_F(VoiceBlocks, GoOnWhenTheRemoteRefusesToBeExtended) {
  remote.EndAfter(0);
  run.world.answers.OnCall("bt_hid_send_rc_command", 2, kVoiceInProgress);
  run.world.scheduler.At(std::chrono::milliseconds(100), Lane::kElsewhere, [this] {
    for (int block = 1; block <= 501; ++block) {
      run.world.Deliver(nullptr);
    }
  });
  ExpectEnd(run, "etc");
  EXPECT_EQ(run.world.journal.Count("E2 Fail bt_hid_send_rc_command(NULL, 0310, 2)"), 1);
  EXPECT_EQ(run.world.journal.Count("I0 [Recorder] Extend bt audio recorder"), 1);
}

}  // namespace
