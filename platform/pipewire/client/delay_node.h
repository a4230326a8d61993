// The nodes of orvex-delay as others see them: names, and the parameter that carries the delay.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

struct spa_pod;

namespace orvex::pipewire {

constexpr char kDelayNode[] = "orvex-delay";
constexpr char kProgrammeSink[] = "orvex";  // applications play to it
constexpr char kTestSink[] = "orvex-test";  // left: reference output, right: delayed output

constexpr double kMaximumDelayMs = 2000.0;

// A Props parameter of the delay node: "params" holds the key "orvex:delay-ms" and a number. Reading it answers what is
// in force.
class DelayProps {
public:
  explicit DelayProps(double delayMs);
  // Lives as long as this object.
  const spa_pod* Get() const;

  // Empty when `props` holds no delay.
  static std::optional<double> Read(const spa_pod* props);

private:
  alignas(std::uint64_t) std::array<std::uint8_t, 256> m_Bytes{};
  const spa_pod* m_Pod;
};

}  // namespace orvex::pipewire
