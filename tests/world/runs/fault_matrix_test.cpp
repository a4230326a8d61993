// Every operation fails, at its first, second, third and last call and for ever, with every result that it has for
// that, in a room in which the run would succeed.
#include <gmock/gmock.h>

#include <cmath>
#include <set>

#include "orvex/platform/watchdog.h"
#include "orvex/sim/truth.h"
#include "world/runs/faults.h"
#include "world/runs/good_room.h"
#include "world/runs/run_rules.h"

namespace {

using namespace orvex::runs;
using testing::IsEmpty;

TEST(GoodRoom, LetsTheRunFindItsDifference) {
  ServiceRun run;
  UseGoodRoom(run);
  ASSERT_TRUE(run.Start() && run.ToEnd());
  EXPECT_STREQ(run.Manager().GetTerminateStatus(), kDone);
  EXPECT_LE(std::abs(orvex::sim::MisalignmentMs({}, run.world.delayMs)), kLargestErrorMs);
  EXPECT_THAT(CheckRun(run), IsEmpty());
}

class FaultMatrix : public testing::TestWithParam<FailingOperation> {
protected:
  // The numbers of the calls that are made to fail; all of them are made in a good run.
  std::set<int> FailingCalls() const {
    ServiceRun run;
    UseGoodRoom(run);
    EXPECT_TRUE(run.Start() && run.ToEnd());
    const int made = run.world.answers.Calls(GetParam().name);
    EXPECT_GT(made, 0) << "never called: " << GetParam().name;
    std::set<int> calls = {1, std::min(2, made), std::min(3, made), made};
    if (std::string(GetParam().name) == "SendEvent") {
      // Without any event nothing ends the process; see ATelevisionWithoutEvents.
      return {1, 2, 3, 4, 5};
    }
    calls.insert(kForEver);
    return calls;
  }
  void ExpectRun(int call, long result) const {
    SCOPED_TRACE("call " + std::to_string(call) + " answers " + std::to_string(result));
    ServiceRun run;
    UseGoodRoom(run);
    if (call == kForEver) {
      run.world.answers.Always(GetParam().name, result);
    } else {
      run.world.answers.OnCall(GetParam().name, call, result);
    }
    ASSERT_TRUE(run.Start());
    EXPECT_TRUE(run.ToEnd());
    const auto terminate = GetParam().terminate.find(call);
    const std::string expected = terminate == GetParam().terminate.end() ? kDone : terminate->second;
    EXPECT_EQ(run.Manager().GetTerminateStatus(), expected);
    if (expected == kDone && !StartsWithAvoc()) {
      EXPECT_LE(std::abs(orvex::sim::MisalignmentMs({}, run.world.delayMs)), kLargestErrorMs);
    }
    EXPECT_THAT(CheckRun(run), IsEmpty());
  }

private:
  // A delay that cannot be read or written is not corrected to the right one.
  static bool StartsWithAvoc() { return std::string(GetParam().name).compare(0, 5, "avoc_") == 0; }
};

TEST_P(FaultMatrix, EndsAsItHasToAndKeepsAllRules) {
  for (const int call : FailingCalls()) {
    for (const long result : GetParam().results) {
      ExpectRun(call, result);
    }
  }
}

std::string NameOf(const testing::TestParamInfo<FailingOperation>& info) {
  std::string name = std::to_string(info.index) + "_";
  for (const char* c = info.param.name; *c != '\0'; ++c) {
    if (std::isalnum(static_cast<unsigned char>(*c)) != 0) {
      name += *c;
    }
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, FaultMatrix, testing::ValuesIn(FailingOperations()), NameOf);

TEST(FaultMatrixBesides, WithoutMemoryForTheApplicationNothingElseHappens) {
  ServiceRun run;
  run.world.answers.Always("new", 0);
  EXPECT_FALSE(run.Start());
  EXPECT_THAT(run.world.journal.Texts(), testing::ElementsAre("> tv_get_hdmi_input_count()"));
  EXPECT_TRUE(run.world.subscriptions.empty());
}

TEST(FaultMatrixBesides, ATelevisionWithoutEventsLetsTheProcessLiveUntilItIsTold) {
  ServiceRun run;
  UseGoodRoom(run);
  run.world.answers.Always("SendEvent", 0);
  ASSERT_TRUE(run.Start());
  run.world.AdvanceMs(11000);
  EXPECT_FALSE(run.world.HasEnded());
  EXPECT_EQ(run.world.journal.Count("> SendEvent(10007)"), 1) << "of the time limit";
  EXPECT_EQ(run.world.journal.Count("> ui_app_exit()"), 0);
  run.Terminate();
  EXPECT_TRUE(run.ToEnd());
  EXPECT_STREQ(run.Manager().GetTerminateStatus(), "etc");
}

TEST(FaultMatrixBesides, AWatchdogThatTakesNoNotificationIsNotifiedAgain) {
  ServiceRun run;
  run.world.answers.Always("watchdog_notify", kWatchdogFailed);
  run.world.answers.Always("ecore_timer_add", 0);  // no time limit
  ASSERT_TRUE(run.Start());
  run.world.AdvanceMs(121'000);
  EXPECT_EQ(run.world.journal.Count("E2 Failed to notify watchdog"), 2);
  run.Terminate();
  EXPECT_TRUE(run.ToEnd());
}

}  // namespace
