// orvex-delay on a running PipeWire daemon: sound, delay, outputs that come and go, ends.
#include <signal.h>

#include "pipewire/delay_run.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;

using Delay = DelayTest;

const std::vector<std::string> kReferenceLinks{"orvex-delay:reference_FL television:playback_FL",
                                               "orvex-delay:reference_FR television:playback_FR"};
const std::vector<std::string> kDelayedLinks{"orvex-delay:delayed_FL soundbar:playback_FL",
                                             "orvex-delay:delayed_FR soundbar:playback_FR"};

TEST_F(Delay, ProgrammeAndTestSoundAreDelayedAlikeToTheSample) {
  StartDelay();
  EXPECT_EQ(Measure(), AllOf(0));
  EXPECT_EQ(SetDelay(100.0), 100.0);
  EXPECT_EQ(Measure(), AllOf(4800));
  EXPECT_EQ(SetDelay(37.5), 37.5);
  EXPECT_EQ(Measure(), AllOf(1800));
}

TEST_F(Delay, AnImpossibleDelayIsClampedAndToldAsWhatIsInForce) {
  StartDelay();
  EXPECT_EQ(SetDelay(2000.5), 2000.0);
  EXPECT_EQ(ReadState(), "2000\n");
  EXPECT_EQ(SetDelay(-1.0), 0.0);
  EXPECT_EQ(SetDelay(50.0), 50.0);
  EXPECT_EQ(SetDelay(std::nan("")), 50.0);
  EXPECT_THAT(m_Daemon.LogOf("delay"),
              AllOf(HasSubstr("orvex-delay: a delay of 2000.5 ms is not possible, 2000 ms instead\n"),
                    HasSubstr("orvex-delay: a delay of -1 ms is not possible, 0 ms instead\n"),
                    HasSubstr("orvex-delay: a delay that is no number is refused\n")));
}

TEST_F(Delay, IsKeptOverItsOwnRestart) {
  StartDelay();
  EXPECT_EQ(SetDelay(40.0), 40.0);
  EXPECT_EQ(EndDelay(SIGTERM), "exit code 0");
  StartDelay();
  EXPECT_EQ(WaitForDelay(), 40.0);
  EXPECT_EQ(Measure(), AllOf(1920));
}

TEST_F(Delay, IsKeptOverARestartOfTheDaemon) {
  StartDelay();
  EXPECT_EQ(SetDelay(25.0), 25.0);
  RestartDaemon();
  EXPECT_EQ(Describe(m_Delay->WaitForEnd()), "exit code 1");
  EXPECT_THAT(m_Daemon.LogOf("delay"), HasSubstr("orvex-delay: the PipeWire daemon is gone\n"));
  StartDelay();
  EXPECT_EQ(WaitForDelay(), 25.0);
  EXPECT_EQ(Measure(), AllOf(1200));
}

TEST_F(Delay, AnOutputThatComesBackIsLinkedAgainWithItsDelay) {
  StartDelay();
  EXPECT_EQ(SetDelay(10.0), 10.0);
  EXPECT_EQ(Measure(), AllOf(480));
  m_Client->RemoveOutput(kDelayed);
  EXPECT_TRUE(WaitForOutputLinks(kReferenceLinks)) << testing::PrintToString(OutputLinks());
  m_Client->AddOutput(kDelayed);
  EXPECT_EQ(Measure(), AllOf(480));
  EXPECT_EQ(WaitForDelay(), 10.0);
}

TEST_F(Delay, BeginsWithoutItsOutputsAndWaitsForThem) {
  m_Client->RemoveOutput(kReference);
  m_Client->RemoveOutput(kDelayed);
  ASSERT_TRUE(m_Client->WaitForNoNode(kReference) && m_Client->WaitForNoNode(kDelayed));
  m_Delay = RunDelay("delay");
  ASSERT_TRUE(m_Client->WaitForLinks(kLinks - 4));
  m_Client->AddOutput(kDelayed);
  EXPECT_TRUE(WaitForOutputLinks(kDelayedLinks));
  m_Client->AddOutput(kReference);
  EXPECT_EQ(Measure(), AllOf(0));
  EXPECT_THAT(m_Daemon.LogOf("delay"), HasSubstr("orvex-delay: soundbar: not there, waiting for it\n"));
}

// So that nothing is computed, and cards may be switched off.
TEST_F(Delay, RestsWithItsOutputsWhileNothingPlays) {
  StartDelay();
  const auto isEach = [&](bool isRunning) {
    const std::vector<std::string> nodes{"orvex", "orvex-delay", kReference, kDelayed};
    return std::all_of(nodes.begin(), nodes.end(),
                       [&](const std::string& node) { return m_Client->WaitForRunning(node, isRunning); });
  };
  EXPECT_TRUE(isEach(false));
  {
    const ProgramStream stream(*m_Client, "orvex");
    EXPECT_TRUE(isEach(true));
  }
  EXPECT_TRUE(isEach(false));
}

// By the time that the session manager has moved a program's stream to another output it would have moved ours.
TEST_F(Delay, IsNotLinkedToAnotherOutputWhenItsOwnIsGone) {
  StartDelay();
  m_Client->SetDefaultOutput(kDelayed);
  ProgramStream stream(*m_Client, kReference);
  ASSERT_TRUE(stream.WaitForLinkTo(kReference));
  m_Client->RemoveOutput(kReference);
  ASSERT_TRUE(stream.WaitForLinkTo(kDelayed));
  EXPECT_EQ(OutputLinks(), kDelayedLinks);
}

TEST_F(Delay, ASecondOneSaysSoAndEnds) {
  StartDelay();
  const std::unique_ptr<Process> second = RunDelay("second");
  EXPECT_EQ(Describe(second->WaitForEnd()), "exit code 1");
  EXPECT_EQ(m_Daemon.LogOf("second"), "orvex-delay: another orvex-delay is running\n");
  EXPECT_EQ(Measure(), AllOf(0));
}

class DelayEnd : public DelayTest, public testing::WithParamInterface<int> {};

TEST_P(DelayEnd, LeavesNothingInTheDaemon) {
  StartDelay();
  EXPECT_EQ(Measure(), AllOf(0));
  m_Probe.reset();
  EXPECT_EQ(EndDelay(GetParam()), GetParam() == SIGKILL ? "signal 9" : "exit code 0");
  for (const char* node : {"orvex-delay", "orvex", "orvex-test"}) {
    EXPECT_TRUE(m_Client->WaitForNoNode(node)) << node;
  }
  EXPECT_TRUE(m_Client->WaitForLinks(0));
}

INSTANTIATE_TEST_SUITE_P(Signals, DelayEnd, testing::Values(SIGTERM, SIGINT, SIGKILL),
                         [](const auto& row) { return std::string(::sigabbrev_np(row.param)); });

}  // namespace
}  // namespace orvex::integration
