// Reads and sets the delay of the orvex-delay that runs.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "pipewire/client/connection.h"
#include "pipewire/client/node_proxy.h"

namespace orvex::pipewire {

// Used on the loop's thread, or with the loop locked.
class DelayControl : private RegistryListener {
public:
  // `onChange`: called on the loop's thread when what GetMs() answers may have changed, and when a value that was set
  // has been taken.
  DelayControl(Connection& connection, std::function<void()> onChange);
  ~DelayControl() override;
  DelayControl(const DelayControl&) = delete;
  DelayControl& operator=(const DelayControl&) = delete;

  // The delay that is in force; empty: no orvex-delay runs, or it has not told yet.
  std::optional<double> GetMs() const;
  // How often the delay was told; orvex-delay tells it after each Set(), also when it stays the same.
  unsigned GetReports() const;
  // Asks for another delay. False: no orvex-delay runs.
  bool Set(double delayMs);

private:
  void OnAdded(const Object& object) override;
  void OnRemoved(const Object& object) override;
  void Bind(std::uint32_t id);

  Connection& m_Connection;
  std::function<void()> m_OnChange;
  std::unique_ptr<NodeProxy> m_Node;
  std::optional<double> m_DelayMs;
  unsigned m_Reports = 0;
};

}  // namespace orvex::pipewire
