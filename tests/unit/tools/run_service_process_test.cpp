// The service as a child: its lines, its end, signals, its time limit, and that it dies with its parent.
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run/service_process.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;

// Far longer than any of the scripts takes.
constexpr std::chrono::seconds kPatience{60};

const LineReceiver kGoOn = [](const std::string&) { return true; };

class Script {
public:
  explicit Script(const std::string& text) : m_Path(m_Folder.Write("service", "#!/bin/sh\n" + text)) {
    std::filesystem::permissions(m_Path, std::filesystem::perms::owner_all);
  }
  ServiceCommand Command(std::chrono::milliseconds limit = kPatience) const {
    return {m_Path, {"ORVEX_TV=/a/television"}, {}, limit};
  }
  ServiceEnding Run(std::vector<std::string>& lines) const {
    RunSignals signals;
    return RunService(Command(), signals, [&](const std::string& line) {
      lines.push_back(line);
      return true;
    });
  }

private:
  TemporaryFolder m_Folder;
  std::string m_Path;
};

TEST(RunService, HandsOverEveryLineOfBothOutputsAndTheExitCode) {
  std::vector<std::string> lines;
  const ServiceEnding ending = Script("echo one\necho two >&2\nprintf three\nexit 3\n").Run(lines);
  EXPECT_THAT(lines, ElementsAre("one", "two", "three"));
  EXPECT_THAT(ending.exitCode, Optional(3));
  EXPECT_FALSE(ending.limitReached);
}

TEST(RunService, SetsItsVariablesAndKeepsTheRestOfTheEnvironment) {
  ::setenv("ORVEX_TV", "/another/television", 1);
  ::setenv("ORVEX_TOOLS_TEST", "kept", 1);
  std::vector<std::string> lines;
  Script("echo $ORVEX_TV $ORVEX_TOOLS_TEST; read line || echo no input\n").Run(lines);
  ::unsetenv("ORVEX_TV");
  EXPECT_THAT(lines, ElementsAre("/a/television kept", "no input"));
}

TEST(RunService, SaysWhyAServiceCannotBeStarted) {
  RunSignals signals;
  const ServiceEnding ending = RunService({"/nonexistent/service"}, signals, kGoOn);
  EXPECT_EQ("/nonexistent/service cannot be started: No such file or directory", ending.startError);
  EXPECT_EQ(std::nullopt, ending.exitCode);
}

TEST(RunService, TellsASignalFromAnExitCode) {
  std::vector<std::string> lines;
  EXPECT_THAT(Script("kill -SEGV $$\n").Run(lines).exitCode, Optional(128 + SIGSEGV));
}

TEST(RunService, KillsAServiceThatDoesNotEnd) {
  const Script script("exec sleep 1000\n");
  RunSignals signals;
  const ServiceEnding ending = RunService(script.Command(std::chrono::milliseconds(20)), signals, kGoOn);
  EXPECT_TRUE(ending.limitReached);
  EXPECT_THAT(ending.exitCode, Optional(128 + SIGKILL));
  EXPECT_THAT(ending.Problem(), HasSubstr("did not end within"));
}

TEST(RunService, EndsTheServiceInOrderWhenASignalAsksForTheEnd) {
  const Script script("trap 'echo told; exit 7' TERM\necho ready\nwhile :; do sleep 0.01; done\n");
  ::signal(SIGHUP, SIG_DFL);
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    RunSignals signals;
    std::vector<std::string> lines;
    const ServiceEnding ending = RunService(script.Command(), signals, [&](const std::string& line) {
      lines.push_back(line);
      if (line == "ready") {
        ::kill(::getpid(), number);
      }
      return true;
    });
    EXPECT_THAT(ending.exitCode, Optional(7));
    EXPECT_THAT(lines, ElementsAre("ready", "told"));
    EXPECT_EQ(number, signals.Interruption());
  }
}

TEST(RunService, EndsAServiceThatWritesFasterThanItsLinesAreTaken) {
  RunSignals signals;
  const ServiceEnding ending = RunService({"/usr/bin/yes", {}, {}, std::chrono::milliseconds(20)}, signals, kGoOn);
  EXPECT_TRUE(ending.limitReached);
  EXPECT_THAT(ending.exitCode, Optional(128 + SIGKILL));
}

TEST(RunService, PassesASecondSignalOnAndRemembersTheFirst) {
  const Script script(
      "trap 'n=1$n; echo told $n; [ $n = 1 ] || exit 7' TERM\necho ready\nwhile :; do sleep 0.01; done\n");
  RunSignals signals;
  const ServiceEnding ending = RunService(script.Command(), signals, [&](const std::string& line) {
    // No third one: a shell may be told again before it has come to the end of its answer.
    if (line == "ready" || line == "told 1") {
      ::kill(::getpid(), line == "ready" ? SIGINT : SIGTERM);
    }
    return true;
  });
  EXPECT_THAT(ending.exitCode, Optional(7));
  EXPECT_EQ(SIGINT, signals.Interruption());
}

TEST(RunService, EndsTheServiceInOrderWhenTheReceiverOfItsLinesWantsNoMore) {
  const Script script("trap 'echo told; exit 7' TERM\necho ready\nwhile :; do sleep 0.01; done\n");
  RunSignals signals;
  std::vector<std::string> lines;
  const ServiceEnding ending = RunService(script.Command(), signals, [&](const std::string& line) {
    lines.push_back(line);
    return false;
  });
  EXPECT_THAT(ending.exitCode, Optional(7));
  EXPECT_THAT(lines, ElementsAre("ready", "told"));
  EXPECT_EQ(0, signals.Interruption());
}

TEST(RunService, StartsNothingWhenASignalHasComeBefore) {
  RunSignals signals;
  ::raise(SIGTERM);
  const TemporaryFolder folder;
  const Script script("echo >" + folder / "started");
  const ServiceEnding ending = RunService(script.Command(), signals, kGoOn);
  EXPECT_EQ(std::nullopt, ending.exitCode);
  EXPECT_EQ("", ending.Problem());
  EXPECT_EQ("", folder.Read("started"));
  EXPECT_EQ(SIGTERM, signals.Interruption());
}

TEST(RunSignals, LeaveAnIgnoredHangupIgnored) {
  ::signal(SIGHUP, SIG_IGN);
  {
    RunSignals signals;
    ::raise(SIGHUP);
    EXPECT_EQ(0, signals.Interruption());
  }
  ::signal(SIGHUP, SIG_DFL);
}

TEST(RunSignals, AreGoneWithTheObject) {
  {
    const RunSignals signals;
    ::raise(SIGTERM);
  }
  sigset_t pending;
  ::sigpending(&pending);
  EXPECT_EQ(0, sigismember(&pending, SIGTERM));
}

TEST(RunSignals, LetAWriteToAClosedPipeFail) {
  ::signal(SIGPIPE, SIG_DFL);
  std::array<int, 2> pipe{};
  ASSERT_EQ(0, ::pipe(pipe.data()));
  ::close(pipe[0]);
  {
    RunSignals signals;
    EXPECT_EQ(-1, ::write(pipe[1], "x", 1));
    EXPECT_EQ(EPIPE, errno);
    EXPECT_EQ(0, signals.Interruption());
  }
  ::close(pipe[1]);
}

TEST(RunService, DoesNotWaitForWhatTheServiceLeavesBehind) {
  std::vector<std::string> lines;
  EXPECT_THAT(Script("sleep 20 &\necho started\n").Run(lines).exitCode, Optional(0));
  EXPECT_THAT(lines, Contains("started"));
}

// The parent is a process of its own, which is killed in the middle of the run.
TEST(RunService, NeverOutlivesItsParent) {
  const Script script("echo $$\nexec sleep 1000\n");
  std::array<int, 2> pipe{};
  ASSERT_EQ(0, ::pipe(pipe.data()));
  const pid_t parent = ::fork();
  if (parent == 0) {
    RunSignals signals;
    RunService(script.Command(), signals, [&](const std::string& line) {
      const pid_t service = std::stoi(line);
      return ::write(pipe[1], &service, sizeof service) == sizeof service;
    });
    ::_exit(0);
  }
  pid_t service = 0;
  ASSERT_EQ(static_cast<ssize_t>(sizeof service), ::read(pipe[0], &service, sizeof service));
  const int handle = static_cast<int>(::syscall(SYS_pidfd_open, service, 0));
  ASSERT_GE(handle, 0);
  ::kill(parent, SIGKILL);
  ::waitpid(parent, nullptr, 0);
  pollfd ended{handle, POLLIN, 0};
  EXPECT_EQ(1, ::poll(&ended, 1, 60000));
  ::close(handle);
  ::close(pipe[0]);
  ::close(pipe[1]);
}

}  // namespace
}  // namespace orvex::tools
