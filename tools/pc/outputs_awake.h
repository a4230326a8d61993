// Keeps the outputs running: they rest, and are suspended, while nothing plays.
#pragma once

#include "pc/daemon.h"
#include "pipewire/client/filter_node.h"
#include "pipewire/client/link_keeper.h"

namespace orvex::tools {

// Plays silence to the test sink. Throws pipewire::PipeWireError.
class OutputsAwake : public pipewire::SoundProcessor {
public:
  explicit OutputsAwake(Daemon& daemon);
  ~OutputsAwake() override;
  OutputsAwake(const OutputsAwake&) = delete;
  OutputsAwake& operator=(const OutputsAwake&) = delete;

  void OnCycle(const pipewire::Cycle& cycle) override;

private:
  Daemon& m_Daemon;
  std::unique_ptr<pipewire::FilterNode> m_Silence;
  std::unique_ptr<pipewire::LinkKeeper> m_Link;
};

}  // namespace orvex::tools
