// orvex-pc status: the chain from the programs to the two outputs.
#include <fmt/core.h>
#include <json/writer.h>
#include <pipewire/keys.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include "options/errors.h"
#include "output/standard_output.h"
#include "pc/audio_nodes.h"
#include "pc/commands.h"
#include "pc/delay_line_proxy.h"
#include "pc/last_calibration.h"
#include "pipewire/client/cycle_watch.h"
#include "pipewire/client/delay_node.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {
namespace {

using pipewire::Object;

// The profiler collects what it tells for so long, and longer on a busy computer.
constexpr std::chrono::milliseconds kReportPatience(3000);

// Links between the delay line and this node, one for each channel.
int LinksWith(Daemon& daemon, const std::string& name) {
  const pipewire::ThreadLoop::Lock lock(daemon.GetLoop());
  const Object* const line = daemon.GetConnection().FindNode(pipewire::kDelayNode);
  const Object* const node = daemon.GetConnection().FindNode(name);
  if (line == nullptr || node == nullptr) {
    return 0;
  }
  int count = 0;
  for (const auto& [id, object] : daemon.GetConnection().GetObjects()) {
    if (object.kind == Object::Kind::kLink) {
      const std::uint32_t from = object.GetId(PW_KEY_LINK_OUTPUT_NODE);
      const std::uint32_t to = object.GetId(PW_KEY_LINK_INPUT_NODE);
      count += (from == line->id && to == node->id) || (from == node->id && to == line->id) ? 1 : 0;
    }
  }
  return count;
}

Json::Value NodeStatus(Daemon& daemon, const std::vector<AudioNode>& nodes, AudioNodeKind kind,
                       const std::string& name) {
  const AudioNode* const node = FindAudioNode(nodes, kind, name);
  Json::Value status(Json::objectValue);
  status["name"] = name;
  status["state"] = node == nullptr ? "absent" : node->state;
  if (kind == AudioNodeKind::kOutput) {
    status["links"] = LinksWith(daemon, name);
  }
  return status;
}

// Of each driver of a graph since it was made, by name; null: nothing runs, or the daemon has no profiler.
Json::Value Xruns(Daemon& daemon, const std::vector<AudioNode>& nodes) {
  const bool isRunning =
      std::any_of(nodes.begin(), nodes.end(), [](const AudioNode& node) { return node.state == "running"; });
  const pipewire::ThreadLoop::Lock lock(daemon.GetLoop());
  const pipewire::CycleWatch watch(daemon.GetConnection(), [&] { daemon.GetLoop().Notify(); });
  const auto& drivers = watch.GetReport().GetDrivers();
  Json::Value xruns;
  if (isRunning && watch.HasProfiler()) {
    daemon.WaitUntil([&] { return !drivers.empty(); }, kReportPatience);
    for (const auto& [name, cycles] : drivers) {
      xruns[name] = cycles.xruns;
    }
  }
  return xruns;
}

Json::Value Status(Daemon& daemon, const pipewire::PcConfig& config) {
  const std::vector<AudioNode> nodes = ListAudioNodes(daemon);
  Json::Value status(Json::objectValue);
  status["delay_ms"] = Json::Value();
  try {
    status["delay_ms"] = DelayLineProxy(daemon).GetMs();
  } catch (const CommandError&) {
    // Stays null: it is not running.
  }
  status["programme_links"] = LinksWith(daemon, pipewire::kProgrammeSink);
  status["test_links"] = LinksWith(daemon, pipewire::kTestSink);
  status["reference"] = NodeStatus(daemon, nodes, AudioNodeKind::kOutput, config.reference);
  status["delayed"] = NodeStatus(daemon, nodes, AudioNodeKind::kOutput, config.delayed);
  status["microphone"] = NodeStatus(daemon, nodes, AudioNodeKind::kMicrophone, config.microphone);
  status["xruns"] = Xruns(daemon, nodes);
  status["last_calibration"] = LastCalibration();
  return status;
}

std::string NodeLine(const char* role, const Json::Value& node) {
  std::string text = fmt::format("{:<18}{}, {}", role, node["name"].asString(), node["state"].asString());
  if (node.isMember("links")) {
    text += node["links"].asInt() > 0 ? ", linked" : ", not linked";
  }
  return text + "\n";
}

std::string StatusText(const Json::Value& status) {
  std::string text =
      fmt::format("{:<18}{}\n", "delay line",
                  status["delay_ms"].isNull()
                      ? "not running: start it with \"systemctl --user start orvex-delay\", or in another terminal"
                      : fmt::format("{:.1f} ms", status["delay_ms"].asDouble()));
  text += NodeLine("reference output", status["reference"]);
  text += NodeLine("delayed output", status["delayed"]);
  text += NodeLine("microphone", status["microphone"]);
  std::string xruns;
  for (const std::string& driver : status["xruns"].getMemberNames()) {
    xruns += fmt::format("{}{} ({})", xruns.empty() ? "" : ", ", status["xruns"][driver].asInt(), driver);
  }
  text += fmt::format("{:<18}{}\n", "xruns",
                      xruns.empty() ? "not known: nothing plays, or PipeWire has no profiler" : xruns);
  const Json::Value& last = status["last_calibration"];
  std::string words = "none";
  if (!last.isNull()) {
    words = last["verdict"].asString() + ", " + last["time_utc"].asString().substr(0, 16) + " UTC";
    if (last["verdict"] == NameOf(PcVerdict::kAligned) && last["after_ms"].isNumeric()) {
      words += fmt::format(", {:+.1f} ms remained", last["after_ms"].asDouble());
    }
  }
  return text + fmt::format("{:<18}{}\n", "last calibration", words);
}

// The chain is complete: what programs play is heard from both outputs.
bool IsComplete(const Json::Value& status) {
  return !status["delay_ms"].isNull() && status["programme_links"].asInt() > 0 &&
         status["reference"]["links"].asInt() > 0 && status["delayed"]["links"].asInt() > 0;
}

int RunStatus(bool json) {
  const pipewire::PcConfig config = pipewire::ReadPcConfig(pipewire::PcConfigFile());
  Daemon daemon;
  const Json::Value status = Status(daemon, config);
  StandardOutput out;
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "  ";
  out.Write(json ? Json::writeString(writer, status) + "\n" : StatusText(status));
  return IsComplete(status) && !out.HasFailed() ? kExitGood : kExitFailed;
}

}  // namespace

void AddStatusCommand(Command& program) {
  const auto json = std::make_shared<bool>(false);
  Command& command = program.AddCommand("status", "show the delay, both outputs and the last calibration");
  command.AddFlag("--json", *json, "print one JSON object");
  command.AddExample("orvex-pc status --json");
  command.SetAction([=] { return RunStatus(*json); });
}

}  // namespace orvex::tools
