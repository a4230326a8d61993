// What the report says about a recording, in words.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "replay/explanation.h"
#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

Explanation Of(const std::string& blocks, bool hearable = false) {
  return Explain(ReplayRecord(MakeRecording(blocks), hearable));
}

TEST(ReplayExplanation, OfADifference) {
  const Explanation late = Of(Ambient() + "..7...9.");
  EXPECT_EQ(Outcome::kFound, late.outcome);
  EXPECT_EQ("The optical output is 66.0 ms late", late.headline);
  EXPECT_EQ(
      "17 kHz (television's speaker) came first, in buffer 38 (0.627 s); 19 kHz (optical output) followed in buffer 42 "
      "(0.693 s): 4 buffers of 16.50 ms.",
      late.reasons[0]);
  EXPECT_THAT(late.reasons[1], HasSubstr("+66.0 ms: a television shortens"));
  EXPECT_EQ(4u, late.reasons.size());

  const Explanation early = Of(Ambient() + "..9.7.");
  EXPECT_EQ("The optical output is 33.0 ms early", early.headline);
  EXPECT_THAT(early.reasons[0], StartsWith("19 kHz (optical output) came first, in buffer 38"));
  EXPECT_THAT(early.reasons[1], HasSubstr("-33.0 ms: a television lengthens"));
}

TEST(ReplayExplanation, GivesTheMarginsOfBothTonesOfThePair) {
  const auto bytes = MakeRecording(Ambient() + "8...9.");
  const Explanation found = Explain(ReplayRecord(bytes));
  const auto lines = ReplayLines(bytes, true);
  const Json::Value& first = lines[32];
  const double above17 = 20.0 * std::log10(first["m17000"].asDouble() / lines.back()["ambient"]["17000"].asDouble());
  char expected[60];
  std::snprintf(expected, sizeof expected, "17 kHz stood %.1f dB above its ambient mean", above17);
  EXPECT_THAT(found.reasons[2], StartsWith(expected));
  std::snprintf(expected, sizeof expected, "and %.1f dB above its neighbours",
                20.0 * std::log10(first["r17"].asDouble()));
  EXPECT_THAT(found.reasons[2], HasSubstr(expected));
  EXPECT_THAT(found.reasons[3], StartsWith("19 kHz stood "));
}

TEST(ReplayExplanation, TellsOfWhatFollowedTheFirstDifference) {
  const Explanation found = Of(Ambient() + "7..6.9");
  EXPECT_EQ("The optical output is 49.5 ms late", found.headline);
  EXPECT_THAT(found.reasons, Contains("The recording goes on, and so did the receiver: 1 further result followed, the "
                                      "last one +82.5 ms in buffer 41 (0.677 s). A run goes by the first; what comes "
                                      "after it changes nothing there."));
}

TEST(ReplayExplanation, OfATooShortRecording) {
  const Explanation none = Of(std::string(34, '.'));
  EXPECT_EQ("No difference: the recording is too short", none.headline);
  EXPECT_THAT(none.reasons, ElementsAre(HasSubstr("before buffer 35 (0.578 s)")));
  const Explanation justAmbient = Of(Ambient());
  EXPECT_EQ("No difference: neither tone was found", justAmbient.headline);
  EXPECT_THAT(justAmbient.reasons[0], HasSubstr("the recording ends before tones are looked for"));
}

TEST(ReplayExplanation, OfDigitalSilence) {
  const Explanation none = Of(std::string(35, '0') + "7.9");
  EXPECT_EQ(Outcome::kNotFound, none.outcome);
  EXPECT_THAT(none.reasons, ElementsAre(HasSubstr("17 kHz (television's speaker) cannot be found: its ambient mean is "
                                                  "exactly 0"),
                                        HasSubstr("19 kHz (optical output) cannot be found")));
}

TEST(ReplayExplanation, OfOneToneOnly) {
  const Explanation only17 = Of(Ambient() + "...77");
  EXPECT_EQ("No difference: 19 kHz (optical output) was not found", only17.headline);
  EXPECT_EQ("17 kHz (television's speaker) was found in 2 blocks, first in buffer 39 (0.644 s).", only17.reasons[0]);
  EXPECT_THAT(only17.reasons[1], StartsWith("19 kHz (optical output) never reached its threshold"));
  EXPECT_EQ("No difference: 17 kHz (television's speaker) was not found", Of(Ambient() + "...99").headline);
}

TEST(ReplayExplanation, SaysWhenTheStrongestBlockOfAMissingToneBelongsToTheOther) {
  EXPECT_THAT(Of(Ambient() + "..7..").reasons[1],
              AllOf(HasSubstr("its strongest block, buffer 38"), HasSubstr("while 17 kHz sounded, ")));
  EXPECT_THAT(Of(Ambient() + ".....").reasons[1], Not(HasSubstr("sounded")));
}

TEST(ReplayExplanation, OfACoveredTone) {
  const Explanation covered = Of(Ambient() + ".bb.");
  EXPECT_EQ("No difference: 19 kHz (optical output) was not found", covered.headline);
  EXPECT_EQ("19 kHz (optical output) reached its threshold in 2 blocks, but 17 kHz was the stronger one there.",
            covered.reasons[1]);
}

TEST(ReplayExplanation, OfNoisyTones) {
  const Explanation noisy = Of(Ambient() + ".xx.9.");
  EXPECT_EQ("No difference: 17 kHz (television's speaker) was not found", noisy.headline);
  EXPECT_THAT(noisy.reasons[0], StartsWith("17 kHz (television's speaker) reached its threshold in 2 blocks, but was "
                                           "drowned by its neighbours"));
  EXPECT_THAT(noisy.reasons[2], StartsWith("2 tones were rejected as noisy; from number 11 on"));
}

TEST(ReplayExplanation, OfAbnormalInput) {
  const Explanation abnormal = Of(Ambient() + std::string(12, 'y') + "7.9");
  EXPECT_EQ(Outcome::kAbnormal, abnormal.outcome);
  EXPECT_EQ("Given up: abnormal input", abnormal.headline);
  EXPECT_EQ("The 19 kHz tone in buffer 46 (0.759 s) was one noisy tone too many: a run tolerates 10.",
            abnormal.reasons[0]);
  EXPECT_THAT(abnormal.reasons[1], testing::Not(HasSubstr("was found in"))) << "of the tone after the end of the run";
  // Here the difference ends the run before the noisy tones come.
  EXPECT_EQ(Outcome::kFound, Of(Ambient() + "7.9" + std::string(12, 'y')).outcome);
}

TEST(ReplayExplanation, OfAFineReadingThatContradicts) {
  const RunRecord run = ReplayRecord(MakeRecording(Ambient() + "7.9"));
  const double differenceS = run.FindRunResult()->differenceS;
  fine::Reading reading;
  reading.differenceS = differenceS + 0.016;
  reading.intervalS = {differenceS + 0.016, differenceS + 0.016};
  EXPECT_EQ(Outcome::kFound, Explain(run, reading).outcome);
  reading.intervalS = {differenceS + 0.017, differenceS + 0.018};
  const Explanation doubtful = Explain(run, reading);
  EXPECT_EQ(Outcome::kDoubtful, doubtful.outcome);
  EXPECT_THAT(doubtful.headline, testing::EndsWith("late, but that is doubtful"));
  EXPECT_THAT(doubtful.reasons.back(), StartsWith("The fine reading contradicts it: +49.00 ms."));
}

TEST(ReplayExplanation, OfSequenceErrors) {
  const std::string far(19, '.');
  const Explanation late = Of(Ambient() + "7" + far + "9");
  EXPECT_EQ("No difference: both tones were found, but never as a pair", late.headline);
  EXPECT_EQ(
      "Sequence error in buffer 56 (0.924 s): 19 kHz came 20 buffers after 17 kHz, where at most 19 are allowed, and "
      "was taken as a new first tone.",
      late.reasons[2]);
  EXPECT_THAT(Of(Ambient() + "b....6").reasons[2],
              HasSubstr("19 kHz was 2.5 dB weaker than in the block of the first"));

  const Explanation many = Of(Ambient() + "7" + far + "9" + far + "7" + far + "9" + far + "7" + far + "9");
  EXPECT_EQ(2u + 3u + 1u, many.reasons.size());
  EXPECT_EQ("2 further sequence errors.", many.reasons.back());
}

TEST(ReplayExplanation, DoubtsADifferenceThatFollowsALateTone) {
  const std::string far(19, '.');
  const Explanation doubtful = Of(Ambient() + "7" + far + "9...7");
  EXPECT_EQ(Outcome::kDoubtful, doubtful.outcome);
  EXPECT_EQ("The optical output is 66.0 ms early, but that is doubtful", doubtful.headline);
  EXPECT_THAT(doubtful.reasons, Contains(StartsWith("A tone came too late before the pair.")));
  // Late tones after the pair do not matter.
  EXPECT_EQ(Outcome::kFound, Of(Ambient() + "7...9" + far + "7" + far + "9").outcome);
}

TEST(ReplayExplanation, OfTheHearableMode) {
  const Explanation none = Of(Ambient() + "..7..9", true);
  EXPECT_EQ("No difference: no tone was looked for", none.headline);
}

}  // namespace
}  // namespace orvex::tools
