// orvex-delay on a running PipeWire daemon.
#include <signal.h>

#include "pipewire/delay_run.h"

namespace orvex::integration {
namespace {

using Delay = DelayTest;

TEST_F(Delay, ProgrammeAndTestSoundAreDelayedAlikeToTheSample) {
  StartDelay();
  EXPECT_EQ(Measure(), AllOf(0));
  EXPECT_EQ(SetDelay(100.0), 100.0);
  EXPECT_EQ(Measure(), AllOf(4800));
  EXPECT_EQ(SetDelay(37.5), 37.5);
  EXPECT_EQ(Measure(), AllOf(1800));
}

}  // namespace
}  // namespace orvex::integration
