// A node of the graph that takes and gives sound by ports of one channel each, and computes in this process.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "pipewire/client/connection.h"

struct spa_pod;

namespace orvex::pipewire {

// One cycle of the graph.
struct Cycle {
  static constexpr std::size_t kMaximumPorts = 8;

  std::uint32_t frames = 0;
  std::uint32_t rateHz = 0;
  std::uint64_t startNs = 0;   // CLOCK_MONOTONIC
  std::uint32_t clock = 0;     // which one drives the graph
  std::uint64_t position = 0;  // frames that this clock has counted at the start
  // In the order of the node's description; nullptr: nothing is linked there.
  std::array<const float*, kMaximumPorts> in{};
  std::array<float*, kMaximumPorts> out{};
};

class SoundProcessor {
public:
  virtual ~SoundProcessor() = default;
  // On the data thread, which may have real-time priority: no allocation, no lock, no system call.
  virtual void OnCycle(const Cycle& cycle) = 0;
};

// Made, used and destroyed on the loop's thread, or with the loop locked.
class FilterNode {
public:
  struct Description {
    std::string name;  // "node.name"
    Properties properties{};
    std::vector<std::string> inputs{};  // "port.name"
    std::vector<std::string> outputs{};
    const spa_pod* props = nullptr;  // first value of the Props parameter; nullptr: none
    // Somebody sets a parameter.
    std::function<void(std::uint32_t parameter, const spa_pod* value)> onParameter = [](std::uint32_t, const spa_pod*) {
    };
    std::function<void(const std::string& reason)> onError = [](const std::string&) {};
  };

  // Throws PipeWireError.
  FilterNode(const Connection& connection, Description description, SoundProcessor& processor);
  ~FilterNode();
  FilterNode(const FilterNode&) = delete;
  FilterNode& operator=(const FilterNode&) = delete;

  // SPA_ID_INVALID until the daemon has made the node.
  std::uint32_t GetId() const;
  // What others read as the Props parameter from now on.
  void TellProps(const spa_pod* props);

private:
  struct State;
  std::unique_ptr<State> m_State;
};

}  // namespace orvex::pipewire
