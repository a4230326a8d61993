// orvex-delay between the outputs "television" and "soundbar" of a private daemon.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "pipewire/client/delay_control.h"
#include "pipewire/private_daemon.h"
#include "pipewire/program_stream.h"
#include "pipewire/sound_probe.h"
#include "pipewire/test_client.h"

namespace orvex::integration {

constexpr char kReference[] = "television";
constexpr char kDelayed[] = "soundbar";

// Of a run whose outputs are both there.
constexpr std::size_t kLinks = 8;

class DelayTest : public testing::Test {
protected:
  DelayTest();
  ~DelayTest() override;

  // Returns when its links are there.
  void StartDelay();
  std::unique_ptr<Process> RunDelay(const std::string& log) const;
  // How it ended, see Describe().
  std::string EndDelay(int signal);
  // From orvex-delay to outputs, as TestClient::GetLinks() has them.
  std::vector<std::string> OutputLinks() const;
  bool WaitForOutputLinks(const std::vector<std::string>& links);
  // Until orvex-delay has taken it; answers what is in force then.
  std::optional<double> SetDelay(double delayMs);
  std::optional<double> WaitForDelay();
  void WriteState(const std::string& text) const;
  std::string ReadState() const;
  // Of the programme and of the test sound, left and right; equal to `frames` when all is well.
  Offsets Measure();
  // The daemon ends, and another one begins.
  void RestartDaemon();

  void Connect();
  void Disconnect();

  PrivateDaemon m_Daemon;
  std::unique_ptr<TestClient> m_Client;
  std::unique_ptr<pipewire::DelayControl> m_Control;
  std::unique_ptr<Process> m_Delay;
  std::unique_ptr<SoundProbe> m_Probe;
};

inline Offsets AllOf(std::int64_t frames) {
  return Offsets(4, frames);
}

}  // namespace orvex::integration
