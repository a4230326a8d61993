// The output delay service and the audio control object that reports on the optical output.
#include "orvex/platform/output_delay.h"
#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

constexpr int kUnknownKind = 99;
constexpr std::uint32_t kUntouchedMs = 4711;

// Puts the delay back behind each test.
class OutputDelay : public PortTest {
protected:
  OutputDelay() { avoc_get_delay(&m_BeforeMs, kDelayKindSpdif); }
  ~OutputDelay() override { avoc_set_delay(m_BeforeMs, kDelayKindSpdif); }

  void SetUp() override { ORVEX_NEEDS(kOutputDelay); }

  static std::uint32_t DelayMs() {
    std::uint32_t delayMs = kUntouchedMs;
    EXPECT_EQ(avoc_get_delay(&delayMs, kDelayKindSpdif), kDelayDone);
    return delayMs;
  }
  static void Set(std::uint32_t delayMs) { EXPECT_EQ(avoc_set_delay(delayMs, kDelayKindSpdif), kDelayDone); }

private:
  std::uint32_t m_BeforeMs = 0;
};

// What the hardware cannot do may be clamped, so only a delay that was told to be in force must be kept exactly.
TEST_F(OutputDelay, IsInForceAsItIsTold) {
  OnMainLoop([] {
    Set(40);
    const std::uint32_t shortMs = DelayMs();
    Set(140);
    const std::uint32_t longMs = DelayMs();
    EXPECT_LT(shortMs, longMs);
    Set(shortMs);
    EXPECT_EQ(DelayMs(), shortMs);
    Set(longMs);
    EXPECT_EQ(DelayMs(), longMs);
  });
}

TEST_F(OutputDelay, IsReadAndSetOnAnyThread) {
  OnMainLoop([] {
    Set(40);
    std::uint32_t fromThreadMs = kUntouchedMs;
    Thread([&] {
      fromThreadMs = DelayMs();
      Set(140);
    }).Join();
    EXPECT_LT(fromThreadMs, DelayMs());
  });
}

TEST_F(OutputDelay, ThatIsTooLongIsClampedOrRefusedButNeverWraps) {
  OnMainLoop([] {
    Set(140);
    const std::uint32_t beforeMs = DelayMs();
    const int result = avoc_set_delay(UINT32_MAX, kDelayKindSpdif);
    if (result == kDelayDone) {
      EXPECT_GE(DelayMs(), beforeMs);
    } else {
      EXPECT_EQ(result, kDelayUnreachable);
      EXPECT_EQ(DelayMs(), beforeMs);
    }
  });
}

TEST_F(OutputDelay, OfAnUnknownKindIsRefusedAndNothingChanges) {
  OnMainLoop([] {
    const std::uint32_t beforeMs = DelayMs();
    std::uint32_t delayMs = kUntouchedMs;
    EXPECT_EQ(avoc_get_delay(&delayMs, kUnknownKind), kDelayUnknownKind);
    EXPECT_EQ(delayMs, kUntouchedMs);
    EXPECT_EQ(avoc_set_delay(beforeMs + 50, kUnknownKind), kDelayUnknownKind);
    EXPECT_EQ(DelayMs(), beforeMs);
  });
}

TEST_F(OutputDelay, IsTheOneThatTheAudioControlTells) {
  OnMainLoop([] {
    IAudioControl* const control = IAudioControl::getInstance();
    if (control == nullptr) {
      GTEST_SKIP() << "this television has no audio control object";
    }
    for (const std::uint32_t setMs : {40U, 140U}) {
      Set(setMs);
      std::uint32_t delayMs = kUntouchedMs;
      EXPECT_EQ(control->getSpdifOutDelay(&delayMs), kAudioControlDone);
      EXPECT_EQ(delayMs, DelayMs());
    }
  });
}

TEST_F(OutputDelay, HasACodecThatTheAudioControlTells) {
  ORVEX_NEEDS(kPutTvState);
  OnMainLoop([&] {
    for (const std::int32_t expected : {2, 5}) {
      TvState state;
      state.codec = expected;
      Port().PutTvState(state);
      IAudioControl* const control = IAudioControl::getInstance();
      ASSERT_NE(control, nullptr);
      std::int32_t codec = -1;
      EXPECT_EQ(control->getSpdifOutCodec(&codec), kAudioControlDone);
      EXPECT_EQ(codec, expected);
    }
  });
}

TEST_F(OutputDelay, OfAServiceThatCannotBeReachedLeavesTargetsUntouched) {
  ORVEX_NEEDS(kBreakOutputDelay);
  Port().Break(Ability::kBreakOutputDelay);
  OnMainLoop([] {
    std::uint32_t delayMs = kUntouchedMs;
    std::int32_t codec = -1;
    EXPECT_EQ(avoc_get_delay(&delayMs, kDelayKindSpdif), kDelayUnreachable);
    EXPECT_EQ(avoc_set_delay(50, kDelayKindSpdif), kDelayUnreachable);
    if (IAudioControl* const control = IAudioControl::getInstance()) {
      EXPECT_EQ(control->getSpdifOutDelay(&delayMs), kAudioControlFailed);
      EXPECT_EQ(control->getSpdifOutCodec(&codec), kAudioControlFailed);
    }
    EXPECT_EQ(delayMs, kUntouchedMs);
    EXPECT_EQ(codec, -1);
  });
}

}  // namespace
}  // namespace orvex::conformance
