#include "pc/computer.h"

#include <fmt/core.h>
#include <poll.h>
#include <string.h>

#include <algorithm>
#include <atomic>
#include <cmath>

#include "pc/sound_player.h"
#include "pipewire/client/delay_node.h"
#include "run/debug_files.h"
#include "testsound/generator.h"

namespace orvex::tools {
namespace {

using pipewire::ThreadLoop;
using std::chrono::milliseconds;

constexpr milliseconds kQuiet(300);
// A card's clock has settled 3 s after it begins; the service's first burst comes 1.1 s after its start.
constexpr milliseconds kAfterRest(2000);
// Before the test sound, for the noise.
constexpr milliseconds kBeforeSound(400);
// After the sound's own end, for the way to the microphone, besides the delay. With the silence at the sound's end that
// is longer than two pairs are apart: so it shows that no further burst comes.
constexpr milliseconds kAfterSound(500);
constexpr milliseconds kStartPatience(3000);
constexpr milliseconds kReportPatience(3000);
// A signal is noticed this late while a sound plays.
constexpr milliseconds kLook(50);
// 19 kHz needs twice that, and the filters of converters some room.
constexpr std::uint32_t kLeastRateHz = 40000;

}  // namespace

Computer::Computer(const pipewire::PcConfig& config, std::filesystem::path service, RunSignals& signals,
                   Callbacks callbacks)
    : m_Config(config), m_Service(std::move(service)), m_Signals(signals), m_Callbacks(std::move(callbacks)) {}

Computer::~Computer() {
  const ThreadLoop::Lock lock(m_Daemon.GetLoop());
  m_Cycles.reset();
}

void Computer::Check() {
  const std::vector<AudioNode> nodes = ListAudioNodes(m_Daemon);
  CheckOutput(nodes, m_Config.reference);
  CheckOutput(nodes, m_Config.delayed);
  CheckMicrophone(nodes);
}

void Computer::CheckOutput(const std::vector<AudioNode>& nodes, const std::string& name) {
  const AudioNode* const output = FindAudioNode(nodes, AudioNodeKind::kOutput, name);
  if (output == nullptr) {
    throw CommandError(
        fmt::format("the output \"{}\" is not there: switch it on, or choose with \"orvex-pc setup\" "
                    "among {}",
                    name, NamesOf(nodes, AudioNodeKind::kOutput)));
  }
  if (output->isMuted.value_or(false) || output->volume == 0) {
    throw CommandError(fmt::format("the output \"{}\" is {}: turn it up", name,
                                   output->isMuted.value_or(false) ? "muted" : "at volume 0"));
  }
  m_HaveRested = m_HaveRested || output->state != "running";
}

void Computer::CheckMicrophone(const std::vector<AudioNode>& nodes) const {
  const AudioNode* const microphone = FindAudioNode(nodes, AudioNodeKind::kMicrophone, m_Config.microphone);
  if (microphone == nullptr) {
    throw MicrophoneProblem(
        fmt::format("the microphone \"{}\" is not there: plug it in, or choose with \"orvex-pc "
                    "setup\" among {}",
                    m_Config.microphone, NamesOf(nodes, AudioNodeKind::kMicrophone)));
  }
  if (microphone->isMuted.value_or(false) || microphone->volume == 0) {
    throw MicrophoneProblem(fmt::format("the microphone \"{}\" is {}: turn it up", m_Config.microphone,
                                        microphone->isMuted.value_or(false) ? "muted" : "at volume 0"));
  }
  if (microphone->rateHz && *microphone->rateHz < kLeastRateHz) {
    throw MicrophoneProblem(
        fmt::format("the microphone \"{}\" samples at {} Hz and cannot hear 19 kHz, expected at "
                    "least {} Hz: choose another one, not that of a headset in use for calls",
                    m_Config.microphone, *microphone->rateHz, kLeastRateHz));
  }
}

void Computer::WaitWhileListening(const Recorder& recorder, milliseconds duration) {
  const auto end = std::chrono::steady_clock::now() + duration;
  while (!recorder.IsGone()) {
    if (const int number = m_Signals.Interruption(); number != 0) {
      throw Interrupted(std::string("interrupted: ") + ::strsignal(number));
    }
    const auto left = std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      return;
    }
    pollfd signal{m_Signals.Fd(), POLLIN, 0};
    ::poll(&signal, 1, static_cast<int>(std::min(left, kLook).count()));
  }
}

void Computer::WaitForLastSound(const Recorder& recorder) {
  WaitWhileListening(recorder, kAfterSound + milliseconds(std::llround(GetDelayMs())));
}

VoiceSamples Computer::Prepare() {
  m_Awake.emplace(m_Daemon);
  Recorder recorder(m_Config.microphone);
  WaitWhileListening(recorder, m_HaveRested ? kAfterRest : kQuiet);
  WatchCycles();
  return recorder.Finish();
}

ServiceRun Computer::RunService() {
  Recorder recorder(m_Config.microphone);
  const double delayBefore = GetDelayMs();
  std::atomic<std::size_t> changedAt{SIZE_MAX};
  const DelayLineProxy watch(m_Daemon, [&](std::optional<double> delayMs) {
    if (delayMs && *delayMs != delayBefore && changedAt == SIZE_MAX) {
      changedAt = recorder.GetCount();
    }
  });
  LogFollower follower([this] { return DelayInForce(); });
  const timespec begin = FileTimeNow();
  ServiceRun run;
  run.ending = orvex::tools::RunService({m_Service}, m_Signals, [&](const std::string& line) {
    m_Callbacks.onLogLine(line);
    if (const auto news = follower.Follow(line)) {
      m_Callbacks.onNews(*news);
    }
    return true;
  });
  run.report = follower.GetReport();
  ForgetForeignFiles(run.report, begin);
  RemoveDebugFiles(run.report);
  WaitForLastSound(recorder);
  run.heard = recorder.Finish();
  run.changedAt = std::min<std::size_t>(changedAt, run.heard.size());
  return run;
}

// Cards that begin may miss a cycle; that is not counted.
void Computer::WatchCycles() {
  const ThreadLoop::Lock lock(m_Daemon.GetLoop());
  m_Cycles = std::make_unique<pipewire::CycleWatch>(m_Daemon.GetConnection(), [this] { m_Daemon.GetLoop().Notify(); });
}

// The profiler collects its reports for some time: those of all that was heard have come with the first later one. As
// the outputs are kept awake there is one, unless the daemon has no profiler.
std::uint64_t Computer::CountLosses() {
  const ThreadLoop::Lock lock(m_Daemon.GetLoop());
  if (!m_Cycles) {
    return 0;
  }
  const auto& drivers = m_Cycles->GetReport().GetDrivers();
  const std::int64_t nowNs = std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
  if (m_Cycles->HasProfiler()) {
    m_Daemon.WaitUntil(
        [&] {
          return std::any_of(drivers.begin(), drivers.end(),
                             [&](const auto& driver) { return driver.second.lastNs > nowNs; });
        },
        kReportPatience);
  }
  std::uint64_t losses = 0;
  for (const auto& [name, driver] : drivers) {
    losses += driver.late;
  }
  return losses;
}

std::optional<std::int64_t> Computer::DelayInForce() {
  try {
    return std::llround(GetDelayMs());
  } catch (const CommandError&) {
    return std::nullopt;
  }
}

VoiceSamples Computer::PlayAndListen() {
  Recorder recorder(m_Config.microphone);
  WaitWhileListening(recorder, kBeforeSound);
  Play(recorder);
  WaitForLastSound(recorder);
  return recorder.Finish();
}

void Computer::Play(const Recorder& recorder) {
  const SoundDesign design;
  const auto limit = milliseconds(std::llround(design.DurationMs())) + kStartPatience;
  const auto end = std::chrono::steady_clock::now() + limit;
  std::unique_ptr<SoundPlayer> player;
  const auto release = [&] {
    const ThreadLoop::Lock lock(m_Daemon.GetLoop());
    player.reset();
  };
  try {
    {
      const ThreadLoop::Lock lock(m_Daemon.GetLoop());
      player = std::make_unique<SoundPlayer>(m_Daemon.GetConnection(), pipewire::kTestSink, GenerateSound(design),
                                             [this] { m_Daemon.GetLoop().Notify(); });
    }
    bool hasPlayed = false;
    while (!hasPlayed && std::chrono::steady_clock::now() < end) {
      WaitWhileListening(recorder, milliseconds(0));
      const ThreadLoop::Lock lock(m_Daemon.GetLoop());
      hasPlayed = m_Daemon.WaitUntil([&] { return player->HasPlayed() || !player->GetProblem().empty(); }, kLook);
      if (!player->GetProblem().empty()) {
        throw CommandError(player->GetProblem());
      }
    }
    if (!hasPlayed) {
      throw CommandError("the test sound was not played to its end: is orvex-delay connected to both outputs?");
    }
  } catch (...) {
    release();
    throw;
  }
  release();
}

}  // namespace orvex::tools
