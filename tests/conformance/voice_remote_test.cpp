// The remote control: commands, blocks as it sends them, its voice window.
#include "conformance/voice_test.h"

namespace orvex::conformance {
namespace {

class VoiceRemote : public VoiceTest {};

TEST_F(VoiceRemote, SendsBlocksOf768SamplesNoFasterThanItsRate) {
  constexpr std::size_t kBlocks = 50;
  constexpr double kRateTolerance = 0.05;
  application.Do(RegisterAndStart()).Until("fifty blocks", Heard(kBlocks)).Run();
  const std::vector<HeardBlock> blocks = listener.Blocks();
  std::size_t whole = 0;
  for (std::size_t index = 0; index < kBlocks; ++index) {
    const HeardBlock& block = blocks[index];
    whole += block.byteCount == kVoiceBlockBytes ? 1U : 0U;
    EXPECT_LE(block.byteCount, kVoiceBlockBytes);
    const double recordedMs = static_cast<double>(index + 1) * kVoiceBlockMs * (1.0 - kRateTolerance);
    EXPECT_GE(block.atMs, startedAtMs + recordedMs) << "block " << index << " before it can have been recorded";
  }
  EXPECT_GE(whole, kBlocks * 9 / 10);
}

TEST_F(VoiceRemote, IsStartedByTheCommandForTheAudibleSettingToo) {
  application
      .Do([&] {
        EXPECT_EQ(listener.Register(), kVoiceDone);
        EXPECT_EQ(SendVoiceCommand(0x04, 0x00), kVoiceDone);
      })
      .Until("a block", Heard(1))
      .Run();
}

TEST_F(VoiceRemote, KnowsNoOtherCommandAndNoOtherLength) {
  OnMainLoop([&] {
    EXPECT_EQ(listener.Register(), kVoiceDone);
    const std::uint8_t start[] = {0x05, 0x00, 0x00};
    EXPECT_EQ(bt_hid_send_rc_command(nullptr, start, 1), kVoiceInvalid);
    EXPECT_EQ(bt_hid_send_rc_command(nullptr, start, 3), kVoiceInvalid);
    EXPECT_EQ(SendVoiceCommand(0x05, 0x01), kVoiceInvalid);
    EXPECT_EQ(SendVoiceCommand(0x03, 0x00), kVoiceInvalid);
    EXPECT_EQ(SendVoiceCommand(0xff, 0xff), kVoiceInvalid);
  });
  EXPECT_EQ(listener.Count(), 0U);
}

TEST_F(VoiceRemote, IsStoppedThoughItWasNotSending) {
  OnMainLoop([] {
    EXPECT_EQ(StopVoice(), kVoiceDone);
    EXPECT_EQ(StopVoice(), kVoiceDone);
  });
}

TEST_F(VoiceRemote, SendsAgainWhenItIsStartedAgain) {
  std::size_t countAtRestart = 0;
  application.Do(RegisterAndStart())
      .Until("two blocks", Heard(2))
      .Do([&] { EXPECT_EQ(StopVoice(), kVoiceDone); })
      .After(kLongSilenceMs)
      .Do([&] {
        countAtRestart = listener.Count();
        EXPECT_EQ(StartVoice(), kVoiceDone);
      })
      .Until("two blocks more", [&] { return listener.Count() >= countAtRestart + 2; })
      .Run();
}

class RefusedStart : public VoiceRemote, public testing::WithParamInterface<int> {};

TEST_P(RefusedStart, SendsNothingAndMayBeTriedAgain) {
  ORVEX_NEEDS(kRefuseVoiceStart);
  Port().RefuseVoiceStart(GetParam());
  application
      .Do([&] {
        EXPECT_EQ(listener.Register(), kVoiceDone);
        EXPECT_EQ(StartVoice(), GetParam());
      })
      .After(kLongSilenceMs)
      .Do([&] {
        EXPECT_EQ(listener.Count(), 0U);
        EXPECT_EQ(StartVoice(), kVoiceDone);
      })
      .Until("a block", Heard(1))
      .Run();
}

INSTANTIATE_TEST_SUITE_P(Of, RefusedStart, testing::Values(kVoiceInProgress, kVoiceRefused, kVoiceNoRemote),
                         [](const auto& result) {
                           return result.param == kVoiceInProgress ? "InProgress"
                                  : result.param == kVoiceRefused  ? "Refused"
                                                                   : "NoRemote";
                         });

TEST_F(VoiceRemote, FallsSilentAtTheEndOfItsWindow) {
  ORVEX_NEEDS(kShortenVoiceWindow);
  constexpr int kWindowMs = 300;
  Port().ShortenVoiceWindow(kWindowMs);
  application.Do(RegisterAndStart()).Until("a block", Heard(1)).After(2.0 * kWindowMs + kLongSilenceMs).Run();
  EXPECT_LE(static_cast<double>(listener.Count()), kWindowMs / kVoiceBlockMs + 1.0);
}

TEST_F(VoiceRemote, GoesOnForAnotherWindowWhenItIsTold) {
  ORVEX_NEEDS(kShortenVoiceWindow);
  constexpr int kWindowMs = 1000;
  Port().ShortenVoiceWindow(kWindowMs);
  listener.onBlock = [] { EXPECT_EQ(GoOnRecording(), kVoiceDone); };  // which the delivery thread may
  application.Do(RegisterAndStart())
      .Until("more blocks than a window holds", Heard(static_cast<std::size_t>(1.5 * kWindowMs / kVoiceBlockMs)))
      .Run();
}

TEST_F(VoiceRemote, MayLoseBlocksAndSaySoButGoesOn) {
  ORVEX_NEEDS(kLoseVoiceBlocks);
  Port().LoseVoiceBlocks();
  application.Do(RegisterAndStart()).Until("thirty blocks", Heard(30)).Run();
  const std::vector<HeardBlock> blocks = listener.Blocks();
  const auto whole = std::count_if(blocks.begin(), blocks.end(),
                                   [](const HeardBlock& block) { return block.byteCount == kVoiceBlockBytes; });
  EXPECT_GE(whole, 5) << "of " << blocks.size();
  // Whole blocks cannot come faster than they are recorded, the lost ones' time included.
  EXPECT_GE(blocks.back().atMs, startedAtMs + static_cast<double>(whole) * kVoiceBlockMs * 0.95);
}

}  // namespace
}  // namespace orvex::conformance
