// Workers of the main loop's pool that still run when the application has been destroyed.
#include <Ecore.h>

#include <atomic>
#include <cstdlib>

#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

using testing::ElementsAre;

class Workers : public PortTest {
protected:
  void StartWorker() { m_Thread = ecore_thread_run(&OnWork, &OnEnd, &OnCancel, this); }
  // Starts a worker that works until it is let go, and goes on when it works.
  ScriptedApplication& WhileAWorkerWorks() {
    return application.Do([this] { StartWorker(); }).Until("the worker to begin", [this] { return m_Works.load(); });
  }

  std::function<void()> onWork = [this] { WaitUntil([this] { return letGo.load(); }); };
  std::function<void()> onFinish = [] {};
  std::atomic<bool> letGo{false};
  std::vector<std::string> finishes;  // "end" and "cancel", as they were called
  Ecore_Thread* m_Thread = nullptr;

private:
  static Workers& Self(void* data) { return *static_cast<Workers*>(data); }
  static void OnWork(void* data, Ecore_Thread* /*thread*/) {
    Self(data).m_Works = true;
    Self(data).onWork();
  }
  static void OnEnd(void* data, Ecore_Thread* /*thread*/) { Self(data).Finish("end"); }
  static void OnCancel(void* data, Ecore_Thread* /*thread*/) { Self(data).Finish("cancel"); }
  void Finish(const char* how) {
    finishes.emplace_back(how);
    onFinish();
  }

  std::atomic<bool> m_Works{false};
};

TEST_F(Workers, FinishAndRunTheirEndFunctionOnTheMainLoopBeforeAppMainReturns) {
  const std::string mainLoop = Port().CurrentThread();
  application.onDestroy = [&] {
    EXPECT_THAT(finishes, ElementsAre());
    letGo = true;
  };
  onFinish = [&] { EXPECT_EQ(Port().CurrentThread(), mainLoop); };
  WhileAWorkerWorks().Run();
  EXPECT_THAT(finishes, ElementsAre("end"));
}

TEST_F(Workers, RunTheirCancelFunctionOnTheMainLoopBeforeAppMainReturns) {
  const std::string mainLoop = Port().CurrentThread();
  application.onDestroy = [&] {
    EXPECT_FALSE(ecore_thread_cancel(m_Thread)) << "pending: it works";
    letGo = true;
  };
  onFinish = [&] { EXPECT_EQ(Port().CurrentThread(), mainLoop); };
  WhileAWorkerWorks().Run();
  EXPECT_THAT(finishes, ElementsAre("cancel"));
}

// The pool has no other way to say it: whoever starts a worker must expect its cancel function inside the call.
TEST_F(Workers, ThatGetNoThreadAreCancelledInsideTheCallAndHaveNoHandle) {
  OnMainLoop([this] {
    Port().WithoutThreads([this] {
      StartWorker();
      EXPECT_THAT(finishes, ElementsAre("cancel"));
      EXPECT_EQ(m_Thread, nullptr);
    });
  });
  EXPECT_THAT(finishes, ElementsAre("cancel"));
}

TEST_F(Workers, FindThatNoEventIsTakenWhileTheyAreWaitedFor) {
  const FwEvent late(1, application.GetEventReceiver());
  application.onDestroy = [&] { letGo = true; };
  onFinish = [&] { EXPECT_FALSE(SendEvent(late)); };
  WhileAWorkerWorks().Run();
  EXPECT_THAT(finishes, ElementsAre("end"));
  EXPECT_THAT(application.calls, ElementsAre("create", "destroy"));
}

TEST_F(Workers, SeeNoAlarmGoOffWhileTheyAreWaitedFor) {
  int alarms = 0;
  FwAlarm alarm;
  WhileAWorkerWorks().Do([&] {
    alarm.SetAlarmCallback([](void* count) { return ++*static_cast<int*>(count) > 0; }, &alarms);
    EXPECT_TRUE(alarm.Create(&application, 1, FwAlarm::kRepeatForever));
    ui_app_exit();
  });
  const auto letGoLater = [](void* isLetGo) -> Eina_Bool {
    *static_cast<std::atomic<bool>*>(isLetGo) = true;
    return ECORE_CALLBACK_CANCEL;
  };
  constexpr double kManyPeriodsSeconds = 0.05;
  application.onDestroy = [&] { ecore_timer_add(kManyPeriodsSeconds, letGoLater, &letGo); };
  application.Run();
  EXPECT_EQ(alarms, 0);
}

TEST_F(Workers, ThatHangDoNotKeepTheProcess) {
  constexpr double kSixSecondsAndRoomMs = 12000.0;
  constexpr int kKept = 99;
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto run = [&] {
    std::atomic<double> limitMs{Port().NowMs() + kLimitMs};
    onWork = [&] {
      WaitUntil([&] { return Port().NowMs() > limitMs; });
      std::_Exit(kKept);
    };
    application.onDestroy = [&] { limitMs = Port().NowMs() + kSixSecondsAndRoomMs; };
    WhileAWorkerWorks();
    std::_Exit(AppMain(0, nullptr, &application));
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace orvex::conformance
