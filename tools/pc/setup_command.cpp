// orvex-pc setup: which outputs and which microphone, and the delay line between them.
#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "options/errors.h"
#include "output/standard_output.h"
#include "pc/audio_nodes.h"
#include "pc/commands.h"
#include "pc/default_output.h"
#include "pc/kept_default.h"
#include "pc/user_service.h"
#include "pipewire/client/delay_node.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {
namespace {

struct SetupArguments {
  pipewire::PcConfig config;
  bool noService = false;
  bool isDefault = false;
};

struct Role {
  AudioNodeKind kind;
  const char* option;
  const char* question;
  std::string pipewire::PcConfig::*value;
};

const Role kRoles[] = {{AudioNodeKind::kOutput, "--reference",
                        "Which output is heard as it is, the later one of the two?", &pipewire::PcConfig::reference},
                       {AudioNodeKind::kOutput, "--delayed", "Which output is to be delayed, the earlier one?",
                        &pipewire::PcConfig::delayed},
                       {AudioNodeKind::kMicrophone, "--microphone", "Which microphone listens, where you sit?",
                        &pipewire::PcConfig::microphone}};

// The number of a line, or the name itself.
std::string Answer(const std::vector<AudioNode>& choices, const std::string& line) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error == std::errc() && end == line.data() + line.size() && number >= 1 && number <= choices.size()) {
    return choices[number - 1].name;
  }
  return line;
}

std::string Ask(const std::vector<AudioNode>& nodes, const Role& role) {
  std::vector<AudioNode> choices;
  std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(choices),
               [&](const AudioNode& node) { return node.kind == role.kind; });
  if (choices.empty()) {
    throw UsageError(fmt::format("{}: there is nothing to choose from: switch it on, or plug it in", role.option));
  }
  std::cerr << role.question << '\n';
  for (std::size_t n = 0; n < choices.size(); ++n) {
    std::cerr << fmt::format("{:>3}  {}  {}\n", n + 1, choices[n].name, choices[n].description);
  }
  std::string line;
  while (true) {
    std::cerr << "number: " << std::flush;
    if (!std::getline(std::cin, line)) {
      throw UsageError(std::string(role.option) + " is missing");
    }
    std::string name = Answer(choices, line);
    if (FindAudioNode(choices, role.kind, name) != nullptr) {
      return name;
    }
    std::cerr << fmt::format("\"{}\": expected a number from 1 to {}\n", line, choices.size());
  }
}

void Complete(const std::vector<AudioNode>& nodes, pipewire::PcConfig& config) {
  for (const Role& role : kRoles) {
    std::string& value = config.*role.value;
    if (value.empty() && ::isatty(STDIN_FILENO) != 0) {
      value = Ask(nodes, role);
    }
    if (value.empty()) {
      throw UsageError(fmt::format("{} is missing, expected {}", role.option, NamesOf(nodes, role.kind)));
    }
    if (FindAudioNode(nodes, role.kind, value) == nullptr) {
      throw UsageError(fmt::format("{} \"{}\": there is no such {}, expected {}", role.option, value,
                                   role.kind == AudioNodeKind::kOutput ? "output" : "microphone",
                                   NamesOf(nodes, role.kind)));
    }
  }
  if (config.reference == config.delayed) {
    throw UsageError(fmt::format("--reference and --delayed are both \"{}\", expected two outputs", config.reference));
  }
}

void MakeDefault(Daemon& daemon) {
  const std::string before = GetDefaultOutput(daemon);
  if (before != pipewire::kProgrammeSink) {
    KeepDefault(before);
    SetDefaultOutput(daemon, pipewire::kProgrammeSink);
  }
}

int RunSetup(SetupArguments arguments) {
  Daemon daemon;
  Complete(ListAudioNodes(daemon), arguments.config);
  const auto file = pipewire::PcConfigFile();
  pipewire::WritePcConfig(file, arguments.config);
  StandardOutput out;
  out.Write(file.string() + " is written\n");
  if (arguments.noService) {
    out.Write("start the delay line with \"orvex-delay\"; one that runs takes the choices when it is started again\n");
  } else {
    StartUserService();
    out.Write("orvex-delay runs, now and after each login\n");
  }
  if (arguments.isDefault) {
    MakeDefault(daemon);
    out.Write("programs play to \"Orvex\" unless they choose another output\n");
  }
  out.Write("next: orvex-pc calibrate\n");
  return out.HasFailed() ? kExitFailed : kExitGood;
}

// Completed with what there is.
ValueKind NodeOf(AudioNodeKind kind) {
  return value::Text("NODE", [=](const auto&) {
    Daemon daemon;
    std::vector<std::string> names;
    for (const AudioNode& node : ListAudioNodes(daemon)) {
      if (node.kind == kind) {
        names.push_back(node.name);
      }
    }
    return names;
  });
}

}  // namespace

void AddSetupCommand(Command& program) {
  const auto arguments = std::make_shared<SetupArguments>();
  Command& command = program.AddCommand(
      "setup", "choose the two outputs and the microphone, and start the delay line; asks for what is left out");
  pipewire::PcConfig& config = arguments->config;
  const ValueKind output = NodeOf(AudioNodeKind::kOutput);
  command.Add("--reference", config.reference, output, "the output that is heard as it is, the later one");
  command.Add("--delayed", config.delayed, output, "the output that is to be delayed, the earlier one");
  command.Add("--microphone", config.microphone, NodeOf(AudioNodeKind::kMicrophone), "the microphone that listens");
  command.AddFlag("--no-service", arguments->noService, "only write the file; orvex-delay is started by hand");
  command.AddFlag("--default", arguments->isDefault, "programs are to play to \"Orvex\" by default");
  command.AddExample("orvex-pc setup");
  command.AddExample("orvex-pc setup --reference television --delayed soundbar --microphone webcam");
  command.SetAction([=] { return RunSetup(*arguments); });
}

}  // namespace orvex::tools
