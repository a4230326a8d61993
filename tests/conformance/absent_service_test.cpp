// Services that a port does not have: each operation fails as its header says and leaves its target untouched.
#include "conformance/port_test.h"
#include "conformance/unreachable_sound.h"
#include "conformance/voice_listener.h"
#include "orvex/platform/output_delay.h"
#include "orvex/platform/remote_voice.h"
#include "orvex/platform/settings.h"

namespace orvex::conformance {
namespace {

class AbsentService : public PortTest {};

TEST_F(AbsentService, OfSettingsCanNeitherBeReadNorWatched) {
  ORVEX_NEEDS_NO(kSettings);
  constexpr const char* kKey = "db/conformance/absent";
  const auto onChange = [](const SettingsNode* /*node*/, void* /*userData*/) {};
  OnMainLoop([&] {
    int value = 4711;
    EXPECT_EQ(settings_get_int(kKey, &value), kSettingsUnreadable);
    EXPECT_EQ(value, 4711);
    EXPECT_EQ(settings_subscribe(kKey, onChange, nullptr), kSettingsUnreadable);
    EXPECT_EQ(settings_unsubscribe(kKey, onChange), kSettingsNotSubscribed);
  });
}

TEST_F(AbsentService, OfSoundCannotBeReached) {
  ORVEX_NEEDS_NO(kSoundManager);
  OnMainLoop(ExpectUnreachableSound);
}

TEST_F(AbsentService, OfTheOutputDelayCannotBeReached) {
  ORVEX_NEEDS_NO(kOutputDelay);
  OnMainLoop([] {
    std::uint32_t delayMs = 4711;
    EXPECT_EQ(avoc_get_delay(&delayMs, kDelayKindSpdif), kDelayUnreachable);
    EXPECT_EQ(delayMs, 4711U);
    EXPECT_EQ(avoc_set_delay(50, kDelayKindSpdif), kDelayUnreachable);
  });
}

TEST_F(AbsentService, OfTheVoiceTakesNoReceiverAndNoCommand) {
  ORVEX_NEEDS_NO(kVoice);
  OnMainLoop([&] {
    VoiceListener listener(Port());
    EXPECT_EQ(listener.Register(), kVoiceNoRemote);
    EXPECT_EQ(bt_hid_unset_audio_data_receive_cb(), kVoiceNoRemote);
    EXPECT_EQ(StartVoice(), kVoiceNoRemote);
    EXPECT_EQ(GoOnRecording(), kVoiceNoRemote);
    EXPECT_EQ(StopVoice(), kVoiceNoRemote);
  });
}

}  // namespace
}  // namespace orvex::conformance
