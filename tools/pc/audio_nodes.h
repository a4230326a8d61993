// The outputs and microphones of this computer, as PipeWire has them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "pc/daemon.h"

namespace orvex::tools {

enum class AudioNodeKind { kOutput, kMicrophone };

// What is empty is not known.
struct AudioNode {
  AudioNodeKind kind = AudioNodeKind::kOutput;
  std::string name;         // "node.name", by which the commands take it
  std::string description;  // for people
  std::string state;        // "running": in use; "idle", "suspended"
  std::optional<std::uint32_t> rateHz;
  std::optional<bool> isMuted;
  std::optional<int> volume;  // 0 to 100, as the volume controls of desktops show it
};

// Sorted by kind and name; without the nodes of orvex-delay. Throws CommandError.
std::vector<AudioNode> ListAudioNodes(Daemon& daemon);

// nullptr: there is none of this name.
const AudioNode* FindAudioNode(const std::vector<AudioNode>& nodes, AudioNodeKind kind, const std::string& name);

// "a, b or c"; "none" when there is none of the kind.
std::string NamesOf(const std::vector<AudioNode>& nodes, AudioNodeKind kind);

}  // namespace orvex::tools
