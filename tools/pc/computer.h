// The living room that this computer is in: its outputs, its microphone, orvex-delay and the calibration service.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "options/errors.h"
#include "pc/audio_nodes.h"
#include "pc/daemon.h"
#include "pc/delay_line_proxy.h"
#include "pc/living_room.h"
#include "pc/outputs_awake.h"
#include "pc/recorder.h"
#include "pipewire/client/cycle_watch.h"
#include "pipewire/client/pc_config.h"
#include "run/run_signals.h"

namespace orvex::tools {

// A signal asked for the end.
class Interrupted : public CommandError {
public:
  using CommandError::CommandError;
};

class Computer : public LivingRoom {
public:
  struct Callbacks {
    std::function<void(const std::string& news)> onNews;     // of the service's run
    std::function<void(const std::string& line)> onLogLine;  // of the service
  };

  // Throws CommandError when there is no PipeWire daemon.
  Computer(const pipewire::PcConfig& config, std::filesystem::path service, RunSignals& signals, Callbacks callbacks);
  ~Computer() override;
  Computer(const Computer&) = delete;
  Computer& operator=(const Computer&) = delete;

  // Both outputs and the microphone are there, switched on and fit. Throws MicrophoneProblem or CommandError.
  void Check();

  double GetDelayMs() override { return m_Delay.GetMs(); }
  void SetDelayMs(double delayMs) override { m_Delay.SetMs(delayMs); }
  VoiceSamples Prepare() override;
  ServiceRun RunService() override;
  VoiceSamples PlayAndListen() override;
  std::uint64_t CountLosses() override;

private:
  void CheckOutput(const std::vector<AudioNode>& nodes, const std::string& name);
  void CheckMicrophone(const std::vector<AudioNode>& nodes) const;
  std::optional<std::int64_t> DelayInForce();
  void WaitWhileListening(const Recorder& recorder, std::chrono::milliseconds duration);
  void WatchCycles();
  void WaitForLastSound(const Recorder& recorder);
  void Play(const Recorder& recorder);

  const pipewire::PcConfig m_Config;
  const std::filesystem::path m_Service;
  RunSignals& m_Signals;
  const Callbacks m_Callbacks;
  Daemon m_Daemon;
  DelayLineProxy m_Delay{m_Daemon};
  bool m_HaveRested = false;
  std::optional<OutputsAwake> m_Awake;
  std::unique_ptr<pipewire::CycleWatch> m_Cycles;  // since the outputs run; with the loop locked
};

}  // namespace orvex::tools
