#include "pc/outputs_awake.h"

#include <algorithm>

#include "pipewire/client/delay_node.h"

namespace orvex::tools {
namespace {

using pipewire::FilterNode;
using pipewire::LinkKeeper;

constexpr char kSilence[] = "orvex-pc-silence";
constexpr char kPort[] = "silence";

}  // namespace

OutputsAwake::OutputsAwake(Daemon& daemon) : m_Daemon(daemon) {
  const pipewire::ThreadLoop::Lock lock(m_Daemon.GetLoop());
  FilterNode::Description description;
  description.name = kSilence;
  description.outputs = {kPort};
  m_Silence = std::make_unique<FilterNode>(m_Daemon.GetConnection(), std::move(description), *this);
  m_Link = std::make_unique<LinkKeeper>(
      m_Daemon.GetConnection(),
      std::vector<pipewire::WantedLink>{{{kSilence, {kPort}}, {pipewire::kTestSink, {"playback_FL"}}}},
      LinkKeeper::Nodes::kRun, LinkKeeper::Callbacks{});
}

OutputsAwake::~OutputsAwake() {
  const pipewire::ThreadLoop::Lock lock(m_Daemon.GetLoop());
  m_Link.reset();
  m_Silence.reset();
}

void OutputsAwake::OnCycle(const pipewire::Cycle& cycle) {
  if (cycle.out[0] != nullptr) {
    std::fill_n(cycle.out[0], cycle.frames, 0.0F);
  }
}

}  // namespace orvex::tools
