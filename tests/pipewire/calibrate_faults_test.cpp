// What orvex-pc says and leaves when something goes wrong while it calibrates.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <optional>

#include "pipewire/client/pc_config.h"
#include "pipewire/living_room.h"
#include "pipewire/pc_run.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;

constexpr double kOldMs = 25.0;
// News of the service's run, and of orvex-pc's own listening.
constexpr char kListens[] = "ambient noise";
constexpr char kListensAgain[] = "listening once more";

class CalibrateFaults : public PcTest {
protected:
  void EnterRoom(const RoomWays& ways = {100.0, 10.0}) {
    m_Room = std::make_unique<LivingRoom>(ways);
    m_Room->SetDelay(kOldMs);
  }
  // Starts a calibration; returns when it says `news`.
  void CalibrateUntil(const char* news) {
    m_Calibrate = StartPc(m_Room->GetDaemon(), {"calibrate"});
    ASSERT_TRUE(m_Room->GetDaemon().WaitForLog("pc-calibrate", news)) << m_Room->GetDaemon().LogOf("pc-calibrate");
  }
  PcOutcome Finish() { return FinishPc(m_Room->GetDaemon(), *m_Calibrate, "calibrate"); }
  void ExpectNothingLeft() {
    for (const char* node : {"orvex-pc", "orvex-voice"}) {
      EXPECT_TRUE(m_Room->GetClient().WaitForNoNode(node)) << node;
    }
    EXPECT_NEAR(kOldMs, m_Room->GetDelay(), 0.05);
  }

  std::unique_ptr<LivingRoom> m_Room;
  std::unique_ptr<Process> m_Calibrate;
};

TEST_F(CalibrateFaults, AMicrophoneThatGoesWhileTheServiceListens) {
  EnterRoom();
  CalibrateUntil(kListens);
  m_Room->RemoveMicrophone();
  const PcOutcome outcome = Finish();
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_THAT(outcome.log, HasSubstr("no_microphone: the microphone \"microphone\" went away"));
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, AMicrophoneThatGoesWhileItListensOnceMore) {
  EnterRoom();
  CalibrateUntil(kListensAgain);
  m_Room->RemoveMicrophone();
  const PcOutcome outcome = Finish();
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_THAT(outcome.log, HasSubstr("no_microphone: the microphone \"microphone\" "));
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, ADelayedOutputThatGoes) {
  EnterRoom();
  CalibrateUntil(kListensAgain);
  m_Room->RemoveDelayed();
  const PcOutcome outcome = Finish();
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_THAT(outcome.log, HasSubstr("the second listening gave no difference: 17 kHz is heard"));
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, AnOutputThatIsNotThere) {
  EnterRoom();
  m_Room->RemoveDelayed();
  const PcOutcome outcome = RunPc(m_Room->GetDaemon(), {"calibrate", "--json"});
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_EQ("failed", outcome.result["verdict"].asString()) << outcome.log;
  EXPECT_THAT(outcome.result["reason"].asString(), HasSubstr("the output \"soundbar\" is not there: switch it on"));
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, ADelayLineThatGoes) {
  EnterRoom();
  CalibrateUntil(kListensAgain);
  m_Room->StopDelay();
  const PcOutcome outcome = Finish();
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_THAT(outcome.log, HasSubstr("failed: "));
  EXPECT_THAT(outcome.log, HasSubstr("the old delay of 25.0 ms cannot be put back"));
}

TEST_F(CalibrateFaults, ADaemonThatGoesWhileTheServiceListens) {
  EnterRoom();
  CalibrateUntil(kListens);
  m_Room->StopDaemon();
  const PcOutcome outcome = Finish();
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_THAT(outcome.log, testing::AnyOf(HasSubstr("PipeWire has ended"), HasSubstr("went away")));
}

TEST_F(CalibrateFaults, AnInterruptPutsTheOldDelayBack) {
  EnterRoom();
  CalibrateUntil(kListensAgain);
  m_Calibrate->Signal(SIGINT);
  const PcOutcome outcome = Finish();
  EXPECT_EQ(128 + SIGINT, outcome.exitCode);
  EXPECT_THAT(outcome.log, HasSubstr("interrupted"));
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, AHeadsetDoesNotReach19Kilohertz) {
  RoomWays ways;
  ways.microphoneHz = 16000;
  EnterRoom(ways);
  const PcOutcome outcome = RunPc(m_Room->GetDaemon(), {"calibrate", "--json"});
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_EQ("no_microphone", outcome.result["verdict"].asString()) << outcome.log;
  EXPECT_THAT(outcome.result["reason"].asString(), HasSubstr("samples at 16000 Hz and cannot hear 19 kHz"));
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, AMutedMicrophoneGivesDigitalSilence) {
  RoomWays ways;
  ways.noise = 0.0F;
  EnterRoom(ways);
  const PcOutcome outcome = RunPc(m_Room->GetDaemon(), {"calibrate", "--json"});
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_EQ("no_microphone", outcome.result["verdict"].asString()) << outcome.log;
  EXPECT_THAT(outcome.result["reason"].asString(), HasSubstr("digital silence"));
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, WhenTheDelayedOutputIsTheLaterOneItSaysWhatToSwap) {
  EnterRoom({10.0, 60.0});
  const PcOutcome outcome = RunPc(m_Room->GetDaemon(), {"calibrate", "--json"});
  EXPECT_EQ(1, outcome.exitCode);
  EXPECT_EQ("out_of_range", outcome.result["verdict"].asString()) << outcome.log;
  EXPECT_THAT(outcome.result["reason"].asString(), HasSubstr("swap reference and delayed"));
  EXPECT_NEAR(75.0, outcome.result["before_ms"].asDouble(), 0.5);
  ExpectNothingLeft();
}

TEST_F(CalibrateFaults, AnotherProgramThatRecordsTheMicrophoneDoesNotMatter) {
  EnterRoom();
  const auto other = StartPc(m_Room->GetDaemon(), {"calibrate"});
  ASSERT_TRUE(m_Room->GetDaemon().WaitForLog("pc-calibrate", kListens));
  const auto recorder =
      m_Room->GetDaemon().Run("recorder", "/usr/bin/pw-record", {"--target", "microphone", "/dev/null"});
  const PcOutcome outcome = FinishPc(m_Room->GetDaemon(), *other, "calibrate");
  EXPECT_EQ(0, outcome.exitCode) << outcome.log;
  EXPECT_THAT(outcome.log, HasSubstr("aligned: "));
}

TEST_F(CalibrateFaults, AComputerThatIsNotSetUpIsTold) {
  EnterRoom();
  std::filesystem::remove(m_Room->GetDaemon().GetConfigFolder() / "pc.json");
  const PcOutcome outcome = RunPc(m_Room->GetDaemon(), {"calibrate"});
  EXPECT_NE(0, outcome.exitCode);
  EXPECT_THAT(outcome.log, HasSubstr("orvex-pc setup"));
}

}  // namespace
}  // namespace orvex::integration
