// The message of an error with its cause.
#include "pipewire/client/pipewire_error.h"

#include <cstring>

namespace orvex::pipewire {

PipeWireError::PipeWireError(const std::string& what, int error)
    : std::runtime_error("PipeWire: " + what + ": " + std::strerror(error)) {}

}  // namespace orvex::pipewire
