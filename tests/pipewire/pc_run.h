// orvex-pc as a process on a computer in a living room.
#pragma once

#include <gtest/gtest.h>
#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "pipewire/living_room.h"

namespace orvex::integration {

struct PcOutcome {
  int exitCode = -1;
  Json::Value result;  // when the output is one object, without a line on stderr
  std::string log;     // both
};

// The output is in room.GetDaemon().LogOf("pc-" + arguments.front()).
std::unique_ptr<Process> StartPc(LivingRoom& room, const std::vector<std::string>& arguments);
PcOutcome FinishPc(LivingRoom& room, Process& process, const std::string& command);
PcOutcome RunPc(LivingRoom& room, const std::vector<std::string>& arguments);

// Skipped without PipeWire's plug-in for libasound.
class PcTest : public testing::Test {
protected:
  void SetUp() override;
};

}  // namespace orvex::integration
