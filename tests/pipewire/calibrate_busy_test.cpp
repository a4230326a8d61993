// orvex-pc calibrate on a computer that is too busy, whose sound has no priority.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "pipewire/living_room.h"
#include "pipewire/pc_run.h"

namespace orvex::integration {
namespace {

constexpr RoomWays kBusyRoom{190.0, 15.0};
constexpr double kBusyOldMs = 25.0;
constexpr double kNotWrongMs = 0.5;

// What this process starts from now on has no real-time priority, also where the person who runs the tests may have it.
// That cannot be taken back.
void GiveUpPriority() {
  for (const auto resource : {RLIMIT_RTPRIO, RLIMIT_NICE}) {
    const rlimit none{0, 0};
    ::setrlimit(resource, &none);
  }
  ::prctl(PR_CAPBSET_DROP, CAP_SYS_NICE, 0, 0, 0);
}

class BusyLoops {
public:
  BusyLoops() {
    for (std::thread& loop : m_Loops) {
      loop = std::thread([this] {
        while (!m_IsEnding) {
        }
      });
    }
  }
  ~BusyLoops() {
    m_IsEnding = true;
    for (std::thread& loop : m_Loops) {
      loop.join();
    }
  }
  BusyLoops(const BusyLoops&) = delete;
  BusyLoops& operator=(const BusyLoops&) = delete;

private:
  std::atomic<bool> m_IsEnding{false};
  std::array<std::thread, 2> m_Loops;
};

// Whether the calibration is aligned or refused depends on what else the machine does.
class CalibrateBusy : public PcTest {
protected:
  void SetUp() override {
    PcTest::SetUp();
    GiveUpPriority();
  }
};

TEST_F(CalibrateBusy, IsRightOrSaysThatSoundWasLost) {
  LivingRoom room(kBusyRoom);
  room.SetDelay(kBusyOldMs);
  PcOutcome outcome;
  {
    const BusyLoops loops;
    outcome = RunPc(room.GetDaemon(), {"calibrate", "--json"});
  }
  if (outcome.result["verdict"].asString() != "aligned") {
    EXPECT_EQ(1, outcome.exitCode) << outcome.log;
    EXPECT_TRUE(SaysThatSoundWasLost(outcome)) << outcome.log;
    EXPECT_NEAR(kBusyOldMs, room.GetDelay(), 0.05);
    return;
  }
  const double truthMs = kBusyRoom.delayedMs + room.GetDelay() - kBusyRoom.referenceMs;
  EXPECT_NEAR(0.0, truthMs, kNotWrongMs) << outcome.log;
  EXPECT_NEAR(truthMs, outcome.result["after_ms"].asDouble(), kNotWrongMs) << outcome.log;
}

}  // namespace
}  // namespace orvex::integration
