// The end that a run has to come to.
#pragma once

#include <gmock/gmock.h>

#include <string>

#include "world/runs/run_rules.h"

namespace orvex::runs {

// Performs the run: it ends with this status, and keeps all rules.
inline void ExpectEnd(ServiceRun& run, const std::string& terminate) {
  ASSERT_TRUE(run.Start());
  EXPECT_TRUE(run.ToEnd());
  EXPECT_EQ(run.Manager().GetTerminateStatus(), terminate);
  EXPECT_THAT(CheckRun(run), testing::IsEmpty());
}

}  // namespace orvex::runs
