// The end of the main loop while workers of its pool still run.
#include <Ecore.h>
#include <signal.h>

#include <future>
#include <thread>

#include "linux/main_loop.h"
#include "unit/linux/loop_application.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

using testing::ElementsAre;

// A job that works until it is let go, and what the main loop hears of it.
class Worker {
public:
  void Start() { m_Thread = ecore_thread_run(&OnWork, &OnEnd, &OnCancel, this); }
  void WaitUntilItWorks() { m_Started.get_future().wait(); }
  void LetGo() { m_LetGo.set_value(); }
  bool Cancel() { return ecore_thread_cancel(m_Thread) == EINA_TRUE; }

  int ends = 0;
  int cancels = 0;

private:
  static void OnWork(void* data, Ecore_Thread* /*thread*/) {
    auto& self = *static_cast<Worker*>(data);
    self.m_Started.set_value();
    self.m_LetGo.get_future().wait();
  }
  static void OnEnd(void* data, Ecore_Thread* /*thread*/) { ++static_cast<Worker*>(data)->ends; }
  static void OnCancel(void* data, Ecore_Thread* /*thread*/) { ++static_cast<Worker*>(data)->cancels; }

  Ecore_Thread* m_Thread = nullptr;
  std::promise<void> m_Started;
  std::promise<void> m_LetGo;
};

class Workers : public PortTest {
protected:
  Workers() {
    m_Application.onCreate = [this] {
      StartWorker();
      ui_app_exit();
    };
  }

  void StartWorker() {
    m_Worker.Start();
    m_Worker.WaitUntilItWorks();
  }

  LoopApplication m_Application;
  Worker m_Worker;
};

TEST_F(Workers, FinishAndRunTheirEndFunctionBeforeAppMainReturns) {
  m_Application.onDestroy = [&] {
    EXPECT_EQ(m_Worker.ends, 0);
    m_Worker.LetGo();
  };
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_EQ(m_Worker.ends, 1);
  EXPECT_EQ(m_Worker.cancels, 0);
}

TEST_F(Workers, RunTheirCancelFunctionWhenTheyWereCancelledAtWork) {
  m_Application.onDestroy = [&] {
    EXPECT_FALSE(m_Worker.Cancel()) << "pending: it works";
    m_Worker.LetGo();
  };
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_EQ(m_Worker.ends, 0);
  EXPECT_EQ(m_Worker.cancels, 1);
}

TEST_F(Workers, FinishThoughFurtherSignalsComeMeanwhile) {
  // The second worker is let go by the end of the first, so both signals come while there is still work.
  Worker second;
  m_Application.onCreate = [&] {
    StartWorker();
    second.Start();
    second.WaitUntilItWorks();
    raise(SIGTERM);
  };
  m_Application.onDestroy = [&] {
    raise(SIGTERM);
    ecore_timer_add(
        0.01,
        [](void* worker) -> Eina_Bool {
          raise(SIGINT);
          static_cast<Worker*>(worker)->LetGo();
          return ECORE_CALLBACK_CANCEL;
        },
        &m_Worker);
    second.LetGo();
  };
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
  EXPECT_EQ(m_Worker.ends + second.ends, 2);
}

TEST_F(Workers, HearNoEventWhileTheyAreWaitedFor) {
  m_Application.onDestroy = [&] {
    EXPECT_FALSE(SendEvent(FwEvent(1, m_Application.GetEventReceiver())));
    m_Worker.LetGo();
  };
  m_Application.Run();
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
}

TEST_F(Workers, SeeNoAlarmGoOffWhileTheyAreWaitedFor) {
  FwAlarm alarm;
  int alarms = 0;
  m_Application.onCreate = [&] {
    StartWorker();
    alarm.SetAlarmCallback([](void* count) { return ++*static_cast<int*>(count) > 0; }, &alarms);
    EXPECT_TRUE(alarm.Create(nullptr, 1, FwAlarm::kRepeatForever));
    ui_app_exit();
  };
  m_Application.onDestroy = [&] {
    constexpr double kMuchLaterSeconds = 0.03;
    ecore_timer_add(
        kMuchLaterSeconds,
        [](void* worker) -> Eina_Bool {
          static_cast<Worker*>(worker)->LetGo();
          return ECORE_CALLBACK_CANCEL;
        },
        &m_Worker);
  };
  m_Application.Run();
  EXPECT_EQ(alarms, 0);
}

TEST_F(Workers, AreWaitedForNoLongerThanTheLimit) {
  ASSERT_EQ(StartMainLoop(), "");
  StartWorker();
  EXPECT_FALSE(DrainWorkers(std::chrono::milliseconds(50)));
  m_Worker.LetGo();
  EXPECT_TRUE(DrainWorkers(std::chrono::seconds(30)));
  EXPECT_EQ(m_Worker.ends, 1);
  StopMainLoop();
}

TEST_F(Workers, HaveTheirEndFunctionRunThoughTheirThreadIsGone) {
  ASSERT_EQ(StartMainLoop(), "");
  m_Worker.Start();
  m_Worker.LetGo();
  while (ecore_thread_active_get() > 0) {
    std::this_thread::yield();
  }
  EXPECT_EQ(m_Worker.ends, 0) << "it waits in the main loop's queue";
  EXPECT_TRUE(DrainWorkers(std::chrono::seconds(30)));
  EXPECT_EQ(m_Worker.ends, 1);
  StopMainLoop();
}

TEST_F(Workers, DoNotKeepTheProcessBeyondSixSeconds) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(m_Application.Run(), testing::ExitedWithCode(0), "did not finish within 6 s");
}

}  // namespace
}  // namespace orvex::port
