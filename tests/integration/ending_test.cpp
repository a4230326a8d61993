// What ends a run from outside: the optical change flag, a termination signal, the running-time limit. The speaker was
// muted before, so that what is put back shows.
#include <signal.h>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

Preparation MutedIn(const sim::RoomConfig& room) {
  return [room](const TestTelevision& television) {
    television.Set("sound/mute", "1");
    television.Set("sound/volume", "23");
    television.Set("sound/speaker", "2");
    television.SetRoom(room);
  };
}

struct EndingMoment {
  const char* name;
  const char* line;
  bool isPlaying;
};

constexpr EndingMoment kMoments[] = {
    {"as the recording begins", kIsRecording, false},
    {"while the ambient noise is learnt", kIsLearningNoise, false},
    {"as the test sound begins", kIsPlaying, true},
    {"while tones are heard", kIsHearingTones, true},
};

// Never with a pair of tones, so that nothing but what is tested ends the run.
Scenario ScenarioOf(const std::string& name, const EndingMoment& moment, const Step& step) {
  return {name + " " + moment.name,
          MutedIn(moment.isPlaying ? RoomWithoutOpticalSound() : RoomThatFallsSilent()),
          {step},
          {}};
}

Expectation Ended(int mute) {
  Expectation expectation = EndedWith("etc");
  expectation.mute = mute;
  expectation.volume = 23;
  return expectation;
}

TEST(Ending, AChangeOfTheOpticalOutputEndsTheRunAndLeavesTheSpeakerAudible) {
  std::vector<Scenario> scenarios;
  for (const EndingMoment& moment : kMoments) {
    scenarios.push_back(ScenarioOf("flag", moment, SetAt(moment.line, kOpticalChangeFlag, "1")));
  }
  for (const Observation& observation : Perform(scenarios)) {
    Check(observation, Ended(0));
  }
}

TEST(Ending, ATerminationSignalEndsTheRunInOrder) {
  std::vector<Scenario> scenarios;
  for (const EndingMoment& moment : kMoments) {
    scenarios.push_back(ScenarioOf("SIGTERM", moment, SignalAt(moment.line, SIGTERM)));
    scenarios.push_back(ScenarioOf("SIGINT", moment, SignalAt(moment.line, SIGINT)));
  }
  for (const Observation& observation : Perform(scenarios)) {
    Check(observation, Ended(1));
  }
}

// While Ecore begins, there is a moment in which its own handler fails: a signal is then lost, and the run ends by its
// time limit. A sanitizer, under which the moment is long, takes offence at the handler.
std::vector<const char*> BeginningLines() {
  return ORVEX_IS_SANITIZED ? std::vector<const char*>{kIsCreating}
                            : std::vector<const char*>{kIsConstructed, kIsCreating};
}

// How far the run comes is open; that it ends in order is not.
TEST(Ending, ASignalAtTheVeryBeginningIsNotLost) {
  std::vector<Scenario> scenarios;
  for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
    for (const char* const line : BeginningLines()) {
      scenarios.push_back(
          {std::to_string(number) + " at " + line, MutedIn(RoomThatFallsSilent()), {SignalAt(line, number)}, {}});
    }
  }
  for (const Observation& observation : Perform(scenarios)) {
    SCOPED_TRACE(observation.name);
    CheckEnding(observation);
    CheckLogForm(observation);
    CheckBlocks(observation);
    EXPECT_EQ("", MissingInOrder(Described(observation.lines),
                                 {"I0 Orvex Service Create Done", "I0 Destroy", "I0 original volume value[23]"}));
    EXPECT_EQ(1U, EndRecordsOf(observation).size());
    EXPECT_EQ(1, observation.mute);
    EXPECT_EQ(23, observation.volume);
  }
}

TEST(Ending, ASecondSignalDoesNotDisturbTheEnd) {
  const EndingMoment& moment = kMoments[2];
  Scenario scenario = ScenarioOf("SIGTERM twice", moment, SignalAt(moment.line, SIGTERM));
  scenario.steps.push_back(SignalAt("original volume value{s}", SIGTERM));
  Check(Perform(scenario), Ended(1));
}

TEST(Ending, ARunThatHearsNothingEndsAfterTenSeconds) {
  const Observation observation = Perform({"silent remote", MutedIn(RoomWithoutBlocks()), {}, {}});
  Check(observation, Ended(1));
  const auto duration = TimeBetween(observation, "Create", "ORVEX_EXIT");
  EXPECT_GE(duration.count(), 9990);
  EXPECT_LT(duration.count(), 15000);
}

}  // namespace
}  // namespace orvex::integration
