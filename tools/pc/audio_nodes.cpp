#include "pc/audio_nodes.h"

#include <pipewire/keys.h>
#include <spa/param/audio/format-utils.h>
#include <spa/param/param.h>

#include <algorithm>
#include <list>
#include <tuple>

#include "pipewire/client/delay_node.h"
#include "pipewire/client/node_proxy.h"
#include "pipewire/client/sound_props.h"
#include "pipewire/client/volume_scale.h"

namespace orvex::tools {
namespace {

using pipewire::NodeProxy;
using pipewire::Object;
using pipewire::Properties;

std::optional<AudioNodeKind> KindOf(const Object& object) {
  const std::string mediaClass = object.Get(PW_KEY_MEDIA_CLASS);
  const std::string name = object.Get(PW_KEY_NODE_NAME);
  if (object.kind != Object::Kind::kNode || name == pipewire::kProgrammeSink || name == pipewire::kTestSink) {
    return std::nullopt;
  }
  if (mediaClass == "Audio/Sink" || mediaClass == "Audio/Duplex") {
    return AudioNodeKind::kOutput;
  }
  return mediaClass.rfind("Audio/Source", 0) == 0 ? std::optional(AudioNodeKind::kMicrophone) : std::nullopt;
}

// A node that is not in use tells which rates it can have: of several, none is known.
void ReadRate(const spa_pod* format, AudioNode& node) {
  std::int32_t rate = 0;
  if (spa_pod_parse_object(format, SPA_TYPE_OBJECT_Format, nullptr, SPA_FORMAT_AUDIO_rate, SPA_POD_Int(&rate)) >= 0 &&
      rate > 0) {
    node.rateHz = static_cast<std::uint32_t>(rate);
  }
}

void ReadSound(const spa_pod* props, AudioNode& node) {
  const pipewire::SoundProps sound = pipewire::ReadSoundProps(props);
  node.isMuted = sound.isMuted;
  if (!sound.channelVolumes.empty()) {
    node.volume = pipewire::VolumeOf(*std::max_element(sound.channelVolumes.begin(), sound.channelVolumes.end()));
  }
}

NodeProxy::Callbacks ReaderOf(AudioNode& node) {
  NodeProxy::Callbacks callbacks;
  callbacks.onState = [&](const std::string& state) { node.state = state; };
  callbacks.onParameter = [&](std::uint32_t parameter, const spa_pod* value) {
    if (parameter == SPA_PARAM_Props) {
      ReadSound(value, node);
    } else {
      ReadRate(value, node);
    }
  };
  return callbacks;
}

}  // namespace

std::vector<AudioNode> ListAudioNodes(Daemon& daemon) {
  const pipewire::ThreadLoop::Lock lock(daemon.GetLoop());
  std::list<AudioNode> nodes;
  {
    std::list<NodeProxy> proxies;
    for (const auto& [id, object] : daemon.GetConnection().GetObjects()) {
      if (const auto kind = KindOf(object)) {
        AudioNode node;
        node.kind = *kind;
        node.name = object.Get(PW_KEY_NODE_NAME);
        node.description = object.Get(PW_KEY_NODE_DESCRIPTION);
        nodes.push_back(node);
        proxies.emplace_back(daemon.GetConnection(), id,
                             std::vector<std::uint32_t>{SPA_PARAM_Props, SPA_PARAM_EnumFormat, SPA_PARAM_Format},
                             ReaderOf(nodes.back()));
      }
    }
    // The first answer brings what the nodes are, the second one the parameters that were asked for then.
    daemon.RoundTrip();
    daemon.RoundTrip();
  }
  std::vector<AudioNode> sorted(nodes.begin(), nodes.end());
  std::sort(sorted.begin(), sorted.end(),
            [](const AudioNode& a, const AudioNode& b) { return std::tie(a.kind, a.name) < std::tie(b.kind, b.name); });
  return sorted;
}

const AudioNode* FindAudioNode(const std::vector<AudioNode>& nodes, AudioNodeKind kind, const std::string& name) {
  const auto node = std::find_if(nodes.begin(), nodes.end(),
                                 [&](const AudioNode& one) { return one.kind == kind && one.name == name; });
  return node == nodes.end() ? nullptr : &*node;
}

std::string NamesOf(const std::vector<AudioNode>& nodes, AudioNodeKind kind) {
  std::vector<std::string> names;
  for (const AudioNode& node : nodes) {
    if (node.kind == kind) {
      names.push_back(node.name);
    }
  }
  std::string text = names.empty() ? "none" : names.front();
  for (std::size_t n = 1; n < names.size(); ++n) {
    text += (n + 1 == names.size() ? " or " : ", ") + names[n];
  }
  return text;
}

}  // namespace orvex::tools
