// orvex-delay when it cannot begin, and what it says then.
#include <fstream>

#include "pipewire/delay_run.h"

namespace orvex::integration {
namespace {

class DelayUsage : public DelayTest {
protected:
  // Ending and output of a run with these arguments.
  std::string Run(const std::vector<std::string>& arguments) {
    const std::unique_ptr<Process> run = m_Daemon.Run("usage", ORVEX_DELAY_PROGRAM, arguments);
    const std::string ending = Describe(run->WaitForEnd());
    return ending + ": " + m_Daemon.LogOf("usage");
  }
};

TEST_F(DelayUsage, HelpAndVersion) {
  EXPECT_THAT(Run({"--help"}), testing::StartsWith("exit code 0: Plays what programs play to the sink"));
  EXPECT_THAT(Run({"--version"}), testing::HasSubstr("orvex-delay 0."));
}

TEST_F(DelayUsage, AnUnknownArgument) {
  EXPECT_THAT(Run({"--delay"}), testing::StartsWith("exit code 2: orvex-delay: unknown option \"--delay\"\n"));
}

TEST_F(DelayUsage, AFileThatNamesOneOutputTwice) {
  const std::string file = m_Daemon.GetConfigFolder() / "pc.json";
  std::ofstream(file) << R"({"reference":"a","delayed":"a","microphone":"m"})";
  EXPECT_EQ(Run({}), "exit code 2: orvex-delay: " + file +
                         ": \"reference\" and \"delayed\" are both \"a\", expected two outputs\n");
}

TEST_F(DelayUsage, NoDaemon) {
  Disconnect();
  m_Daemon.Stop();
  EXPECT_EQ(Run({}), "exit code 1: orvex-delay: PipeWire: no connection to the daemon: Host is down\n");
}

TEST_F(DelayUsage, AStateThatIsNoDelayStopsNothing) {
  WriteState("loud\n");
  StartDelay();
  EXPECT_EQ(WaitForDelay(), 0.0);
  EXPECT_THAT(m_Daemon.LogOf("delay"),
              testing::HasSubstr("/delay: \"loud\", expected milliseconds from 0 to 2000; beginning with 0\n"));
}

}  // namespace
}  // namespace orvex::integration
