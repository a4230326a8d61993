// What the commands answer to wrong usage.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/tool_run.h"

namespace orvex::integration {
namespace {

struct UsageCase {
  const char* program;
  std::vector<std::string> arguments;
  const char* error;
};

void ExpectRefusal(const UsageCase& row) {
  SCOPED_TRACE(testing::PrintToString(row.arguments));
  const ToolRun run = RunProgram(row.program, row.arguments);
  EXPECT_EQ("exit code 2", Describe(run.ending));
  EXPECT_THAT(run.errors, testing::HasSubstr(row.error));
  EXPECT_EQ("", run.output);
}

TEST(Usage, NamesTheOptionTheNumberAndWhatWasExpected) {
  for (const UsageCase& row : {
           UsageCase{ORVEX_SWEEP_PROGRAM,
                     {"--seed", "-1"},
                     "--seed: \"-1\": expected a whole number from 0 to 18446744073709551615"},
           UsageCase{ORVEX_SWEEP_PROGRAM, {"--seed", "x"}, "--seed: \"x\": expected a whole number from 0"},
           UsageCase{
               ORVEX_SWEEP_PROGRAM, {"--rooms", "-1"}, "--rooms: \"-1\": expected a whole number from 1 to 10000000"},
           UsageCase{ORVEX_TV_PROGRAM, {"run", "--seed", "-1"}, "--seed: \"-1\": expected a whole number from 0"},
           UsageCase{ORVEX_SWEEP_PROGRAM, {"--jobs", "-1"}, "--jobs: \"-1\": expected a whole number from 1 to 1024"},
       }) {
    ExpectRefusal(row);
  }
}

TEST(Usage, TellsWhichOptionsOfASweepGoTogether) {
  for (const UsageCase& row : {
           UsageCase{ORVEX_SWEEP_PROGRAM, {"--cut-ms", "3"}, "--cut-ms needs --fine beside it"},
           UsageCase{ORVEX_SWEEP_PROGRAM, {"--lost-blocks", "1"}, "--lost-blocks needs --fine beside it"},
           UsageCase{ORVEX_SWEEP_PROGRAM, {"--fine", "--plot", "figures.svg"}, "--plot cannot be combined with --fine"},
       }) {
    ExpectRefusal(row);
  }
}

TEST(Usage, MessagesBeginWithTheProgramsName) {
  for (const UsageCase& row : {
           UsageCase{ORVEX_TESTSOUND_PROGRAM, {"--pairs", "9", "x.wav"}, "orvex-testsound: --pairs: \"9\": "},
           UsageCase{ORVEX_TESTSOUND_PROGRAM, {}, "orvex-testsound: OUT or --check FILE is missing"},
           UsageCase{ORVEX_SWEEP_PROGRAM, {"--colour"}, "orvex-sweep: unknown option \"--colour\"\n"},
           UsageCase{ORVEX_REPLAY_PROGRAM, {}, "orvex-replay: FILE is missing"},
           UsageCase{ORVEX_TV_PROGRAM, {"dance"}, "orvex-tv: unknown command \"dance\", expected run, "},
           UsageCase{ORVEX_TV_PROGRAM, {"run", "--base-delay", "soon"}, "orvex-tv: --base-delay: \"soon\": "},
       }) {
    ExpectRefusal(row);
  }
}

}  // namespace
}  // namespace orvex::integration
