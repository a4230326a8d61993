// The application framework on the real Ecore: lifecycle, order of events, termination signals.
#include <signal.h>

#include <filesystem>
#include <iostream>
#include <thread>
#include <vector>

#include "unit/linux/loop_application.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

using testing::ElementsAre;

class Application : public PortTest {
protected:
  LoopApplication m_Application;
};

TEST_F(Application, CreatesLivesAndDestroysOnce) {
  m_Application.onCreate = [&] { m_Application.Send(7); };
  m_Application.onEvent = [](std::int32_t) {
    ui_app_exit();
    ui_app_exit();
  };
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "event 7", "destroy"));
  EXPECT_EQ(m_Application.GetIdentifier(), "org.velta.loop-test");
}

TEST_F(Application, EndsAtOnceWithDestroyWhenCreateAnswersFalse) {
  m_Application.createAnswer = false;
  m_Application.onCreate = [&] { m_Application.Send(7); };
  m_Application.Run();
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
}

TEST_F(Application, EndsWithDestroyWhenTheEndIsRequestedInCreate) {
  m_Application.onCreate = [&] {
    m_Application.Send(7);
    ui_app_exit();
  };
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
}

TEST_F(Application, AnswersWithFailureWithoutAnApplication) {
  testing::internal::CaptureStderr();
  EXPECT_NE(AppMain(0, nullptr, nullptr), 0);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("the main loop cannot run"));
}

TEST_F(Application, DeliversEventsThatWereSentBeforeTheMainLoop) {
  // In a process of its own: after a first main loop the queue stays closed.
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto run = [this] {
    m_Application.Send(1);
    m_Application.Send(2);
    m_Application.onCreate = [&] { m_Application.Send(3); };
    m_Application.onEvent = [](std::int32_t type) {
      if (type == 3) {
        ui_app_exit();
      }
    };
    m_Application.Run();
    for (const std::string& step : m_Application.steps) {
      std::cerr << step << ';';
    }
    std::exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^create;event 1;event 2;event 3;destroy;$");
}

TEST_F(Application, NeverDeliversInsideTheCallAndKeepsTheOrderOfHandlers) {
  bool isHandling = false;
  m_Application.onCreate = [&] { m_Application.Send(1); };
  m_Application.onEvent = [&](std::int32_t type) {
    EXPECT_FALSE(isHandling) << "event " << type << " inside another";
    isHandling = true;
    if (type == 1) {
      m_Application.Send(2);
      m_Application.Send(3);
    } else if (type == 2) {
      m_Application.Send(4);
    } else if (type == 4) {
      ui_app_exit();
    }
    isHandling = false;
  };
  m_Application.Run();
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "event 1", "event 2", "event 3", "event 4", "destroy"));
}

TEST_F(Application, KeepsOneOrderOverAThreadAndTheMainLoop) {
  // Each sender passes the turn to the other, so there is one true order: 0 1 2 3 ...
  constexpr int kRounds = 500;
  m_Application.onCreate = [&] {
    for (int round = 0; round < kRounds; round += 2) {
      m_Application.Send(round);
      std::thread([&] { m_Application.Send(round + 1); }).join();
    }
  };
  int next = 0;
  m_Application.onEvent = [&](std::int32_t type) {
    EXPECT_EQ(type, next++);
    if (next == kRounds) {
      ui_app_exit();
    }
  };
  m_Application.Run();
  EXPECT_EQ(next, kRounds);
}

TEST_F(Application, DeliversTheEventsOfFourThreadsOneAtATimeInTheOrderOfEach) {
  constexpr int kThreads = 4;
  constexpr int kEvents = 2000;
  std::vector<std::thread> threads;
  m_Application.onCreate = [&] {
    for (int number = 0; number < kThreads; ++number) {
      threads.emplace_back([this, number] {
        for (int event = 0; event < kEvents; ++event) {
          m_Application.Send(number * kEvents + event);
        }
      });
    }
  };
  std::vector<int> next(kThreads);
  int count = 0;
  const std::thread::id mainLoop = std::this_thread::get_id();
  m_Application.onEvent = [&](std::int32_t type) {
    ASSERT_EQ(std::this_thread::get_id(), mainLoop);
    ASSERT_EQ(type % kEvents, next.at(static_cast<std::size_t>(type / kEvents))++);
    if (++count == kThreads * kEvents) {
      ui_app_exit();
    }
  };
  m_Application.Run();
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(count, kThreads * kEvents);
}

TEST_F(Application, DropsEventsOnceTheEndIsRequested) {
  m_Application.onCreate = [&] {
    m_Application.Send(1);
    m_Application.Send(2);
  };
  const FwEvent late(3, m_Application.GetEventReceiver());
  m_Application.onEvent = [&](std::int32_t) {
    ui_app_exit();
    EXPECT_FALSE(SendEvent(late));
  };
  m_Application.onDestroy = [&] { EXPECT_FALSE(SendEvent(late)); };
  m_Application.Run();
  EXPECT_FALSE(SendEvent(late));
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "event 1", "destroy"));
}

TEST_F(Application, AcceptsAnEventForNobody) {
  m_Application.onCreate = [] {
    EXPECT_TRUE(SendEvent(FwEvent(1, nullptr)));
    ui_app_exit();
  };
  m_Application.Run();
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
}

class ApplicationSignal : public Application, public testing::WithParamInterface<int> {};

TEST_P(ApplicationSignal, EndsTheMainLoopInOrder) {
  m_Application.onCreate = [&] { m_Application.Send(1); };
  m_Application.onEvent = [](std::int32_t) { raise(GetParam()); };
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "event 1", "destroy"));
}

TEST_P(ApplicationSignal, IsNotLostInCreate) {
  m_Application.onCreate = [] { raise(GetParam()); };
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
}

TEST_P(ApplicationSignal, IsNotLostBeforeTheMainLoop) {
  raise(GetParam());
  EXPECT_EQ(m_Application.Run(), 0);
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
}

TEST_P(ApplicationSignal, ChangesNothingInDestroyAndAfterTheEnd) {
  m_Application.onCreate = [] { ui_app_exit(); };
  m_Application.onDestroy = [] { raise(GetParam()); };
  EXPECT_EQ(m_Application.Run(), 0);
  raise(GetParam());
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "destroy"));
}

constexpr int kEndSignals[] = {SIGTERM, SIGINT, SIGHUP, SIGQUIT};

std::string NameOfSignal(const testing::TestParamInfo<int>& signal) {
  return std::string("SIG") + sigabbrev_np(signal.param);
}

INSTANTIATE_TEST_SUITE_P(End, ApplicationSignal, testing::ValuesIn(kEndSignals), NameOfSignal);

TEST_F(Application, HasNoThreadOfItsOwnAtRest) {
  const auto countThreads = [] {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
  };
  const auto before = countThreads();  // one, and those of a sanitizer
  m_Application.onCreate = [&] { m_Application.Send(1); };
  m_Application.onEvent = [&](std::int32_t) {
    EXPECT_EQ(countThreads(), before);
    ui_app_exit();
  };
  m_Application.Run();
}

TEST_F(Application, RunsAHundredTimesInOneProcess) {
  m_Application.onCreate = [&] { m_Application.Send(1); };
  m_Application.onEvent = [](std::int32_t) { ui_app_exit(); };
  for (int round = 0; round < 100; ++round) {
    m_Application.steps.clear();
    ASSERT_EQ(m_Application.Run(), 0);
    ASSERT_THAT(m_Application.steps, ElementsAre("create", "event 1", "destroy"));
  }
}

}  // namespace
}  // namespace orvex::port
