// Mute and volume of an output.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "pipewire/client/node_proxy.h"
#include "pipewire/client/sound_props.h"
#include "pipewire/device_route.h"
#include "pipewire/session.h"

namespace orvex::pipewire {

// A card's output has them in the card's route, where the card's own volume control is set, too; any other output has
// them in the node's own parameters. Made and used in Session::Do().
class OutputSound {
public:
  // `node`: its name. Throws PipeWireError when it is not there.
  OutputSound(Session& session, const std::string& node);
  OutputSound(const OutputSound&) = delete;
  OutputSound& operator=(const OutputSound&) = delete;

  // Both values are there.
  const SoundProps& Get() const;
  // Returns when they are in force. Throws PipeWireError.
  void Set(const SoundProps& wanted);

private:
  std::optional<RoutePlace> FindRoute() const;

  Session& m_Session;
  const std::string m_Name;
  Properties m_Properties;
  SoundProps m_NodeSound;
  std::unique_ptr<NodeProxy> m_Node;
  std::unique_ptr<DeviceRoute> m_Route;  // null: the output has none
};

}  // namespace orvex::pipewire
