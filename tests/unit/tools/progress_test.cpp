// What is said of the progress of a long command, and to whom.
#include "progress/progress.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

namespace orvex::tools {
namespace {

using std::chrono::milliseconds;

// What stderr gets of a command that shows its progress four times.
std::string ShownTo(bool isTerminal) {
  std::chrono::steady_clock::time_point now;
  testing::internal::CaptureStderr();
  {
    Progress progress("orvex-sweep", "rooms", 400, {isTerminal, [&now] { return now; }});
    for (const auto& [time, done] :
         {std::pair(999, 9), std::pair(1000, 100), std::pair(1499, 150), std::pair(1500, 200)}) {
      now = std::chrono::steady_clock::time_point(milliseconds(time));
      progress.Show(static_cast<std::size_t>(done));
    }
  }
  return testing::internal::GetCapturedStderr();
}

TEST(Progress, IsShownOnATerminalAfterASecondAndTwiceASecond) {
  EXPECT_EQ(ShownTo(true),
            "\rorvex-sweep: 100 of 400 rooms, 3 s left   "
            "\rorvex-sweep: 200 of 400 rooms, 2 s left   \n");
}

TEST(Progress, IsShownToNobodyElse) {
  EXPECT_EQ(ShownTo(false), "");
}

TEST(Progress, EndsNoLineOfAShortCommand) {
  testing::internal::CaptureStderr();
  { const Progress progress("orvex-sweep", "rooms", 400, {true, std::chrono::steady_clock::now}); }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace orvex::tools
