// orvex-pc devices: what setup can choose among.
#include <fmt/core.h>
#include <json/value.h>

#include <memory>

#include "linux/json_text.h"
#include "options/errors.h"
#include "output/standard_output.h"
#include "pc/audio_nodes.h"
#include "pc/commands.h"

namespace orvex::tools {
namespace {

const char* KindName(AudioNodeKind kind) {
  return kind == AudioNodeKind::kOutput ? "output" : "microphone";
}

template <typename Number>
Json::Value OrNull(const std::optional<Number>& value) {
  return value ? Json::Value(*value) : Json::Value();
}

std::string DevicesJson(const std::vector<AudioNode>& nodes) {
  std::string text;
  for (const AudioNode& node : nodes) {
    Json::Value object(Json::objectValue);
    object["kind"] = KindName(node.kind);
    object["name"] = node.name;
    object["description"] = node.description;
    object["rate_hz"] = OrNull(node.rateHz);
    object["volume"] = OrNull(node.volume);
    object["muted"] = OrNull(node.isMuted);
    object["in_use"] = node.state == "running";
    object["state"] = node.state;
    text += port::CompactJson(object) + "\n";
  }
  return text;
}

std::string DevicesTable(const std::vector<AudioNode>& nodes) {
  std::size_t width = sizeof "name";
  for (const AudioNode& node : nodes) {
    width = std::max(width, node.name.size());
  }
  std::string text = fmt::format("{:<10}  {:<{}}  {:>6}  {:>6}  {:<9}  description\n", "kind", "name", width, "rate",
                                 "volume", "state");
  for (const AudioNode& node : nodes) {
    const std::string rate = node.rateHz ? std::to_string(*node.rateHz) : "-";
    const std::string volume = node.isMuted.value_or(false) ? "muted"
                               : node.volume                ? std::to_string(*node.volume)
                                                            : "-";
    text += fmt::format("{:<10}  {:<{}}  {:>6}  {:>6}  {:<9}  {}\n", KindName(node.kind), node.name, width, rate,
                        volume, node.state, node.description);
  }
  return text;
}

int RunDevices(bool json) {
  Daemon daemon;
  const std::vector<AudioNode> nodes = ListAudioNodes(daemon);
  StandardOutput out;
  out.Write(json ? DevicesJson(nodes) : DevicesTable(nodes));
  return out.HasFailed() ? kExitFailed : kExitGood;
}

}  // namespace

void AddDevicesCommand(Command& program) {
  const auto json = std::make_shared<bool>(false);
  Command& command = program.AddCommand("devices", "list the outputs and microphones of this computer");
  command.AddFlag("--json", *json, "one JSON object a line");
  command.AddExample("orvex-pc devices");
  command.SetAction([=] { return RunDevices(*json); });
}

}  // namespace orvex::tools
