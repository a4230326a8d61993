// Each test has a daemon of its own.
#include "pipewire/delay_run.h"

#include <signal.h>

#include <fstream>
#include <iterator>

#include "pipewire/client/pc_config.h"

namespace orvex::integration {

DelayTest::DelayTest() {
  pipewire::WritePcConfig(m_Daemon.GetConfigFolder() / "pc.json", {kReference, kDelayed, "microphone"});
  Connect();
}

DelayTest::~DelayTest() {
  Disconnect();
}

void DelayTest::Connect() {
  m_Client = std::make_unique<TestClient>();
  EXPECT_TRUE(m_Client->WaitForNode(kReference) && m_Client->WaitForNode(kDelayed));
  const pipewire::ThreadLoop::Lock lock(m_Client->GetLoop());
  m_Control =
      std::make_unique<pipewire::DelayControl>(m_Client->GetConnection(), [this] { m_Client->GetLoop().Notify(); });
}

void DelayTest::Disconnect() {
  m_Probe.reset();
  if (m_Client) {
    const pipewire::ThreadLoop::Lock lock(m_Client->GetLoop());
    m_Control.reset();
  }
  m_Client.reset();
}

void DelayTest::StartDelay() {
  m_Delay = RunDelay("delay");
  ASSERT_TRUE(m_Client->WaitUntil([&] { return OutputLinks().size() == kLinks / 2; })) << m_Daemon.LogOf("delay");
}

std::unique_ptr<Process> DelayTest::RunDelay(const std::string& log) const {
  return m_Daemon.Run(log, ORVEX_DELAY_PROGRAM);
}

std::string DelayTest::EndDelay(int signal) {
  m_Delay->Signal(signal);
  return Describe(m_Delay->WaitForEnd());
}

std::vector<std::string> DelayTest::OutputLinks() const {
  std::vector<std::string> links;
  for (const std::string& link : m_Client->GetLinks()) {
    if (link.rfind("orvex-delay:", 0) == 0) {
      links.push_back(link);
    }
  }
  return links;
}

bool DelayTest::WaitForOutputLinks(const std::vector<std::string>& links) {
  return m_Client->WaitUntil([&] { return OutputLinks() == links; });
}

std::optional<double> DelayTest::SetDelay(double delayMs) {
  WaitForDelay();
  unsigned before = 0;
  {
    const pipewire::ThreadLoop::Lock lock(m_Client->GetLoop());
    before = m_Control->GetReports();
    m_Control->Set(delayMs);
  }
  m_Client->WaitUntil([&] { return m_Control->GetReports() > before; });
  return WaitForDelay();
}

std::optional<double> DelayTest::WaitForDelay() {
  m_Client->WaitUntil([&] { return m_Control->GetMs().has_value(); });
  const pipewire::ThreadLoop::Lock lock(m_Client->GetLoop());
  return m_Control->GetMs();
}

void DelayTest::WriteState(const std::string& text) const {
  std::filesystem::create_directories(m_Daemon.GetStateFolder());
  std::ofstream(m_Daemon.GetStateFolder() / "delay") << text;
}

std::string DelayTest::ReadState() const {
  std::ifstream in(m_Daemon.GetStateFolder() / "delay");
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

Offsets DelayTest::Measure() {
  if (!m_Probe) {
    m_Probe = std::make_unique<SoundProbe>(*m_Client, kReference, kDelayed);
  }
  return m_Probe->Measure();
}

void DelayTest::RestartDaemon() {
  Disconnect();
  m_Daemon.Stop();
  m_Daemon.Start();
  Connect();
}

}  // namespace orvex::integration
