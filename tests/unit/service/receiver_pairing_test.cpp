// Two tones make a pair: order, distance, level, results that follow, and what is written of them.
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* kSequenceError = "I0 syquence error -> recheck \n";
constexpr const char* kCompleted = "E0 completed calculation of delay";
constexpr const char* kEndCallback = "> end of calculation";

// A pair in either order.
class ReceiverPairing : public ReceiverTest, public testing::WithParamInterface<bool> {
protected:
  static bool LowFirst() { return GetParam(); }
  static int Sign() { return LowFirst() ? 1 : -1; }
  // The first and the second tone, with some of the other one in it.
  static Samples First(double amplitude, double other = 0.0) {
    return LowFirst() ? Tone17(amplitude, other) : Tone19(amplitude, other);
  }
  static Samples Second(double amplitude, double other = 0.0) {
    return LowFirst() ? Tone19(amplitude, other) : Tone17(amplitude, other);
  }
  static std::string FoundFirst(int buffer, const Samples& block) {
    return LowFirst() ? Found17(buffer, block) : Found19(buffer, block);
  }
  static std::string FoundSecond(int buffer, const Samples& block) {
    return LowFirst() ? Found19(buffer, block) : Found17(buffer, block);
  }
  static const char* FirstLine() { return LowFirst() ? kFirst17 : kFirst19; }
  static const char* FirstLineOfSecond() { return LowFirst() ? kFirst19 : kFirst17; }
  static std::string ResultLine(int first, int second) {
    const double seconds = Sign() * BufferSeconds(second - first);
    return LowFirst() ? Text("I0 @ [RESULT] [%d] - [%d] : %0.4f s\n", first, second, seconds)
                      : Text("I0 (ruvo)   ====> @ [RESULT] [%d] - [%d] : %0.4f s\n", second, first, seconds);
  }
};

TEST_P(ReceiverPairing, TenBuffersApartMake0165Seconds) {
  Start();
  const Samples first = First(100);
  const Samples second = Second(100);
  EXPECT_THAT(EventsAt(100, first), ElementsAre(FoundFirst(100, first), FirstLine()));
  EXPECT_THAT(EventsAt(110, second),
              ElementsAre(FoundSecond(110, second), ResultLine(100, 110), kCompleted, kEndCallback));
  EXPECT_THAT(ResultLine(100, 110), LowFirst() ? "I0 @ [RESULT] [100] - [110] : 0.1650 s\n"
                                               : "I0 (ruvo)   ====> @ [RESULT] [110] - [100] : -0.1650 s\n");
  EXPECT_EQ(receiver.GetDirection(), Sign());
  const Texts asked = During([&] { EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), Sign() * 10 * 768 / 46545.0); });
  EXPECT_THAT(asked, ElementsAre(LowFirst() ? "I0 diff time = 0.1650\n" : "I0 diff time = -0.1650\n"));
  EXPECT_EQ(DumpedResults(), Text("[RESULT] [100] - [110] : %s\nresult_set_value : [main: 0], [spdif: 100]\n",
                                  LowFirst() ? "0.1650" : "-0.1650"));
}

TEST_P(ReceiverPairing, TheResultIsWrittenBeforeTheOwnerIsCalled) {
  Start();
  EventsAt(40, First(100));
  double seen = 0.0;
  world.onCall = [&](const std::string& text) {
    if (text == "end of calculation") {
      seen = receiver.GetAudioTimeDifference();
      CSingleton<CDebugDump>::GetInstance()->Stop();
    }
  };
  EventsAt(43, Second(100));
  EXPECT_DOUBLE_EQ(seen, Sign() * 3 * 768 / 46545.0);
  EXPECT_EQ(DumpFiles::Results(), Text("[RESULT] [40] - [43] : %0.4f\n"
                                       "result_set_value : [main: 0], [spdif: 100]\n",
                                       Sign() * BufferSeconds(3)));
}

TEST_P(ReceiverPairing, TonesUpTo19BuffersApartAreAPair) {
  for (const int distance : {1, 18, 19}) {
    Start();
    EventsAt(60, First(100));
    EXPECT_THAT(EventsAt(60 + distance, Second(100)), Contains(ResultLine(60, 60 + distance)));
    EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), Sign() * distance * 768 / 46545.0);
    receiver.StopBTRecoder();
  }
}

TEST_P(ReceiverPairing, APairAcrossTheEndOfTheCountIsMeasuredByItsNumbers) {
  Start();
  BeQuietUntil(40);
  LoseBlocksUntil(99999);
  const Samples second = Second(100);
  EXPECT_THAT(EventsAt(99999, First(100)), Contains(FirstLine()));
  while (receiver.GetBufferCount() != 5) {
    Hear(quiet);
  }
  EXPECT_THAT(EventsAt(6, second), ElementsAre(FoundSecond(6, second), ResultLine(99999, 6), kCompleted, kEndCallback));
  EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), Sign() * (6 - 99999) * 768 / 46545.0);
}

TEST_P(ReceiverPairing, ASecondToneThatComes20BuffersLaterIsANewFirstTone) {
  Start();
  EventsAt(100, First(100));
  const Samples late = Second(100);
  EXPECT_THAT(EventsAt(120, late), ElementsAre(FoundSecond(120, late), kSequenceError, FirstLineOfSecond()));
  EXPECT_EQ(receiver.GetDirection(), -Sign());
  EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0);
  // It begins the pair that comes next, the other way round.
  EXPECT_THAT(EventsAt(139, First(100)), Contains(kCompleted));
  EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), -Sign() * 19 * 768 / 46545.0);
}

TEST_P(ReceiverPairing, ASecondToneMustBeAsStrongAsItWasWithinTheFirst) {
  Start();
  EventsAt(60, First(1000, 400));
  const Samples weak = Second(390);
  EXPECT_THAT(EventsAt(65, weak), ElementsAre(FoundSecond(65, weak), kSequenceError, FirstLineOfSecond()));
  receiver.StopBTRecoder();
  Start();
  EventsAt(60, First(1000, 400));
  EXPECT_THAT(EventsAt(65, Second(410)), Contains(ResultLine(60, 65)));
}

TEST_P(ReceiverPairing, TheFloorForTheSecondToneNeverSinks) {
  Start();
  EventsAt(60, First(1000, 400));
  EventsAt(85, Second(100));   // too late: a first tone
  EventsAt(110, First(1000));  // too late as well, and with less of the other tone
  EXPECT_THAT(EventsAt(115, Second(390)), Contains(kSequenceError));
  EventsAt(140, First(1000, 100));
  EXPECT_THAT(EventsAt(145, Second(410)), Contains(ResultLine(140, 145)));
}

TEST_P(ReceiverPairing, TheFloorRisesWithEachFirstTone) {
  Start();
  EventsAt(60, First(1000, 100));
  EventsAt(85, Second(100));
  EventsAt(110, First(1000, 400));
  EXPECT_THAT(EventsAt(115, Second(390)), Contains(kSequenceError));
}

TEST_P(ReceiverPairing, FurtherResultsFollowWhileTheToneIsAtLeastAsStrong) {
  Start();
  const Samples second = Second(100);
  EventsAt(60, First(100));
  EventsAt(65, second);
  EXPECT_THAT(EventsAt(66, second), ElementsAre(FoundSecond(66, second), ResultLine(60, 66), kCompleted, kEndCallback));
  EXPECT_THAT(EventsAt(79, Second(110)), Contains(ResultLine(60, 79)));
  EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), Sign() * 19 * 768 / 46545.0);
  EXPECT_THAT(EventsAt(80, Second(120)), Contains(kSequenceError));
  // A pair that failed leaves the result of the one before.
  EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), Sign() * 19 * 768 / 46545.0);
  const std::string delays = "result_set_value : [main: 0], [spdif: 100]\n";
  std::string written;
  for (const int buffer : {65, 66, 79}) {
    written += Text("[RESULT] [60] - [%d] : %0.4f\n", buffer, Sign() * BufferSeconds(buffer - 60)) + delays;
  }
  EXPECT_EQ(DumpedResults(), written);
}

TEST_P(ReceiverPairing, AWeakerSecondToneAfterAResultIsASequenceError) {
  Start();
  EventsAt(60, First(100));
  EventsAt(65, Second(100));
  const Samples weaker = Second(99);
  EXPECT_THAT(EventsAt(66, weaker), ElementsAre(FoundSecond(66, weaker), kSequenceError, FirstLineOfSecond()));
}

TEST_P(ReceiverPairing, AFinishedRecordingAcceptsNoSecondTone) {
  Start();
  EventsAt(60, First(100));
  receiver.SetFinished(true);
  const Samples second = Second(100);
  EXPECT_THAT(EventsAt(65, second), ElementsAre(FoundSecond(65, second)));
  EXPECT_THAT(EventsAt(90, second), ElementsAre(FoundSecond(90, second)));
  EXPECT_EQ(receiver.GetDirection(), Sign());
  EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0);
  receiver.SetFinished(false);
  EXPECT_THAT(EventsAt(91, second), Contains(kSequenceError));
}

TEST_P(ReceiverPairing, AFinishedRecordingStillTakesAFirstTone) {
  Start();
  receiver.SetFinished(true);
  const Samples first = First(100);
  EXPECT_THAT(EventsAt(60, first), ElementsAre(FoundFirst(60, first), FirstLine()));
}

TEST_P(ReceiverPairing, TheDelaysWrittenAreThoseOfTheStart) {
  world.delayMs = 230;
  Start();
  world.delayMs = 77;
  EventsAt(60, First(100));
  EventsAt(61, Second(100));
  EXPECT_THAT(DumpedResults(), testing::EndsWith("result_set_value : [main: 0], [spdif: 230]\n"));
}

INSTANTIATE_TEST_SUITE_P(Order, ReceiverPairing, testing::Bool(), [](const auto& tested) {
  return std::string(tested.param ? "LowToneFirst" : "HighToneFirst");
});

class ReceiverWithoutPair : public ReceiverTest {};

TEST_F(ReceiverWithoutPair, NoTonesOrOneToneGiveNoDifference) {
  Start();
  EventsAt(60, Tone17(100));
  BeQuietUntil(200);
  EXPECT_THAT(During([&] { EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0); }),
              ElementsAre("I0 diff time = 0.0000\n"));
  EXPECT_EQ(DumpedResults(), "");
}

TEST_F(ReceiverWithoutPair, AResultIsFoundWithoutOpenDumpFilesToo) {
  Start();
  CSingleton<CDebugDump>::GetInstance()->Stop();
  EventsAt(60, Tone17(100));
  const Samples high = Tone19(100);
  EXPECT_THAT(EventsAt(61, high), ElementsAre(Found19(61, high), "I0 @ [RESULT] [60] - [61] : 0.0165 s\n", kCompleted,
                                              "E2 already null", "E2 already null", kEndCallback, "E2 already null"));
}

}  // namespace
