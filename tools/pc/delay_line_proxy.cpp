#include "pc/delay_line_proxy.h"

#include <fmt/core.h>

#include <cmath>
#include <utility>

#include "options/errors.h"
#include "pipewire/client/delay_node.h"

namespace orvex::tools {
namespace {

using pipewire::ThreadLoop;

constexpr std::chrono::seconds kDelayPatience(2);
// Of a graph as slow as 8 kHz: the line delays by whole samples.
constexpr double kOneSampleMs = 1e3 / 8000.0;

constexpr char kNoDelayLine[] =
    "orvex-delay is not running: start it with \"systemctl --user start orvex-delay\", or in another terminal";

}  // namespace

DelayLineProxy::DelayLineProxy(Daemon& daemon, Listener onChange) : m_Daemon(daemon) {
  const ThreadLoop::Lock lock(m_Daemon.GetLoop());
  m_Control =
      std::make_unique<pipewire::DelayControl>(m_Daemon.GetConnection(), [this, onChange = std::move(onChange)] {
        onChange(m_Control->GetMs());
        m_Daemon.GetLoop().Notify();
      });
}

DelayLineProxy::~DelayLineProxy() {
  const ThreadLoop::Lock lock(m_Daemon.GetLoop());
  m_Control.reset();
}

double DelayLineProxy::GetMs() {
  const ThreadLoop::Lock lock(m_Daemon.GetLoop());
  m_Daemon.RoundTrip();  // what another program has just set is told by then
  if (m_Daemon.GetConnection().FindNode(pipewire::kDelayNode) == nullptr ||
      !m_Daemon.WaitUntil([&] { return m_Control->GetMs().has_value(); }, kDelayPatience)) {
    throw CommandError(kNoDelayLine);
  }
  return *m_Control->GetMs();
}

void DelayLineProxy::SetMs(double delayMs) {
  const ThreadLoop::Lock lock(m_Daemon.GetLoop());
  if (!m_Control->Set(delayMs)) {
    throw CommandError(kNoDelayLine);
  }
  const auto isInForce = [&] {
    const std::optional<double> inForce = m_Control->GetMs();
    return inForce && std::abs(*inForce - delayMs) < kOneSampleMs;
  };
  if (!m_Daemon.WaitUntil(isInForce, kDelayPatience)) {
    throw CommandError(fmt::format("orvex-delay did not take a delay of {:.1f} ms", delayMs));
  }
}

}  // namespace orvex::tools
