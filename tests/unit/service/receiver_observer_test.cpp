// The receiver tells its observer of each step after it has logged the step and before it calls its owner back.
#include "support/detector_model.h"
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using orvex::detector::Tone;
using testing::ElementsAre;

// Adds each step to the journal, between the lines.
class JournalObserver : public OrvexReceiverObserver {
public:
  explicit JournalObserver(orvex::world::World& world) : m_World(world) {}

  void OnBlock(std::int32_t /*buffer*/, const ToneMagnitudes& /*magnitudes*/, const Levels& /*ambient*/) override {
    m_World.Call("block observed");
  }
  void OnAmbientKnown(std::int32_t /*buffer*/, const Levels& /*means*/) override { m_World.Call("ambient observed"); }
  void OnFirstTone(std::int32_t /*buffer*/, Tone /*tone*/, double /*needed*/) override {
    m_World.Call("first tone observed");
  }
  void OnSequenceError(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*first*/, double /*needed*/) override {
    m_World.Call("sequence error observed");
  }
  void OnNoisyTone(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*count*/) override {
    m_World.Call("noisy tone observed");
  }
  void OnPair(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*first*/, double /*differenceS*/) override {
    m_World.Call("pair observed");
  }
  void OnAbnormalInput(std::int32_t /*buffer*/) override { m_World.Call("abnormal input observed"); }
  void OnExtend(std::int32_t /*buffer*/) override { m_World.Call("extend observed"); }

private:
  orvex::world::World& m_World;
};

class ReceiverObserver : public ReceiverTest {
protected:
  // What comes in the journal before each step and after it.
  Texts AroundSteps(int buffer, const Samples& block) {
    Texts around;
    const Texts events = EventsAt(buffer, block);
    for (std::size_t i = 1; i < events.size(); ++i) {
      if (events[i].find(" observed") != std::string::npos && events[i] != "> block observed") {
        around.push_back(events[i - 1]);
        around.push_back(events[i]);
        around.push_back(i + 1 < events.size() ? events[i + 1] : "end");
      }
    }
    return around;
  }

  JournalObserver observer{world};
};

TEST_F(ReceiverObserver, IsToldOfABlockWhenItsMagnitudesAreLogged) {
  receiver.SetObserver(&observer);
  Start();
  BeQuietUntil(5);
  EXPECT_THAT(Hear(quiet), ElementsAre("I0 m_ReceiveBTAudioDataCB", "I0 buffer: 5", testing::StartsWith("I0 0 / 4.0"),
                                       "> block observed"));
}

TEST_F(ReceiverObserver, IsToldOfAStepBetweenItsLineAndTheCallToTheOwner) {
  receiver.SetObserver(&observer);
  Start();
  EXPECT_THAT(AroundSteps(orvex::detector::kAmbientBuffer, quiet),
              ElementsAre("E0 completed ambient noise", "> ambient observed", "> end of ambient noise"));
  EXPECT_THAT(AroundSteps(40, Tone17(100)), ElementsAre(kFirst17, "> first tone observed", "end"));
  EXPECT_THAT(AroundSteps(45, Tone19(100)), ElementsAre("I0 @ [RESULT] [40] - [45] : 0.0825 s\n", "> pair observed",
                                                        "E0 completed calculation of delay"));
  EXPECT_THAT(AroundSteps(46, Tone19(90)), ElementsAre("I0 syquence error -> recheck \n", "> sequence error observed",
                                                       kFirst19, kFirst19, "> first tone observed", "end"));
  EXPECT_THAT(AroundSteps(50, Tone17(100)), ElementsAre("I0 (ruvo)   ====> @ [RESULT] [50] - [46] : -0.0660 s\n",
                                                        "> pair observed", "E0 completed calculation of delay"));
  LoseBlocksUntil(251);
  EXPECT_THAT(AroundSteps(251, quiet),
              ElementsAre("I0 [Recorder] Extend bt audio recorder", "> extend observed", "> block observed"));
}

TEST_F(ReceiverObserver, IsToldOfANoisyToneAndOfAbnormalInput) {
  const Samples noisy17 = Block({100.0, 0.0, 60.0, 0.0, 0.0, 0.0});
  const Samples noisy19 = Block({0.0, 0.0, 60.0, 100.0, 0.0, 0.0});
  receiver.SetObserver(&observer);
  Start();
  EXPECT_THAT(AroundSteps(36, noisy17),
              ElementsAre(testing::StartsWith("I0 noise is high / "), "> noisy tone observed", "end"));
  for (int buffer = 37; buffer < 46; ++buffer) {
    EXPECT_THAT(AroundSteps(buffer, noisy19),
                ElementsAre(testing::StartsWith("I0 noise value is too high/"), "> noisy tone observed", "end"));
  }
  EXPECT_THAT(AroundSteps(46, noisy19),
              ElementsAre(testing::StartsWith("I0 noise value is too high/"), "> noisy tone observed",
                          "E2 ERROR occured. Exit service", "E2 by abnormal input", "> abnormal input observed",
                          "> abnormal status"));
}

TEST_F(ReceiverObserver, MayLeaveEveryStepAlone) {
  using testing::Contains;
  const Samples noisy17 = Block({100.0, 0.0, 60.0, 0.0, 0.0, 0.0});
  OrvexReceiverObserver plain;
  receiver.SetObserver(&plain);
  Start();
  EXPECT_THAT(EventsAt(40, Tone17(100)), Contains(kFirst17));
  EXPECT_THAT(EventsAt(45, Tone19(100)), Contains("E0 completed calculation of delay"));
  EXPECT_THAT(EventsAt(46, Tone19(90)), Contains("I0 syquence error -> recheck \n"));
  for (int buffer = 47; buffer < 57; ++buffer) {
    EXPECT_THAT(EventsAt(buffer, noisy17), Contains(testing::StartsWith("I0 noise is high / ")));
  }
  EXPECT_THAT(EventsAt(57, Block({0.0, 0.0, 60.0, 100.0, 0.0, 0.0})), Contains("E2 by abnormal input"));
}

TEST_F(ReceiverObserver, HearsNothingOfAnExtendCommandThatFailed) {
  BlockReports reports;
  receiver.SetObserver(&reports);
  Start();
  LoseBlocksUntil(251);
  world.answers.Next("bt_hid_send_rc_command", {kVoiceRefused});
  HearRecord(nullptr);
  EXPECT_TRUE(reports.reports.empty());
}

TEST_F(ReceiverObserver, GetsTheAmbientSumsAndThenTheMeans) {
  BlockReports reports;
  receiver.SetObserver(&reports);
  Start();
  BeQuietUntil(5);
  // Of 30 blocks the levels are 1, 2, … 30, the sum is 465.
  for (std::int16_t level = 1; level <= 30; ++level) {
    Hear(Click(level));
    EXPECT_EQ(reports.ambient.at18000, level * (level - 1) / 2.0);
  }
  Hear(Click(8000));
  EXPECT_EQ(reports.ambient.at18000, 465.0);
  EXPECT_THAT(reports.reports, ElementsAre(Report{Step::kAmbientKnown, 35, {}, 0, {15.5, 15.5, 15.5, 15.5}}));
  Hear(Click(8));
  EXPECT_EQ(reports.ambient.at18000, 15.5);
}

}  // namespace
