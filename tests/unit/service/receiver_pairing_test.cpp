// Two tones make a pair: order, distance, level, results that follow, and what is written of them.
#include <cmath>

#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::StartsWith;

constexpr const char* kSequenceError = "I0 syquence error -> recheck \n";
constexpr const char* kCompleted = "E0 completed calculation of delay";
constexpr const char* kEndCallback = "> end of calculation";

// Puts the steps of the pairing into words: buffer, tone and, of a pair, the difference in buffers.
class PairingSteps : public OrvexReceiverObserver {
public:
  void OnFirstTone(std::int32_t buffer, Tone tone, double /*needed*/) override { Add(buffer, tone, " is first"); }
  void OnSequenceError(std::int32_t buffer, Tone tone, std::int32_t /*first*/, double /*needed*/) override {
    Add(buffer, tone, " is out of sequence");
  }
  void OnPair(std::int32_t buffer, Tone tone, std::int32_t first, double differenceS) override {
    const double buffers = std::round(differenceS / BufferSeconds(1));
    EXPECT_DOUBLE_EQ(differenceS, buffers * kVoiceBlockSamples / kVoiceRateHz);
    Add(buffer, tone, Text(" makes a pair with %d, %+.0f", first, buffers));
  }

  Texts steps;

private:
  void Add(std::int32_t buffer, Tone tone, const std::string& what) {
    steps.push_back(std::to_string(buffer) + (tone == Tone::k17000Hz ? ": 17 kHz" : ": 19 kHz") + what);
  }
};

class ReceiverPairing : public ReceiverTest {
protected:
  ReceiverPairing() { receiver.SetObserver(&pairing); }

  PairingSteps pairing;
};

// A tone in one buffer; `other` is the amplitude of the other frequency within it.
struct HeardTone {
  int buffer;
  int kilohertz;
  double amplitude;
  double other = 0.0;

  Samples Block() const { return kilohertz == 17 ? Tone17(amplitude, other) : Tone19(amplitude, other); }
};

struct PairingScenario {
  const char* name;
  std::vector<HeardTone> tones;
  Texts steps;
};

void PrintTo(const PairingScenario& scenario, std::ostream* out) {
  *out << scenario.name;
}

// Of each rule both orders: 17 kHz first, which makes a positive difference, then 19 kHz first.
const std::vector<PairingScenario> kScenarios = {
    {"First17OneBufferApart",
     {{60, 17, 100}, {61, 19, 100}},
     {"60: 17 kHz is first", "61: 19 kHz makes a pair with 60, +1"}},
    {"First17NineteenBuffersApart",
     {{60, 17, 100}, {79, 19, 100}},
     {"60: 17 kHz is first", "79: 19 kHz makes a pair with 60, +19"}},
    {"First17TwentyBuffersApartAndAnotherPairFollows",
     {{60, 17, 100}, {80, 19, 100}, {99, 17, 100}},
     {"60: 17 kHz is first", "80: 19 kHz is out of sequence", "80: 19 kHz is first",
      "99: 17 kHz makes a pair with 80, -19"}},
    {"First17AsStrongAsItWasWithinTheFirst",
     {{60, 17, 1000, 400}, {65, 19, 410}},
     {"60: 17 kHz is first", "65: 19 kHz makes a pair with 60, +5"}},
    {"First17WeakerThanItWasWithinTheFirst",
     {{60, 17, 1000, 400}, {65, 19, 390}},
     {"60: 17 kHz is first", "65: 19 kHz is out of sequence", "65: 19 kHz is first"}},
    {"First17TheFloorNeverSinks",
     {{60, 17, 1000, 400}, {85, 19, 100}, {110, 17, 1000, 0}, {115, 19, 390}, {140, 17, 1000, 100}, {145, 19, 410}},
     {"60: 17 kHz is first", "85: 19 kHz is out of sequence", "85: 19 kHz is first", "110: 17 kHz is out of sequence",
      "110: 17 kHz is first", "115: 19 kHz is out of sequence", "115: 19 kHz is first",
      "140: 17 kHz is out of sequence", "140: 17 kHz is first", "145: 19 kHz makes a pair with 140, +5"}},
    {"First17TheFloorRisesWithEachFirstTone",
     {{60, 17, 1000, 100}, {85, 19, 100}, {110, 17, 1000, 400}, {115, 19, 390}},
     {"60: 17 kHz is first", "85: 19 kHz is out of sequence", "85: 19 kHz is first", "110: 17 kHz is out of sequence",
      "110: 17 kHz is first", "115: 19 kHz is out of sequence", "115: 19 kHz is first"}},
    {"First17FurtherPairsWhileTheSecondToneIsAsStrong",
     {{60, 17, 100}, {65, 19, 100}, {66, 19, 100}, {79, 19, 110}, {80, 19, 120}},
     {"60: 17 kHz is first", "65: 19 kHz makes a pair with 60, +5", "66: 19 kHz makes a pair with 60, +6",
      "79: 19 kHz makes a pair with 60, +19", "80: 19 kHz is out of sequence", "80: 19 kHz is first"}},
    {"First17WeakerThanInThePair",
     {{60, 17, 100}, {65, 19, 100}, {66, 19, 99}},
     {"60: 17 kHz is first", "65: 19 kHz makes a pair with 60, +5", "66: 19 kHz is out of sequence",
      "66: 19 kHz is first"}},
    {"First19OneBufferApart",
     {{60, 19, 100}, {61, 17, 100}},
     {"60: 19 kHz is first", "61: 17 kHz makes a pair with 60, -1"}},
    {"First19NineteenBuffersApart",
     {{60, 19, 100}, {79, 17, 100}},
     {"60: 19 kHz is first", "79: 17 kHz makes a pair with 60, -19"}},
    {"First19TwentyBuffersApartAndAnotherPairFollows",
     {{60, 19, 100}, {80, 17, 100}, {99, 19, 100}},
     {"60: 19 kHz is first", "80: 17 kHz is out of sequence", "80: 17 kHz is first",
      "99: 19 kHz makes a pair with 80, +19"}},
    {"First19AsStrongAsItWasWithinTheFirst",
     {{60, 19, 1000, 400}, {65, 17, 410}},
     {"60: 19 kHz is first", "65: 17 kHz makes a pair with 60, -5"}},
    {"First19WeakerThanItWasWithinTheFirst",
     {{60, 19, 1000, 400}, {65, 17, 390}},
     {"60: 19 kHz is first", "65: 17 kHz is out of sequence", "65: 17 kHz is first"}},
    {"First19TheFloorNeverSinks",
     {{60, 19, 1000, 400}, {85, 17, 100}, {110, 19, 1000, 0}, {115, 17, 390}, {140, 19, 1000, 100}, {145, 17, 410}},
     {"60: 19 kHz is first", "85: 17 kHz is out of sequence", "85: 17 kHz is first", "110: 19 kHz is out of sequence",
      "110: 19 kHz is first", "115: 17 kHz is out of sequence", "115: 17 kHz is first",
      "140: 19 kHz is out of sequence", "140: 19 kHz is first", "145: 17 kHz makes a pair with 140, -5"}},
    {"First19TheFloorRisesWithEachFirstTone",
     {{60, 19, 1000, 100}, {85, 17, 100}, {110, 19, 1000, 400}, {115, 17, 390}},
     {"60: 19 kHz is first", "85: 17 kHz is out of sequence", "85: 17 kHz is first", "110: 19 kHz is out of sequence",
      "110: 19 kHz is first", "115: 17 kHz is out of sequence", "115: 17 kHz is first"}},
    {"First19FurtherPairsWhileTheSecondToneIsAsStrong",
     {{60, 19, 100}, {65, 17, 100}, {66, 17, 100}, {79, 17, 110}, {80, 17, 120}},
     {"60: 19 kHz is first", "65: 17 kHz makes a pair with 60, -5", "66: 17 kHz makes a pair with 60, -6",
      "79: 17 kHz makes a pair with 60, -19", "80: 17 kHz is out of sequence", "80: 17 kHz is first"}},
    {"First19WeakerThanInThePair",
     {{60, 19, 100}, {65, 17, 100}, {66, 17, 99}},
     {"60: 19 kHz is first", "65: 17 kHz makes a pair with 60, -5", "66: 17 kHz is out of sequence",
      "66: 17 kHz is first"}},
};

class ReceiverPairingScenarios : public ReceiverPairing, public testing::WithParamInterface<PairingScenario> {};

TEST_P(ReceiverPairingScenarios, TakeTheseSteps) {
  Start();
  for (const HeardTone& tone : GetParam().tones) {
    EventsAt(tone.buffer, tone.Block());
  }
  EXPECT_THAT(pairing.steps, ElementsAreArray(GetParam().steps));
}

INSTANTIATE_TEST_SUITE_P(Receiver, ReceiverPairingScenarios, testing::ValuesIn(kScenarios),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(ReceiverPairing, IsLoggedAndWrittenWhen17kHzComesFirst) {
  const Samples second = Tone19(100);
  Start();
  EventsAt(100, Tone17(100));
  EXPECT_THAT(EventsAt(110, second),
              ElementsAre(Found19(110, second), "I0 @ [RESULT] [100] - [110] : 0.1650 s\n", kCompleted, kEndCallback));
  EXPECT_EQ(receiver.GetDirection(), 1);
  EXPECT_THAT(
      During([&] { EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), 10 * kVoiceBlockSamples / kVoiceRateHz); }),
      ElementsAre("I0 diff time = 0.1650\n"));
  EXPECT_EQ(DumpedResults(), "[RESULT] [100] - [110] : 0.1650\nresult_set_value : [main: 0], [spdif: 100]\n");
}

TEST_F(ReceiverPairing, IsLoggedAndWrittenWhen19kHzComesFirst) {
  const Samples second = Tone17(100);
  Start();
  EventsAt(100, Tone19(100));
  EXPECT_THAT(EventsAt(110, second),
              ElementsAre(Found17(110, second), "I0 (ruvo)   ====> @ [RESULT] [110] - [100] : -0.1650 s\n", kCompleted,
                          kEndCallback));
  EXPECT_EQ(receiver.GetDirection(), -1);
  EXPECT_THAT(
      During([&] { EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), -10 * kVoiceBlockSamples / kVoiceRateHz); }),
      ElementsAre("I0 diff time = -0.1650\n"));
  EXPECT_EQ(DumpedResults(), "[RESULT] [100] - [110] : -0.1650\nresult_set_value : [main: 0], [spdif: 100]\n");
}

TEST_F(ReceiverPairing, OutOfSequenceIsLoggedBeforeTheNewFirstTone) {
  const Samples late19 = Tone19(100);
  const Samples late17 = Tone17(100);
  Start();
  EventsAt(60, Tone17(100));
  EXPECT_THAT(EventsAt(80, late19), ElementsAre(Found19(80, late19), kSequenceError, kFirst19));
  EXPECT_EQ(receiver.GetDirection(), -1);
  EXPECT_THAT(EventsAt(100, late17), ElementsAre(Found17(100, late17), kSequenceError, kFirst17));
  EXPECT_EQ(receiver.GetDirection(), 1);
  EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0);
}

TEST_F(ReceiverPairing, TheResultIsWrittenBeforeTheOwnerIsCalled) {
  Start();
  EventsAt(40, Tone17(100));
  double seen = 0.0;
  world.onCall = [&](const std::string& text) {
    if (text == "end of calculation") {
      seen = receiver.GetAudioTimeDifference();
      CSingleton<CDebugDump>::GetInstance()->Stop();
    }
  };
  EventsAt(43, Tone19(100));
  EXPECT_DOUBLE_EQ(seen, 3 * kVoiceBlockSamples / kVoiceRateHz);
  EXPECT_THAT(DumpFiles::Results(), StartsWith("[RESULT] [40] - [43] : 0.0495\n"));
}

TEST_F(ReceiverPairing, EachResultIsWrittenAndTheLastOneStaysAfterASequenceError) {
  Start();
  EventsAt(60, Tone17(100));
  EventsAt(65, Tone19(100));
  EventsAt(79, Tone19(100));
  EXPECT_THAT(EventsAt(80, Tone19(100)), testing::Contains(kSequenceError));
  EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(), 19 * kVoiceBlockSamples / kVoiceRateHz);
  EXPECT_EQ(DumpedResults(),
            "[RESULT] [60] - [65] : 0.0825\nresult_set_value : [main: 0], [spdif: 100]\n"
            "[RESULT] [60] - [79] : 0.3135\nresult_set_value : [main: 0], [spdif: 100]\n");
}

TEST_F(ReceiverPairing, AcrossTheEndOfTheCountIsMeasuredByTheNumbers) {
  for (const bool lowFirst : {true, false}) {
    Start();
    BeQuietUntil(40);
    LoseBlocksUntil(99999);
    EventsAt(99999, lowFirst ? Tone17(100) : Tone19(100));
    while (receiver.GetBufferCount() != 5) {
      Hear(quiet);
    }
    EventsAt(6, lowFirst ? Tone19(100) : Tone17(100));
    EXPECT_DOUBLE_EQ(receiver.GetAudioTimeDifference(),
                     (lowFirst ? -99993 : 99993) * kVoiceBlockSamples / kVoiceRateHz);
    receiver.StopBTRecoder();
  }
}

TEST_F(ReceiverPairing, OfAFinishedRecordingTakesAFirstToneButNoSecondOne) {
  for (const bool lowFirst : {true, false}) {
    const Samples second = lowFirst ? Tone19(100) : Tone17(100);
    Start();
    receiver.SetFinished(true);
    EventsAt(60, lowFirst ? Tone17(100) : Tone19(100));
    const Texts first = pairing.steps;
    EXPECT_THAT(first, ElementsAre(lowFirst ? "60: 17 kHz is first" : "60: 19 kHz is first"));
    EXPECT_THAT(EventsAt(65, second), ElementsAre(lowFirst ? Found19(65, second) : Found17(65, second)));
    EventsAt(90, second);
    EXPECT_EQ(pairing.steps, first);
    EXPECT_EQ(receiver.GetDirection(), lowFirst ? 1 : -1);
    EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0);
    receiver.SetFinished(false);
    EXPECT_THAT(EventsAt(91, second), testing::Contains(kSequenceError));
    receiver.StopBTRecoder();
    pairing.steps.clear();
  }
}

TEST_F(ReceiverPairing, TheDelaysWrittenAreThoseOfTheStart) {
  world.delayMs = 230;
  Start();
  world.delayMs = 77;
  EventsAt(60, Tone17(100));
  EventsAt(61, Tone19(100));
  EXPECT_THAT(DumpedResults(), EndsWith("result_set_value : [main: 0], [spdif: 230]\n"));
}

TEST_F(ReceiverPairing, NeedsTwoTones) {
  Start();
  EventsAt(60, Tone17(100));
  BeQuietUntil(200);
  EXPECT_THAT(During([&] { EXPECT_EQ(receiver.GetAudioTimeDifference(), 0.0); }),
              ElementsAre("I0 diff time = 0.0000\n"));
  EXPECT_EQ(DumpedResults(), "");
}

TEST_F(ReceiverPairing, NeedsNoOpenDumpFiles) {
  Start();
  CSingleton<CDebugDump>::GetInstance()->Stop();
  EventsAt(60, Tone17(100));
  const Samples high = Tone19(100);
  EXPECT_THAT(EventsAt(61, high), ElementsAre(Found19(61, high), "I0 @ [RESULT] [60] - [61] : 0.0165 s\n", kCompleted,
                                              "E2 already null", "E2 already null", kEndCallback, "E2 already null"));
}

}  // namespace
