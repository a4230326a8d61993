// What goes wrong between a program and the PipeWire daemon.
#pragma once

#include <stdexcept>
#include <string>

namespace orvex::pipewire {

class PipeWireError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
  // `error`: an errno.
  PipeWireError(const std::string& what, int error);
};

}  // namespace orvex::pipewire
