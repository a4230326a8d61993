// The driver of the port in virtual time: one world per test, whose remote lives in a quiet living room.
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "conformance/port_driver.h"
#include "orvex/platform/event_log.h"
#include "orvex/platform/output_delay.h"
#include "orvex/platform/settings.h"
#include "orvex/platform/sound_manager.h"
#include "orvex/platform/tv_service.h"
#include "world/world.h"

namespace orvex::conformance {
namespace {

using world::Lane;

// What the operations of a service answer when it cannot be reached.
struct Answer {
  const char* function;
  long result;
};
const std::map<Ability, std::vector<Answer>> kBrokenAnswers{
    {Ability::kBreakSettings, {{"settings_get_int", kSettingsUnreadable}, {"settings_subscribe", kSettingsUnreadable}}},
    {Ability::kBreakSoundManager,
     {{"sound_manager_get_device_mute", kSoundUnreachable},
      {"sound_manager_set_device_mute", kSoundUnreachable},
      {"sound_manager_get_tv_master_volume", kSoundUnreachable},
      {"sound_manager_set_tv_master_volume", kSoundUnreachable},
      {"sound_manager_get_speaker_selection", kSoundUnreachable}}},
    {Ability::kBreakOutputDelay,
     {{"avoc_get_delay", kDelayUnreachable},
      {"avoc_set_delay", kDelayUnreachable},
      {"getSpdifOutDelay", kAudioControlFailed},
      {"getSpdifOutCodec", kAudioControlFailed}}},
    {Ability::kBreakTvService,
     {{"tv_get_hdmi_input_count", kTvFailed},
      {"tv_get_activity_info_by_source", kTvFailed},
      {"tv_create_av_control", kTvFailed},
      {"tv_create_source_control", kTvFailed},
      {"getResolution", kTvFailed},
      {"getCurrentSource", kTvFailed}}},
    {Ability::kBreakEventLog, {{"event_log_add_sync", kEventLogUnreachable}}},
};

class WorldDriver : public PortDriver {
public:
  WorldDriver() : PortDriver(AllAbilities()) { m_World.UseRoom(sim::RoomConfig{}); }
  ~WorldDriver() override {
    std::error_code ignored;
    std::filesystem::remove(m_World.soundFile, ignored);
  }

  double NowMs() const override { return std::chrono::duration<double, std::milli>(m_World.scheduler.Now()).count(); }
  std::string CurrentThread() const override { return m_World.scheduler.CurrentThread(); }
  void WithoutThreads(const std::function<void()>& action) override {
    m_World.answers.Next("ecore_thread_run", {0});
    action();
  }

  // In this world one file of the television has a place.
  void PlaceFile(const std::string& /*fixedPath*/, const std::string& content) override {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvex-conformance-XXXXXX").string();
    const int fd = mkstemp(pattern.data());
    if (fd < 0) {
      throw std::runtime_error("cannot make " + pattern);
    }
    close(fd);
    std::ofstream(pattern, std::ios::binary) << content;
    m_World.soundFile = pattern;
  }

  std::vector<LogRecord> LogRecords() const override {
    std::vector<LogRecord> records;
    for (const world::Entry& entry : m_World.journal.Entries()) {
      if (!entry.tag.empty()) {
        records.push_back({entry.buffer, entry.priority, entry.tag, entry.record});
      }
    }
    return records;
  }

  void PutSetting(const std::string& key, int value) override { m_World.ChangeSetting(key, value); }
  void SpoilSetting(const std::string& /*key*/) override {
    m_World.answers.Always("settings_get_int", kSettingsNoInteger);
  }
  void SendTerminationSignal(int /*number*/) override {
    Soon([this] { m_World.RequestEnd(); });
  }

  void SendMessage(const FwMessage& message) override {
    Soon([this, message] { m_Replies.push_back(m_World.SendMessage(message, FwMessage()).body); });
  }
  std::vector<Json::Value> Replies() const override { return m_Replies; }

  void SelectSpeaker(std::int32_t selection) override { m_World.speaker = selection; }
  void PutTvState(const TvState& state) override {
    m_World.answers.Always("tv_get_hdmi_input_count", state.hdmiInputs);
    m_World.deviceType = state.deviceType;
    m_World.brand = state.brand;
    m_World.resolution = state.resolution;
    m_World.frequency = state.frequency;
    m_World.source = state.source;
    m_World.codec = state.codec;
  }
  std::vector<EventRecord> EventRecords() const override {
    std::vector<EventRecord> records;
    for (const world::EventRecord& record : m_World.events) {
      records.push_back({record.service, record.event, record.category, record.value});
    }
    return records;
  }

  void ShortenVoiceWindow(int windowMs) override {
    sim::RoomConfig room;
    room.voiceWindowMs = windowMs;
    m_World.UseRoom(room);
  }
  void LoseVoiceBlocks() override {
    sim::RoomConfig room;
    room.voiceLossProbability = 0.5;
    m_World.UseRoom(room);
  }
  void RefuseVoiceStart(int result) override { m_World.answers.Next("bt_hid_send_rc_command", {result}); }

  void Break(Ability service) override {
    for (const Answer& answer : kBrokenAnswers.at(service)) {
      m_World.answers.Always(answer.function, answer.result);
    }
  }

private:
  void Soon(std::function<void()> action) {
    m_World.scheduler.At(m_World.scheduler.Now(), Lane::kMainLoop, std::move(action));
  }

  world::World m_World;
  std::vector<Json::Value> m_Replies;
};

}  // namespace

std::unique_ptr<PortDriver> MakePortDriver() {
  return std::make_unique<WorldDriver>();
}

}  // namespace orvex::conformance
