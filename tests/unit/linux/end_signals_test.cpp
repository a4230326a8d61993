// The signals that end a run, in processes of their own: what holds while Ecore begins, before there is an application
// and when the process was started to ignore one of them.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "linux/ecore_start.h"
#include "linux/end_signals.h"
#include "unit/linux/loop_application.h"
#include "unit/linux/port_test.h"

namespace {

// What is raised when the next pipe is made; 0: nothing.
int signalAtPipe = 0;

}  // namespace

// Ecore's, too: it makes the first pipe when its signal handler is in place and has nothing to write to yet.
extern "C" int pipe(int descriptors[2]) noexcept {
  if (signalAtPipe != 0) {
    raise(std::exchange(signalAtPipe, 0));
  }
  return pipe2(descriptors, 0);
}

namespace orvex::port {
namespace {

using testing::ElementsAre;

// Each test in a new process, as a signal lasts.
class EndSignal : public PortTest, public testing::WithParamInterface<int> {
protected:
  EndSignal() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
  static int Signal() { return GetParam(); }
  static void EndTest() { std::exit(testing::Test::HasFailure() ? 1 : 0); }
};

TEST_P(EndSignal, IsNotLostWhileEcoreBegins) {
  const auto run = [] {
    LoopApplication application;
    signalAtPipe = Signal();
    EXPECT_EQ(application.Run(), 0);
    EXPECT_EQ(signalAtPipe, 0) << "no pipe was made";
    EXPECT_THAT(application.steps, ElementsAre("create", "destroy"));
    EndTest();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

// Where Ecore would have written the signal to.
TEST_P(EndSignal, LeavesNothingInStandardInput) {
  const auto run = [] {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
    dup2(ends[1], STDIN_FILENO);
    LoopApplication application;
    signalAtPipe = Signal();
    EXPECT_EQ(application.Run(), 0);
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), -1) << "something was written to it";
    EXPECT_EQ(write(STDIN_FILENO, "x", 1), 1) << "it is what it was";
    EXPECT_EQ(read(ends[0], &byte, 1), 1);
    EndTest();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST_P(EndSignal, WorksWithoutStandardInput) {
  const auto run = [] {
    close(STDIN_FILENO);
    LoopApplication application;
    signalAtPipe = Signal();
    EXPECT_EQ(application.Run(), 0);
    EXPECT_THAT(application.steps, ElementsAre("create", "destroy"));
    EndTest();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

// Of a port that has opened nothing yet, so that the number of standard input is the next one to be had.
TEST_P(EndSignal, IsNotLostWithoutStandardInput) {
  const auto run = [] {
    static int calls = 0;
    HoldEndSignals();
    close(STDIN_FILENO);
    signalAtPipe = Signal();
    EXPECT_EQ(BeginEcore(), "");
    EXPECT_EQ(signalAtPipe, 0) << "no pipe was made";
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
    EndSignalWatch watch;
    EXPECT_TRUE(watch.Begin([] { ++calls; }));
    EXPECT_EQ(calls, 1);
    EndTest();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST_P(EndSignal, StaysIgnoredInAProcessThatWasStartedSo) {
  const auto run = [] {
    signal(Signal(), SIG_IGN);
    LoopApplication application;
    application.onCreate = [&] {
      raise(Signal());
      application.Send(1);
    };
    application.onEvent = [](std::int32_t) { ui_app_exit(); };
    raise(Signal());
    EXPECT_EQ(application.Run(), 0);
    EXPECT_THAT(application.steps, ElementsAre("create", "event 1", "destroy"));
    EndTest();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST_P(EndSignal, EndsAProcessWithoutApplicationAsUsual) {
  const auto run = [] {
    { const LoopApplication gone; }
    raise(Signal());
  };
  EXPECT_EXIT(run(), testing::KilledBySignal(Signal()), "");
}

INSTANTIATE_TEST_SUITE_P(Of, EndSignal, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGQUIT),
                         [](const auto& signal) { return std::string("SIG") + sigabbrev_np(signal.param); });

}  // namespace
}  // namespace orvex::port
