// orvex-service-pc as a process, on a computer in a living room.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "pipewire/client/pc_config.h"
#include "pipewire/living_room.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;
using testing::Not;

class Service : public testing::Test {
protected:
  void SetUp() override {
    if (std::string(ORVEX_PIPEWIRE_PLUGIN_FILE).empty()) {
      GTEST_SKIP() << "PipeWire's plug-in for libasound is not there; script/pipewire-plugin fetches it";
    }
  }

  void TearDown() override {
    for (const char* const name : {"dump", "result"}) {
      const std::string file = std::string("/tmp/audio_") + name + "_" + std::to_string(m_ServiceId) + "_1";
      std::filesystem::remove(file);
      std::filesystem::remove(file + ".csv");
    }
  }

  void EnterRoom(const RoomWays& ways) { m_Room = std::make_unique<LivingRoom>(ways); }

  void Start() {
    m_Service = m_Room->GetDaemon().Run("service", ORVEX_SERVICE_PC_PROGRAM, {},
                                        {{"ORVEX_PIPEWIRE_PLUGIN", ORVEX_PIPEWIRE_PLUGIN_FILE}});
    m_ServiceId = m_Service->GetId();
  }
  ProcessEnding Run(const std::string& name, const std::vector<std::string>& arguments) const {
    return m_Room->GetDaemon().Run(name, ORVEX_SERVICE_PC_PROGRAM, arguments)->WaitForEnd();
  }
  std::string Log() const { return m_Room->GetDaemon().LogOf("service"); }
  // The service's own limit is 10 s, and the rest of the sound.
  void ExpectEndInOrder() {
    const ProcessEnding ending = m_Service->WaitForEnd();
    EXPECT_EQ(ending.exitCode, 0) << Describe(ending) << "\n" << Log();
  }
  bool WaitForLog(const std::string& text) const { return m_Room->GetDaemon().WaitForLog("service", text); }

  std::unique_ptr<LivingRoom> m_Room;
  std::unique_ptr<Process> m_Service;
  pid_t m_ServiceId = 0;
};

TEST_F(Service, RefusesArgumentsAndAnswersForHelp) {
  EnterRoom({});
  EXPECT_EQ(Run("refused", {"--delay"}).exitCode, 2);
  EXPECT_THAT(m_Room->GetDaemon().LogOf("refused"), HasSubstr("unknown argument \"--delay\""));
  EXPECT_EQ(Run("help", {"--help"}).exitCode, 0);
  EXPECT_THAT(m_Room->GetDaemon().LogOf("help"), HasSubstr("Usage: orvex-service-pc"));
}

TEST_F(Service, RunsOnceAtATime) {
  EnterRoom({});
  Start();
  ASSERT_TRUE(WaitForLog("Start bt audio recorder"));
  EXPECT_EQ(Run("second", {}).exitCode, 3);
  EXPECT_THAT(m_Room->GetDaemon().LogOf("second"), HasSubstr("another service runs in this session"));
  m_Service->Signal(SIGTERM);
  ExpectEndInOrder();
}

// The grid of the remote's blocks, and one millisecond for rounding.
constexpr double kToleranceMs = 17.5;

TEST_F(Service, DelaysTheEarlyOutputByTheDifference) {
  EnterRoom({70.0, 10.0});
  m_Room->SetDelay(100.0);
  Start();
  ExpectEndInOrder();
  EXPECT_THAT(Log(), HasSubstr("terminate=done"));
  EXPECT_NEAR(m_Room->GetDelay(), 60.0, kToleranceMs);
}

TEST_F(Service, SaysThatAMicrophoneWithoutAnySoundIsMuted) {
  EnterRoom({10.0, 10.0, 0.0F});
  Start();
  EXPECT_TRUE(WaitForLog("the microphone \"microphone\" gives digital silence"));
  ExpectEndInOrder();
}

TEST_F(Service, EndsInOrderWithoutAMicrophone) {
  EnterRoom({});
  m_Room->RemoveMicrophone();
  Start();
  ExpectEndInOrder();
  EXPECT_THAT(Log(), HasSubstr("the microphone \"microphone\" is not there"));
  EXPECT_THAT(Log(), HasSubstr("Fail to start bt audio [ret = -19]"));
  EXPECT_THAT(Log(), HasSubstr("terminate=bt_fail"));
}

TEST_F(Service, EndsInOrderWhenTheMicrophoneIsNoMicrophone) {
  EnterRoom({});
  pipewire::WritePcConfig(m_Room->GetDaemon().GetConfigFolder() / "pc.json", {"television", "soundbar", "driver"});
  Start();
  ExpectEndInOrder();
  EXPECT_THAT(Log(), HasSubstr("the microphone \"driver\" cannot be recorded: "));
  EXPECT_THAT(Log(), HasSubstr("Fail to start bt audio [ret = -5]"));
}

TEST_F(Service, EndsInOrderWithoutADaemon) {
  EnterRoom({});
  m_Room->StopDaemon();
  Start();
  ExpectEndInOrder();
  EXPECT_THAT(Log(), HasSubstr("Fail to start bt audio [ret = -19]"));
}

TEST_F(Service, EndsInOrderWhenTheMicrophoneGoesDuringARecording) {
  EnterRoom({});
  Start();
  ASSERT_TRUE(WaitForLog("completed ambient noise"));
  m_Room->RemoveMicrophone();
  ExpectEndInOrder();
  EXPECT_THAT(Log(), HasSubstr("the microphone \"microphone\" is gone"));
  EXPECT_THAT(Log(), Not(HasSubstr("terminate=done")));
}

TEST_F(Service, EndsInOrderWhenTheDaemonGoesDuringARecording) {
  EnterRoom({});
  Start();
  ASSERT_TRUE(WaitForLog("completed ambient noise"));
  m_Room->StopDaemon();
  ExpectEndInOrder();
  EXPECT_THAT(Log(), Not(HasSubstr("terminate=done")));
}

TEST_F(Service, EndsInOrderWhenTheDaemonHangs) {
  EnterRoom({});
  Start();
  ASSERT_TRUE(WaitForLog("completed ambient noise"));
  m_Room->GetDaemon().Signal(SIGSTOP);
  ExpectEndInOrder();
  m_Room->GetDaemon().Signal(SIGCONT);
}

}  // namespace
}  // namespace orvex::integration
