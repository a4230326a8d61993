// An object that the daemon makes for this connection, such as a node or a link, and takes away with it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "pipewire/client/connection.h"

namespace orvex::pipewire {

// Gone with this object, and with the connection.
class CreatedObject {
public:
  // `onGone`: it could not be made, for the reason that is given, or it was removed; then there is no reason. Called at
  // most once; must not destroy this object. Throws PipeWireError.
  CreatedObject(const Connection& connection, const char* factory, const char* type, const Properties& properties,
                std::function<void(const std::string& error)> onGone);
  ~CreatedObject();
  CreatedObject(const CreatedObject&) = delete;
  CreatedObject& operator=(const CreatedObject&) = delete;

private:
  struct State;
  std::unique_ptr<State> m_State;
};

// A node that the daemon runs: what is played to it is at its monitor's ports. For a source, "media.class" is
// "Audio/Source/Virtual", and what is linked to its inputs is recorded from it.
std::unique_ptr<CreatedObject> CreateNullSink(const Connection& connection, Properties properties,
                                              std::function<void(const std::string& error)> onGone);

}  // namespace orvex::pipewire
