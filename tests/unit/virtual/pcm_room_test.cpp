// From the sound device through the room into the remote control: what is played is heard when and as the room says.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "orvex/platform/remote_voice.h"
#include "unit/virtual/pcm_player.h"
#include "unit/virtual/pcm_television.h"
#include "unit/virtual/voice_recorder.h"
#include "virtual/living_room.h"

namespace orvex::virtual_tv {
namespace {

using namespace std::string_literals;

constexpr std::size_t kClickFrame = 1000;

// One silent, dry room: latencies are all there is.
constexpr const char* kDryRoom = R"({
  "tv": {"latency_ms": 50, "gain_db": 0, "distance_m": 0, "reflections": [], "rt60_s": 0},
  "optical": {"latency_ms": 20, "gain_db": -6, "distance_m": 0, "reflections": [], "rt60_s": 0},
  "microphone": {"noise_dbfs": "none"}})";

// A click in one or both channels of a buffer's length.
std::vector<std::int16_t> Click(bool left, bool right) {
  auto sound = PcmPlayer::Silence(4915);
  sound[2 * kClickFrame] = left ? 30000 : 0;
  sound[2 * kClickFrame + 1] = right ? 30000 : 0;
  return sound;
}

std::size_t LoudestSample(const std::vector<std::int16_t>& samples, std::size_t begin, std::size_t end) {
  const auto at = [&](std::size_t index) { return samples.begin() + static_cast<std::ptrdiff_t>(index); };
  const auto quieter = [](int a, int b) { return std::abs(a) < std::abs(b); };
  return static_cast<std::size_t>(std::max_element(at(begin), at(end), quieter) - samples.begin());
}

double SamplesIn(MonotonicTime span) {
  return static_cast<double>(span.count()) * 1e-9 * kVoiceRateHz;
}

class PcmRoom : public PcmTelevision {
protected:
  // Both ends of the time in which the recording and the playback began.
  struct Span {
    MonotonicTime earliest;
    MonotonicTime latest;
  };
  struct Hearing {
    Span recording;
    Span playback;
    std::vector<std::int16_t> samples;
  };

  // Plays one buffer while the remote records 25 blocks (412 ms).
  Hearing Listen(const std::vector<std::int16_t>& sound) {
    Hearing hearing;
    PcmPlayer player;
    EXPECT_EQ(player.Configure(2 * sound.size()), 0);  // starts when it is told to
    EXPECT_EQ(player.Write(sound), static_cast<snd_pcm_sframes_t>(sound.size() / 2));
    VoiceRecorder recorder;
    EXPECT_EQ(recorder.Register(), kVoiceDone);
    hearing.recording = Timed([] { EXPECT_EQ(StartVoice(), kVoiceDone); });
    hearing.playback = Timed([&] { EXPECT_EQ(snd_pcm_start(player.Pcm()), 0); });
    EXPECT_TRUE(recorder.WaitForBlocks(25));
    recorder.Unregister();
    hearing.samples = recorder.Samples();
    return hearing;
  }

  template <typename Deed>
  static Span Timed(const Deed& deed) {
    const MonotonicTime before = MonotonicNow();
    deed();
    return {before, MonotonicNow()};
  }

  // The loudest sample is a click that left the device in the time of `click` and was heard `waySeconds` later.
  static void ExpectClickAfter(double waySeconds, const std::vector<std::int16_t>& samples, const Span& recording,
                               const Span& click) {
    const auto loudest = static_cast<double>(LoudestSample(samples, 0, samples.size()));
    const double way = waySeconds * kVoiceRateHz;
    EXPECT_GE(loudest, SamplesIn(click.earliest - recording.latest) + way - 1.0);
    EXPECT_LE(loudest, SamplesIn(click.latest - recording.earliest) + way + 1.0);
  }
};

TEST_F(PcmRoom, AFrameIsHeardItsLatencyAfterItLeftTheDevice) {
  Echo("room.json", kDryRoom);
  const Hearing hearing = Listen(Click(true, false));
  ExpectClickAfter(kClickFrame / 48000.0 + 0.050, hearing.samples, hearing.recording, hearing.playback);
}

TEST_F(PcmRoom, TheOpticalOutputIsLateByItsLatencyAndTheDelayInForce) {
  Echo("room.json", kDryRoom);
  Echo("delay/spdif", "100\n");
  const Hearing hearing = Listen(Click(true, true));
  const std::size_t speaker = LoudestSample(hearing.samples, 0, hearing.samples.size());
  const std::size_t optical = LoudestSample(hearing.samples, speaker + 1000, hearing.samples.size());
  EXPECT_NEAR(static_cast<double>(optical - speaker), 0.070 * kVoiceRateHz, 1.0);
}

TEST_F(PcmRoom, AMutedSpeakerIsNotHeard) {
  Echo("room.json", kDryRoom);
  Echo("sound/mute", "1\n");
  const Hearing hearing = Listen(Click(true, false));
  EXPECT_EQ(std::count(hearing.samples.begin(), hearing.samples.end(), 0),
            static_cast<std::ptrdiff_t>(hearing.samples.size()));
}

// A recording that began anew would lack what was heard between the last block and the second start.
TEST_F(PcmRoom, AStartWhileSendingKeepsTheRecording) {
  Echo("room.json", kDryRoom);
  VoiceRecorder recorder;
  ASSERT_EQ(recorder.Register(), kVoiceDone);
  const Span start = Timed([] { EXPECT_EQ(StartVoice(), kVoiceDone); });
  ASSERT_TRUE(recorder.WaitForBlocks(3));
  ASSERT_EQ(StartVoice(), kVoiceDone);
  const MonotonicTime click = MonotonicNow() + std::chrono::milliseconds(50);
  const std::int16_t frame[] = {30000, 0};
  LivingRoom::Instance().Play(click, frame, 1);
  const std::size_t needed = recorder.Blocks().size() + 15;  // 247 ms
  ASSERT_TRUE(recorder.WaitForBlocks(needed));
  recorder.Unregister();
  ExpectClickAfter(0.050, recorder.Samples(), start, {click, click});
}

TEST_F(PcmRoom, FramesThatADropCutsOffAreNotHeard) {
  Echo("room.json", kDryRoom);
  PcmPlayer player;
  ASSERT_EQ(player.Configure(1), 0);
  auto sound = PcmPlayer::Silence(4800);  // 100 ms with a click at its end
  sound[2 * 4799] = 30000;
  VoiceRecorder recorder;
  ASSERT_EQ(recorder.Register(), kVoiceDone);
  ASSERT_EQ(StartVoice(), kVoiceDone);
  const MonotonicTime start = MonotonicNow();
  ASSERT_EQ(player.Write(sound), 4800);
  ASSERT_EQ(snd_pcm_drop(player.Pcm()), 0);
  const bool wasInTime = MonotonicNow() < start + std::chrono::milliseconds(90);
  ASSERT_TRUE(recorder.WaitForBlocks(25));
  recorder.Unregister();
  const auto samples = recorder.Samples();
  EXPECT_NE(wasInTime, std::any_of(samples.begin(), samples.end(), [](int sample) { return sample != 0; }));
}

TEST_F(PcmRoom, ABrokenRoomIsReportedOnceAndDisconnectsTheRemoteOnly) {
  Echo("room.json", R"({"tv": {"latency_ms": "soon"}})");
  testing::internal::CaptureStderr();
  EXPECT_EQ(StartVoice(), kVoiceNoRemote);
  EXPECT_EQ(StartVoice(), kVoiceNoRemote);
  EXPECT_EQ(ExtendVoice(), kVoiceNoRemote);
  EXPECT_EQ(bt_hid_rc_stop_sending_voice(nullptr), kVoiceNoRemote);
  PcmPlayer player;
  ASSERT_EQ(player.Configure(), 0);
  EXPECT_EQ(player.WriteThrough(PcmPlayer::Silence(6000)), 6000);
  const std::string report = testing::internal::GetCapturedStderr();
  for (const std::string& part : {(Folder() / "room.json").string(), "latency_ms"s, "soon"s, "expected"s}) {
    EXPECT_THAT(report, testing::HasSubstr(part));
  }
  EXPECT_EQ(report.find("room.json"), report.rfind("room.json"));
}

TEST_F(PcmRoom, AMissingNoiseFileIsReportedWithItsName) {
  Echo("room.json", R"({"microphone": {"noise_file": "street.wav"}})");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(LivingRoom(Television::Instance()).IsPresent());
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr((Folder() / "street.wav").string()));
}

TEST_F(PcmRoom, AnUnreadableValueLeavesTheLastOneInForceAndIsReportedOnce) {
  Echo("room.json", kDryRoom);
  Echo("sound/mute", "1\n");
  LivingRoom room(Television::Instance());
  const auto click = Click(true, false);
  room.Play(MonotonicTime(0), click.data(), 10);
  Echo("sound/mute", "perhaps\n");
  testing::internal::CaptureStderr();
  room.StartVoice(std::chrono::seconds(1));
  room.Play(std::chrono::seconds(1), click.data(), 4000);
  room.Play(std::chrono::seconds(2), click.data(), 4000);
  const std::string report = testing::internal::GetCapturedStderr();
  EXPECT_THAT(report, testing::HasSubstr("\"perhaps\""));
  EXPECT_EQ(report.find("perhaps"), report.rfind("perhaps"));
  LivingRoom::Block block;
  for (int index = 0; index < 10; ++index) {
    ASSERT_TRUE(room.TakeBlock(block));
    EXPECT_EQ(std::count(block.begin(), block.end(), 0), kVoiceBlockSamples);
  }
}

}  // namespace
}  // namespace orvex::virtual_tv
