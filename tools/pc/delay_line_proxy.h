// The delay of the orvex-delay that runs, read and set from here.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "pc/daemon.h"
#include "pipewire/client/delay_control.h"

namespace orvex::tools {

class DelayLineProxy {
public:
  using Listener = std::function<void(std::optional<double> delayMs)>;

  // `onChange`: told of what is in force whenever it may be another delay; empty: no orvex-delay runs. Called on the
  // loop's thread.
  explicit DelayLineProxy(
      Daemon& daemon, Listener onChange = [](std::optional<double>) {});
  ~DelayLineProxy();
  DelayLineProxy(const DelayLineProxy&) = delete;
  DelayLineProxy& operator=(const DelayLineProxy&) = delete;

  // In force, in milliseconds. Throws CommandError when no orvex-delay runs.
  double GetMs();
  // Returns when it is in force. Throws CommandError.
  void SetMs(double delayMs);

private:
  Daemon& m_Daemon;
  std::unique_ptr<pipewire::DelayControl> m_Control;
};

}  // namespace orvex::tools
