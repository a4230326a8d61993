// How a run is judged: every verdict, at its borders and in words.
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tv/verdict.h"

namespace orvex::tools {
namespace {

// A run that found a difference, and whose service ended in order.
RunSummary RunWith(std::optional<std::uint32_t> wantedMs, std::optional<std::int64_t> inForceMs,
                   std::optional<double> beforeMs, std::optional<double> afterMs) {
  RunSummary run;
  run.report.terminate = "done";
  run.report.result = "pass";
  run.report.wantedMs = wantedMs;
  run.ending.exitCode = 0;
  run.delayAfterMs = inForceMs;
  run.misalignmentBeforeMs = beforeMs;
  run.misalignmentAfterMs = afterMs;
  return run;
}

// A run with the numbers of an aligned one; how it ended decides before the numbers do.
RunSummary AlignedRunThatEndedAs(const char* terminate) {
  RunSummary run = RunWith(67, 67, 40.0, 7.0);
  run.report.terminate = terminate;
  return run;
}

TEST(Verdict, FailsWhenTheServiceDoesNotStartOrEndInOrder) {
  RunSummary run = AlignedRunThatEndedAs("done");
  run.ending.exitCode.reset();
  EXPECT_EQ("failed: the service was not started; +7.0 ms remain", VerdictInWords(run));
  for (const int exitCode : {1, 3, 139}) {
    run.ending.exitCode = exitCode;
    EXPECT_EQ("failed: the service did not end in order; +7.0 ms remain", VerdictInWords(run));
  }
  run.ending.exitCode = 0;
  run.ending.limitReached = true;
  EXPECT_EQ(Verdict::kFailed, VerdictOf(run));
}

TEST(Verdict, FailsWhenTheRunWasOverBeforeItCouldTell) {
  EXPECT_EQ("failed: the run was ended before it had searched to the end; +7.0 ms remain",
            VerdictInWords(AlignedRunThatEndedAs("etc")));
  EXPECT_EQ("failed: the remote's microphone cannot be started; +7.0 ms remain",
            VerdictInWords(AlignedRunThatEndedAs("bt_fail")));
  EXPECT_EQ("failed: the test sound cannot be played; +7.0 ms remain",
            VerdictInWords(AlignedRunThatEndedAs("play_fail")));
  EXPECT_EQ("failed: too much noise in the tones; +7.0 ms remain",
            VerdictInWords(AlignedRunThatEndedAs("abnormal_input_fail")));
}

TEST(Verdict, TellsARunThatFoundNothing) {
  EXPECT_EQ("no_difference: no pair of tones with a difference was heard; +7.0 ms remain",
            VerdictInWords(AlignedRunThatEndedAs("diff_fail")));
  RunSummary crashed = AlignedRunThatEndedAs("diff_fail");
  crashed.ending.exitCode = 139;
  EXPECT_EQ(Verdict::kFailed, VerdictOf(crashed));
}

struct VerdictCase {
  RunSummary run;
  const char* words;
};

// Ordered by verdict. The comment behind a row names another verdict on whose border the row lies.
TEST(Verdict, JudgesWhatARunLeaves) {
  constexpr auto kUnknown = std::nullopt;
  const VerdictCase cases[] = {
      {RunWith(67, 100, 40.0, 40.0), "not_applied: 67 ms wanted, 100 ms in force; +40.0 ms remain"},
      {RunWith(67, 68, 8.0, 8.0), "not_applied: 67 ms wanted, 68 ms in force; +8.0 ms remain"},  // aligned
      {RunWith(0, 1, 100.0, 90.0), "not_applied: 0 ms wanted, 1 ms in force; +90.0 ms remain"},  // clamped
      {RunWith(67, kUnknown, 40.0, kUnknown), "not_applied: 67 ms wanted, the one in force cannot be read"},
      {RunWith(kUnknown, 100, 40.0, 40.0), "not_applied: none wanted, 100 ms in force; +40.0 ms remain"},
      {RunWith(kUnknown, kUnknown, 40.0, kUnknown), "not_applied: none wanted, the one in force cannot be read"},

      {RunWith(67, 67, 40.0, 7.0), "aligned: +7.0 ms remain"},
      {RunWith(67, 67, 40.0, 17.0), "aligned: +17.0 ms remain"},
      {RunWith(67, 67, 40.0, -17.0), "aligned: -17.0 ms remain"},
      {RunWith(67, 67, 40.0, 17.000000000000014), "aligned: +17.0 ms remain"},  // 60 ms, 10.3 ms late, 53.3 ms early
      {RunWith(117, 117, 1.0, 17.0), "aligned: +17.0 ms remain"},               // worse
      {RunWith(0, 0, 40.0, 17.0), "aligned: +17.0 ms remain"},                  // clamped
      {RunWith(67, 67, kUnknown, 6.0), "aligned: +6.0 ms remain"},

      {RunWith(331, 331, 420.0, 651.0), "worse: there were +420.0 ms before; +651.0 ms remain"},
      {RunWith(331, 331, -20.0, 20.1), "worse: there were -20.0 ms before; +20.1 ms remain"},
      {RunWith(0, 0, 20.0, -80.0), "worse: there were +20.0 ms before; -80.0 ms remain"},
      {RunWith(0, 0, -20.0, 30.0), "worse: there were -20.0 ms before; +30.0 ms remain"},          // clamped
      {RunWith(10000, 10000, 20.0, -30.0), "worse: there were +20.0 ms before; -30.0 ms remain"},  // clamped
      {RunWith(67, 67, 40.0, 17.1), "worse: another delay would leave less; +17.1 ms remain"},     // aligned
      {RunWith(67, 67, 40.0, -17.1), "worse: another delay would leave less; -17.1 ms remain"},    // aligned
      {RunWith(67, 67, 40.0, 40.0), "worse: another delay would leave less; +40.0 ms remain"},  // no more than before
      {RunWith(1, 1, 170.0, 70.0), "worse: another delay would leave less; +70.0 ms remain"},   // clamped
      {RunWith(0, 0, 100.0, -70.0), "worse: another delay would leave less; -70.0 ms remain"},  // clamped
      {RunWith(9999, 9999, -170.0, -70.0), "worse: another delay would leave less; -70.0 ms remain"},   // clamped
      {RunWith(10000, 10000, -170.0, 70.0), "worse: another delay would leave less; +70.0 ms remain"},  // clamped
      {RunWith(67, 67, kUnknown, 420.0), "worse: another delay would leave less; +420.0 ms remain"},  // not comparable

      {RunWith(0, 0, 170.0, 70.0), "clamped: the delay is 0 and cannot become less; +70.0 ms remain"},
      {RunWith(0, 0, 170.0, 17.1), "clamped: the delay is 0 and cannot become less; +17.1 ms remain"},  // aligned
      {RunWith(0, 0, 70.0, 70.0), "clamped: the delay is 0 and cannot become less; +70.0 ms remain"},   // was 0 before
      {RunWith(0, 0, kUnknown, 70.0), "clamped: the delay is 0 and cannot become less; +70.0 ms remain"},
      {RunWith(10000, 10000, -170.0, -70.0), "clamped: the delay is 10000 ms and cannot become more; -70.0 ms remain"},
      {RunWith(4294967295, 4294967295, -170.0, -70.0),
       "clamped: the delay is 4294967295 ms and cannot become more; -70.0 ms remain"},
  };
  for (const VerdictCase& row : cases) {
    EXPECT_EQ(row.words, VerdictInWords(row.run));
  }
}

TEST(Verdict, IsGoodWhenTheRunHasDoneWhatCanBeDone) {
  EXPECT_TRUE(IsGood(Verdict::kAligned));
  EXPECT_TRUE(IsGood(Verdict::kClamped));
  for (const Verdict verdict : {Verdict::kFailed, Verdict::kNoDifference, Verdict::kNotApplied, Verdict::kWorse}) {
    EXPECT_FALSE(IsGood(verdict)) << NameOf(verdict);
  }
}

}  // namespace
}  // namespace orvex::tools
