// FwAlarm: when it calls, how often, and when no more.
#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

constexpr std::uint32_t kShortMs = 5;
// In which a short alarm that still ran would have called many times.
constexpr double kManyPeriodsMs = 20.0 * kShortMs;

class Alarm : public PortTest {
protected:
  bool Create(std::uint32_t periodMs, int repeatCount) {
    alarm->SetAlarmCallback(&OnCall, this);
    return alarm->Create(&application, periodMs, repeatCount);
  }
  std::function<bool()> Calls(int number) {
    return [this, number] { return calls >= number; };
  }

  std::unique_ptr<FwAlarm> alarm = std::make_unique<FwAlarm>();
  int calls = 0;
  std::function<bool()> onCall = [] { return true; };

private:
  static bool OnCall(void* self) {
    ++static_cast<Alarm*>(self)->calls;
    return static_cast<Alarm*>(self)->onCall();
  }
};

TEST_F(Alarm, CallsFirstAfterOnePeriodAndNotInsideCreate) {
  constexpr std::uint32_t kPeriodMs = 400;
  double createdAtMs = 0.0;
  double calledAtMs = 0.0;
  onCall = [&] {
    calledAtMs = Port().NowMs();
    return true;
  };
  application
      .Do([&] {
        createdAtMs = Port().NowMs();
        EXPECT_TRUE(Create(kPeriodMs, 1));
        EXPECT_EQ(calls, 0);
      })
      .Until("the call", Calls(1))
      .Run();
  EXPECT_GE(calledAtMs, createdAtMs + kPeriodMs / 2.0);
}

TEST_F(Alarm, CallsOnTheMainLoopAsOftenAsItIsToRepeatAndIsInactiveThen) {
  const std::string mainLoop = Port().CurrentThread();
  onCall = [&] {
    EXPECT_EQ(Port().CurrentThread(), mainLoop);
    EXPECT_EQ(alarm->IsActive(), calls < 3) << calls;
    return true;
  };
  application.Do([&] { EXPECT_TRUE(Create(kShortMs, 3)); })
      .Until("three calls", Calls(3))
      .After(kManyPeriodsMs)
      .Do([&] { EXPECT_FALSE(alarm->IsActive()); })
      .Run();
  EXPECT_EQ(calls, 3);
}

TEST_F(Alarm, GoesOnForEverWhateverItsCallbackAnswers) {
  onCall = [&] { return calls % 2 == 0; };
  application.Do([&] { EXPECT_TRUE(Create(kShortMs, FwAlarm::kRepeatForever)); })
      .Until("ten calls", Calls(10))
      .Do([&] { EXPECT_TRUE(alarm->IsActive()); })
      .Run();
}

TEST_F(Alarm, CallsNoMoreAfterDestroyAndCanBeCreatedAgain) {
  int callsAtDestroy = 0;
  application.Do([&] { EXPECT_TRUE(Create(kShortMs, FwAlarm::kRepeatForever)); })
      .Until("a call", Calls(1))
      .Do([&] {
        alarm->Destroy();
        EXPECT_FALSE(alarm->IsActive());
        callsAtDestroy = calls;
      })
      .After(kManyPeriodsMs)
      .Do([&] {
        EXPECT_EQ(calls, callsAtDestroy);
        EXPECT_TRUE(Create(kShortMs, 1));
        EXPECT_TRUE(alarm->IsActive());
      })
      .Until("a call of the second life", [&] { return calls == callsAtDestroy + 1; })
      .Run();
}

TEST_F(Alarm, MayBeDestroyedByItsOwnCallback) {
  onCall = [&] {
    alarm->Destroy();
    return true;
  };
  application.Do([&] { EXPECT_TRUE(Create(kShortMs, FwAlarm::kRepeatForever)); })
      .Until("the call", Calls(1))
      .After(kManyPeriodsMs)
      .Run();
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(alarm->IsActive());
}

TEST_F(Alarm, MayBeStartedAnewByItsLastCallback) {
  onCall = [&] {
    if (calls == 1) {
      EXPECT_TRUE(Create(kShortMs, 1));
    }
    return true;
  };
  application.Do([&] { EXPECT_TRUE(Create(kShortMs, 1)); }).Until("two calls", Calls(2)).After(kManyPeriodsMs).Run();
  EXPECT_EQ(calls, 2);
}

TEST_F(Alarm, EndsWithItsObject) {
  int callsAtTheEnd = 0;
  application.Do([&] { EXPECT_TRUE(Create(kShortMs, FwAlarm::kRepeatForever)); })
      .Until("a call", Calls(1))
      .Do([&] {
        alarm.reset();
        callsAtTheEnd = calls;
      })
      .After(kManyPeriodsMs)
      .Run();
  EXPECT_EQ(calls, callsAtTheEnd);
}

TEST_F(Alarm, ThatIsActiveRefusesASecondCreateAndStaysAsItWas) {
  constexpr std::uint32_t kHourMs = 3600000;
  application
      .Do([&] {
        EXPECT_TRUE(Create(kShortMs, FwAlarm::kRepeatForever));
        EXPECT_FALSE(alarm->Create(&application, kHourMs, 1));
        EXPECT_TRUE(alarm->IsActive());
      })
      .Until("three calls of the first life", Calls(3))
      .Run();
}

TEST_F(Alarm, IsInactiveBeforeCreateAndAcceptsTheLongestPeriod) {
  application
      .Do([&] {
        EXPECT_FALSE(alarm->IsActive());
        EXPECT_TRUE(Create(4294967295U, 1));
        EXPECT_TRUE(alarm->IsActive());
      })
      .After(kManyPeriodsMs)
      .Do([&] { alarm->Destroy(); })
      .Run();
  EXPECT_EQ(calls, 0);
}

TEST_F(Alarm, TakesItsCallbackAfterCreateToo) {
  application
      .Do([&] {
        EXPECT_TRUE(alarm->Create(&application, kShortMs, 1));
        alarm->SetAlarmCallback([](void* userData) { return ++*static_cast<int*>(userData) > 0; }, &calls);
      })
      .Until("the call", Calls(1))
      .Run();
}

}  // namespace
}  // namespace orvex::conformance
