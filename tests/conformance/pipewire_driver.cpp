// The driver of the port for a living-room computer: a PipeWire daemon of its own, with two outputs, a microphone and
// orvex-delay.
#include <stdlib.h>

#include <fstream>
#include <memory>
#include <stdexcept>

#include "conformance/pieces_driver.h"
#include "conformance/stderr_log.h"
#include "linux/end_signals.h"
#include "pipewire/client/pc_config.h"
#include "pipewire/late_cycles.h"
#include "pipewire/living_room.h"
#include "pipewire/voice_window.h"

namespace orvex::conformance {
namespace {

namespace fs = std::filesystem;
using integration::LateCycles;
using integration::LivingRoom;

constexpr const char* kFolderVariable = "ORVEX_CONFORMANCE_FOLDER";

// The one computer of this process. A death test's child uses that of its parent.
class Computer {
public:
  Computer() {
    if (const char* const parents = getenv(kFolderVariable)) {
      m_Folder = parents;
      return;
    }
    // Of the test, not of the application: its threads are not there for the signals that end a run.
    port::HoldEndSignals();
    m_Room = std::make_unique<LivingRoom>();
    port::ReleaseEndSignals();
    m_Folder = m_Room->GetDaemon().GetStateFolder().parent_path().parent_path();
    setenv(kFolderVariable, m_Folder.c_str(), 1);
    setenv("ORVEX_RESOURCES", (m_Folder / "resources").c_str(), 1);
    unsetenv("NOTIFY_SOCKET");
  }

  const fs::path& GetFolder() const { return m_Folder; }
  LivingRoom& GetRoom() {
    if (!m_Room) {
      throw std::logic_error("a death test's child has no computer of its own");
    }
    return *m_Room;
  }
  // Everything that a test may have switched off is there again.
  void Repair() {
    if (m_Room) {
      m_Room->Repair();
    }
  }

private:
  fs::path m_Folder;
  std::unique_ptr<LivingRoom> m_Room;
};

Computer& TheComputer() {
  static Computer computer;
  return computer;
}

// Not among them, and why: kSelectSpeaker (both outputs are always heard), kPutTvState and kBreakTvService (there is no
// television service), kRefuseVoiceStart (a microphone is never busy with an earlier command).
std::set<Ability> Abilities() {
  return {Ability::kReadLog,           Ability::kSendTerminationSignal, Ability::kSettings,
          Ability::kPutSetting,        Ability::kSpoilSetting,          Ability::kBreakSettings,
          Ability::kReadEventRecords,  Ability::kBreakEventLog,         Ability::kSendMessage,
          Ability::kSoundManager,      Ability::kOutputDelay,           Ability::kVoice,
          Ability::kPlaceFile,         Ability::kShortenVoiceWindow,    Ability::kLoseVoiceBlocks,
          Ability::kBreakSoundManager, Ability::kBreakOutputDelay};
}

class PipeWireDriver : public PiecesDriver {
public:
  PipeWireDriver()
      : PiecesDriver(Abilities(), {TheComputer().GetFolder() / "state/orvex/settings",
                                   TheComputer().GetFolder() / "state/orvex/events.jsonl",
                                   TheComputer().GetFolder() / "run/orvex/messages.sock"}),
        m_State(TheComputer().GetFolder() / "state/orvex") {
    TheComputer().Repair();
    fs::remove_all(m_State / "settings");
    fs::remove_all(m_State / "events.jsonl");
    fs::create_directories(m_State / "settings");
  }
  ~PipeWireDriver() override { pipewire::SetVoiceWindow(pipewire::kVoiceWindowMs); }

  void PlaceFile(const std::string& fixedPath, const std::string& content) override {
    const fs::path file = (TheComputer().GetFolder() / "resources").string() + fixedPath;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }
  std::vector<LogRecord> LogRecords() const override { return m_Log.Records(); }
  void ShortenVoiceWindow(int windowMs) override { pipewire::SetVoiceWindow(windowMs); }
  void LoseVoiceBlocks() override { m_LateCycles = std::make_unique<LateCycles>(); }

  void Break(Ability service) override {
    switch (service) {
      case Ability::kBreakSoundManager:
        return TheComputer().GetRoom().RemoveReference();
      case Ability::kBreakOutputDelay:
        return TheComputer().GetRoom().StopDelay();
      default:
        return PiecesDriver::Break(service);
    }
  }

private:
  const fs::path m_State;
  StderrLog m_Log;
  std::unique_ptr<LateCycles> m_LateCycles;
};

}  // namespace

std::unique_ptr<PortDriver> MakePortDriver() {
  return std::make_unique<PipeWireDriver>();
}

}  // namespace orvex::conformance
