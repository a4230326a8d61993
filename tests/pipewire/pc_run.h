// orvex-pc as a process on a computer in a living room.
#pragma once

#include <gtest/gtest.h>
#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "pipewire/private_daemon.h"

namespace orvex::integration {

struct PcOutcome {
  int exitCode = -1;
  Json::Value result;  // when the output is one object, without a line on stderr
  std::string log;     // both
};

// The output is in daemon.LogOf("pc-" + arguments.front()).
std::unique_ptr<Process> StartPc(const PrivateDaemon& daemon, const std::vector<std::string>& arguments);
PcOutcome FinishPc(const PrivateDaemon& daemon, Process& process, const std::string& command);
PcOutcome RunPc(const PrivateDaemon& daemon, const std::vector<std::string>& arguments);

// A calibration was refused because the computer was too busy.
bool SaysThatSoundWasLost(const PcOutcome& outcome);

// Skipped without PipeWire's plug-in for libasound.
class PcTest : public testing::Test {
protected:
  void SetUp() override;
};

}  // namespace orvex::integration
