// The service as a child: its lines, its end, signals, its time limit, and that it dies with its parent.
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "temporary_folder.h"
#include "tv/service_process.h"

namespace orvex::tools {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;

// Far longer than any of the scripts takes.
constexpr std::chrono::seconds kPatience{60};

class Script {
public:
  explicit Script(const std::string& text) : m_Path(m_Folder.Write("service", "#!/bin/sh\n" + text)) {
    std::filesystem::permissions(m_Path, std::filesystem::perms::owner_all);
  }
  ServiceCommand Command(std::chrono::milliseconds limit = kPatience) const { return {m_Path, "/a/television", limit}; }
  ServiceEnding Run(std::vector<std::string>& lines) const {
    return RunService(Command(), [&](const std::string& line) { lines.push_back(line); });
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

TEST(RunService, NamesTheTelevisionAndKeepsTheRestOfTheEnvironment) {
  ::setenv("ORVEX_TV", "/another/television", 1);
  ::setenv("ORVEX_TOOLS_TEST", "kept", 1);
  std::vector<std::string> lines;
  Script("echo $ORVEX_TV $ORVEX_TOOLS_TEST; read line || echo no input\n").Run(lines);
  ::unsetenv("ORVEX_TV");
  EXPECT_THAT(lines, ElementsAre("/a/television kept", "no input"));
}

TEST(RunService, SaysWhyAServiceCannotBeStarted) {
  const ServiceEnding ending = RunService({"/nonexistent/service", "/tmp"}, [](const std::string&) {});
  EXPECT_EQ("/nonexistent/service cannot be started: No such file or directory", ending.startError);
  EXPECT_EQ(std::nullopt, ending.exitCode);
}

TEST(RunService, TellsASignalFromAnExitCode) {
  std::vector<std::string> lines;
  EXPECT_THAT(Script("kill -SEGV $$\n").Run(lines).exitCode, Optional(128 + SIGSEGV));
}

TEST(RunService, KillsAServiceThatDoesNotEnd) {
  const Script script("exec sleep 1000\n");
  const ServiceEnding ending = RunService(script.Command(std::chrono::milliseconds(20)), [](const std::string&) {});
  EXPECT_TRUE(ending.limitReached);
  EXPECT_THAT(ending.exitCode, Optional(128 + SIGKILL));
  EXPECT_THAT(ending.Problem(), HasSubstr("did not end within"));
}

TEST(RunService, PassesTerminationSignalsOn) {
  const Script script("trap 'echo told; exit 7' TERM INT\necho ready\nwhile :; do sleep 0.01; done\n");
  for (const int number : {SIGTERM, SIGINT}) {
    std::vector<std::string> lines;
    const ServiceEnding ending = RunService(script.Command(), [&](const std::string& line) {
      lines.push_back(line);
      if (line == "ready") {
        ::kill(::getpid(), number);
      }
    });
    EXPECT_THAT(ending.exitCode, Optional(7));
    EXPECT_THAT(lines, ElementsAre("ready", "told"));
  }
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
    RunService(script.Command(), [&](const std::string& line) {
      const pid_t service = std::stoi(line);
      [[maybe_unused]] const ssize_t count = ::write(pipe[1], &service, sizeof service);
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
