// The commands of orvex-pc beside the calibration.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "linux/json_text.h"
#include "pipewire/client/pc_config.h"
#include "pipewire/living_room.h"
#include "pipewire/pc_run.h"
#include "pipewire/program_stream.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;
using testing::Not;

class PcCommands : public PcTest {
protected:
  PcOutcome Run(const std::vector<std::string>& arguments) { return RunPc(m_Room.GetDaemon(), arguments); }
  std::filesystem::path ConfigFile() { return m_Room.GetDaemon().GetConfigFolder() / "pc.json"; }
  // The programs of the person are to play to this one.
  std::string DefaultOutput() {
    const std::string log = "pw-metadata-" + std::to_string(++m_Asked);
    const auto process = m_Room.GetDaemon().Run(log, "/usr/bin/pw-metadata", {"-n", "default"});
    static_cast<void>(process->WaitForEnd());
    std::istringstream lines(m_Room.GetDaemon().LogOf(log));
    std::string found;
    for (std::string line; std::getline(lines, line);) {
      if (line.find("'default.configured.audio.sink'") != std::string::npos) {
        found = line;
      }
    }
    return found;
  }

  LivingRoom m_Room;

private:
  int m_Asked = 0;
};

TEST_F(PcCommands, DevicesAreTheOutputsAndMicrophonesWithoutOurOwn) {
  const ProgramStream stream(m_Room.GetClient(), "orvex");
  ASSERT_TRUE(m_Room.GetClient().WaitForRunning("television", true));
  const PcOutcome outcome = Run({"devices", "--json"});
  EXPECT_EQ(0, outcome.exitCode);
  std::map<std::string, Json::Value> devices;
  std::istringstream lines(outcome.log);
  for (std::string line; std::getline(lines, line);) {
    const Json::Value device = port::ParseJsonObject(line, "a JSON object");
    devices[device["name"].asString()] = device;
  }
  ASSERT_EQ(4U, devices.size()) << outcome.log;
  EXPECT_EQ("output", devices["television"]["kind"].asString());
  EXPECT_EQ("output", devices["soundbar"]["kind"].asString());
  EXPECT_EQ("microphone", devices["microphone"]["kind"].asString());
  EXPECT_EQ(48000, devices["television"]["rate_hz"].asInt());
  EXPECT_EQ(100, devices["television"]["volume"].asInt());
  EXPECT_FALSE(devices["television"]["muted"].asBool());
  EXPECT_TRUE(devices["television"]["in_use"].asBool());
}

TEST_F(PcCommands, TheShellIsOfferedTheNodesThatSetupCanChoose) {
  EXPECT_EQ("television\t\n", Run({"--complete-words", "setup", "--reference", "tele"}).log);
  EXPECT_EQ("microphone\t\n", Run({"--complete-words", "setup", "--microphone", "mic"}).log);
}

// On a terminal of its own, which "script" gives it.
TEST_F(PcCommands, SetupAsksForWhatIsLeftOutUntilTheAnswerFits) {
  std::filesystem::remove(ConfigFile());
  const std::string asking = std::string(ORVEX_PC_PROGRAM) + " setup --reference soundbar --no-service";
  const auto process = m_Room.GetDaemon().Run(
      "asking", "/bin/sh", {"-c", "printf '9\\n3\\nmicrophone\\n' | script -qec '" + asking + "' /dev/null"});
  EXPECT_EQ("exit code 0", Describe(process->WaitForEnd()));
  const std::string log = m_Room.GetDaemon().LogOf("asking");
  EXPECT_THAT(log, Not(HasSubstr("Which output is heard as it is")));
  EXPECT_THAT(log, HasSubstr("Which output is to be delayed, the earlier one?"));
  EXPECT_THAT(log, HasSubstr("  3  television  Television (HDMI)"));
  EXPECT_THAT(log, HasSubstr("\"9\": expected a number from 1 to 3"));
  EXPECT_THAT(log, HasSubstr("Which microphone listens, where you sit?"));
  const pipewire::PcConfig config = pipewire::ReadPcConfig(ConfigFile());
  EXPECT_EQ("television", config.delayed);
  EXPECT_EQ("microphone", config.microphone);
}

TEST_F(PcCommands, SetupWritesWhatIsChosenAndRemoveTakesItBack) {
  std::filesystem::remove(ConfigFile());
  const std::string before = DefaultOutput();
  const PcOutcome setup = Run({"setup", "--reference", "soundbar", "--delayed", "television", "--microphone",
                               "microphone", "--no-service", "--default"});
  EXPECT_EQ(0, setup.exitCode) << setup.log;
  EXPECT_THAT(setup.log, HasSubstr("start the delay line with \"orvex-delay\""));
  const pipewire::PcConfig config = pipewire::ReadPcConfig(ConfigFile());
  EXPECT_EQ("soundbar", config.reference);
  EXPECT_EQ("television", config.delayed);
  EXPECT_EQ("microphone", config.microphone);
  EXPECT_THAT(DefaultOutput(), HasSubstr("\"name\":\"orvex\""));

  m_Room.StopDelay();
  const PcOutcome remove = Run({"remove"});
  EXPECT_EQ(0, remove.exitCode) << remove.log;
  EXPECT_FALSE(std::filesystem::exists(ConfigFile()));
  EXPECT_FALSE(std::filesystem::exists(m_Room.GetDaemon().GetStateFolder()));
  EXPECT_EQ(before, DefaultOutput());
}

TEST_F(PcCommands, RemoveKeepsTheOldDefaultOutputUntilItIsPutBack) {
  const std::filesystem::path kept = m_Room.GetDaemon().GetStateFolder() / "default_output";
  std::ofstream(kept) << "television\n";
  m_Room.StopDaemon();
  EXPECT_EQ(1, Run({"remove"}).exitCode);
  EXPECT_TRUE(std::filesystem::exists(kept));
}

TEST_F(PcCommands, SetupDoesNotAskAmongNothing) {
  m_Room.RemoveMicrophone();
  const std::string asking =
      std::string(ORVEX_PC_PROGRAM) + " setup --reference soundbar --delayed television --no-service";
  const auto process =
      m_Room.GetDaemon().Run("asking", "/bin/sh", {"-c", "printf '1\\n' | script -qec '" + asking + "' /dev/null"});
  EXPECT_EQ("exit code 2", Describe(process->WaitForEnd()));
  EXPECT_THAT(m_Room.GetDaemon().LogOf("asking"), HasSubstr("--microphone: there is nothing to choose from"));
}

TEST_F(PcCommands, CalibrateDoesNotPutThePageAndTheObjectIntoOneOutput) {
  const PcOutcome outcome = Run({"calibrate", "--json", "--report", "-"});
  EXPECT_EQ(2, outcome.exitCode);
  EXPECT_THAT(outcome.log, HasSubstr("--report -: takes standard output for the page, expected no --json beside it"));
}

TEST_F(PcCommands, SetupSaysWhatThereIsToChooseAmong) {
  struct Row {
    std::vector<std::string> arguments;
    const char* words;
  };
  const Row rows[] = {
      {{"--reference", "nowhere", "--delayed", "soundbar", "--microphone", "microphone"},
       "--reference \"nowhere\": there is no such output, expected driver, soundbar or television"},
      {{"--reference", "television", "--delayed", "soundbar", "--microphone", "soundbar"},
       "--microphone \"soundbar\": there is no such microphone, expected microphone"},
      {{"--reference", "television", "--delayed", "television", "--microphone", "microphone"},
       "--reference and --delayed are both \"television\", expected two outputs"},
      {{"--reference", "television", "--microphone", "microphone"}, "--delayed is missing, expected driver"}};
  const std::string before = port::CompactJson(pipewire::ReadPcConfig(ConfigFile()).reference);
  for (const Row& row : rows) {
    std::vector<std::string> arguments{"setup", "--no-service"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const PcOutcome outcome = Run(arguments);
    EXPECT_EQ(2, outcome.exitCode) << row.words;
    EXPECT_THAT(outcome.log, HasSubstr(row.words));
  }
  EXPECT_EQ(before, port::CompactJson(pipewire::ReadPcConfig(ConfigFile()).reference));
}

TEST_F(PcCommands, TheDelayIsSetAndShown) {
  const PcOutcome set = Run({"delay", "12.5"});
  EXPECT_EQ(0, set.exitCode);
  EXPECT_EQ("12.500 ms\n", set.log);
  EXPECT_NEAR(12.5, m_Room.GetDelay(), 0.01);
  const PcOutcome refused = Run({"delay", "2000.5"});
  EXPECT_EQ(2, refused.exitCode);
  EXPECT_NEAR(12.5, m_Room.GetDelay(), 0.01);
}

TEST_F(PcCommands, StatusShowsTheChain) {
  m_Room.SetDelay(40.0);
  const PcOutcome whole = Run({"status", "--json"});
  EXPECT_EQ(0, whole.exitCode) << whole.log;
  EXPECT_NEAR(40.0, whole.result["delay_ms"].asDouble(), 0.05);
  EXPECT_EQ(2, whole.result["programme_links"].asInt());
  EXPECT_EQ(2, whole.result["test_links"].asInt());
  EXPECT_EQ(2, whole.result["reference"]["links"].asInt());
  EXPECT_EQ(2, whole.result["delayed"]["links"].asInt());
  EXPECT_EQ("television", whole.result["reference"]["name"].asString());
  EXPECT_THAT(whole.result["xruns"].getMemberNames(), testing::ElementsAre("driver")) << whole.log;
  EXPECT_TRUE(whole.result["last_calibration"].isNull());
}

TEST_F(PcCommands, StatusKnowsNoLastCalibrationFromADamagedFile) {
  for (const char* const text : {"", "[]", "{}", R"({"verdict":{},"time_utc":"2026"})", R"({"verdict":"aligned"})"}) {
    std::ofstream(m_Room.GetDaemon().GetStateFolder() / "last_calibration.json") << text;
    const PcOutcome status = Run({"status"});
    EXPECT_EQ(0, status.exitCode) << status.log;
    EXPECT_THAT(status.log, HasSubstr("last calibration  none\n"));
  }
}

TEST_F(PcCommands, StatusShowsWhatLacks) {
  m_Room.RemoveDelayed();
  const PcOutcome lacking = Run({"status", "--json"});
  EXPECT_EQ(1, lacking.exitCode);
  EXPECT_EQ("absent", lacking.result["delayed"]["state"].asString()) << lacking.log;
  EXPECT_EQ(0, lacking.result["delayed"]["links"].asInt());
}

TEST_F(PcCommands, WithoutADelayLineTheySayWhatToStart) {
  m_Room.StopDelay();
  const PcOutcome status = Run({"status"});
  EXPECT_EQ(1, status.exitCode);
  EXPECT_THAT(status.log, HasSubstr("not running: start it"));
  const PcOutcome delay = Run({"delay"});
  EXPECT_EQ(1, delay.exitCode);
  EXPECT_THAT(delay.log, HasSubstr("orvex-delay is not running: start it"));
}

TEST_F(PcCommands, WithoutADaemonTheySaySo) {
  m_Room.StopDaemon();
  for (const char* command : {"devices", "delay", "status", "calibrate"}) {
    const PcOutcome outcome = Run({command});
    EXPECT_EQ(1, outcome.exitCode) << command;
    EXPECT_THAT(outcome.log, HasSubstr("PipeWire cannot be reached")) << command;
  }
}

}  // namespace
}  // namespace orvex::integration
