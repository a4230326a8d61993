// The speaker volume guard: while the service lives, the television's speaker is not muted, at volume 0 if it was.
#include "Application/OrvexManager.h"
#include "Util/OrvexLog.h"
#include "orvex/platform/sound_manager.h"

namespace {

constexpr int kTvSpeaker = 0;  // device
constexpr std::int32_t kNothingSaved = -1;
constexpr std::int32_t kTvSpeakerSelected = 0;

}  // namespace

void OrvexManager::m_PrepareVolumeCondition() {
  static_cast<void>(sound_manager_get_device_mute(kTvSpeaker, &m_SavedMute));
  ORVEX_INFO("TV speaker mute status.[%d]", static_cast<int>(m_SavedMute));
  if (!m_SavedMute) {
    return;
  }
  static_cast<void>(sound_manager_get_tv_master_volume(&m_SavedVolume));
  ORVEX_INFO("TV speaker volume value.[%d]", m_SavedVolume);
  // Down first: the programme must not be heard.
  static_cast<void>(sound_manager_set_tv_master_volume(0));
  static_cast<void>(sound_manager_set_device_mute(kTvSpeaker, false));
}

void OrvexManager::m_RestoreVolumeCondition() {
  ORVEX_INFO("");
  if (m_SavedMute) {
    ORVEX_INFO("need to restore volume. original mute value[%d]", static_cast<int>(m_SavedMute));
    std::int32_t speaker = kTvSpeakerSelected;
    static_cast<void>(sound_manager_get_speaker_selection(&speaker));
    ORVEX_INFO("current speaker [%d]", speaker);
    // A speaker that has been selected meanwhile is meant to be heard.
    if (speaker != kTvSpeakerSelected) {
      static_cast<void>(sound_manager_set_device_mute(kTvSpeaker, m_SavedMute));
    }
    m_SavedMute = false;
  }
  if (m_SavedVolume != kNothingSaved) {
    ORVEX_INFO("original volume value[%d]", m_SavedVolume);
    static_cast<void>(sound_manager_set_tv_master_volume(m_SavedVolume));
    m_SavedVolume = kNothingSaved;
  }
}
