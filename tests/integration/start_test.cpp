// How a run begins on this computer: who may begin one, what is refused and how, and signals that come very early.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "integration/expectation.h"
#include "integration/parallel.h"
#include "options/version.h"

namespace orvex::integration {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// A folder for what a program writes, and for what it may make.
class Start : public testing::Test {
protected:
  Start() {
    std::string pattern = testing::TempDir() + "orvex-start-XXXXXX";
    m_Folder = mkdtemp(pattern.data()) == nullptr ? "" : pattern;
  }
  ~Start() override { fs::remove_all(m_Folder); }

  const fs::path& Folder() const { return m_Folder; }
  // The service by a shell, which says how; "$0" is its program. "exit code N" or "signal N".
  std::string Run(const std::string& shell, const std::map<std::string, std::string>& environment = {}) {
    Process process({"/bin/sh", {"-c", shell, ORVEX_SERVICE_PROGRAM}, environment, Folder() / "out", Folder() / "err"});
    return Describe(process.WaitForEnd());
  }
  std::string Out() const { return ReadWholeFile(Folder() / "out"); }
  std::string Err() const { return ReadWholeFile(Folder() / "err"); }

private:
  fs::path m_Folder;
};

TEST_F(Start, AsksNothingOfATelevisionToTellItsHelpAndVersion) {
  const std::string version = "orvex-service " + tools::Version() + "\n";
  for (const auto& [argument, text] :
       {std::pair("--help", "Usage: orvex-service"), std::pair("-h", "Usage: orvex-service"),
        std::pair("--version", version.c_str())}) {
    fs::remove(Folder() / "out");
    const fs::path television = Folder() / "television";
    EXPECT_EQ("exit code 0", Run(std::string("\"$0\" ") + argument, {{"ORVEX_TV", television.string()}}));
    EXPECT_THAT(Out(), testing::StartsWith(text));
    EXPECT_EQ(Err(), "");
    EXPECT_FALSE(fs::exists(television));
  }
  EXPECT_EQ("exit code 1", Run("\"$0\" --help >/dev/full"));
}

TEST_F(Start, RefusesUnknownArgumentsBeforeARunBegins) {
  const fs::path television = Folder() / "television";
  EXPECT_EQ("exit code 2", Run("\"$0\" --verbose", {{"ORVEX_TV", television.string()}}));
  EXPECT_EQ(Err(), "orvex-service: unknown argument \"--verbose\", expected --help, --version or nothing\n");
  EXPECT_FALSE(fs::exists(television));
}

TEST_F(Start, NeedsNoHomeAndNoRuntimeFolderAndLeavesNothingThere) {
  const fs::path home = Folder() / "home";
  fs::create_directory(home);
  const TestTelevision television;
  television.SetFaults(R"({"voice.start": -5})");  // soon over
  const std::map<std::string, std::string> environment{{"ORVEX_TV", television.GetDirectory().string()},
                                                       {"HOME", home.string()}};
  for (const std::string without : {"unset XDG_RUNTIME_DIR; ", "unset XDG_RUNTIME_DIR HOME; "}) {
    EXPECT_EQ("exit code 0", Run(without + "exec \"$0\"", environment)) << without << Err();
    EXPECT_THAT(Err(), HasSubstr("terminate=bt_fail"));
  }
  EXPECT_TRUE(fs::is_empty(home));
}

TEST_F(Start, WithoutAPlaceForATelevisionSaysSo) {
  const std::string noPlace = "unset XDG_STATE_HOME XDG_RUNTIME_DIR ORVEX_TV; HOME=/proc/nobody exec \"$0\"";
  EXPECT_EQ("exit code 4", Run(noPlace));
  EXPECT_THAT(Err(), AllOf(HasSubstr("orvex-host: there is no television: cannot make the directory "
                                     "/proc/nobody/.local/state/orvex-tv: No such file or directory\n"),
                           Not(HasSubstr("Orvex Service Create!"))));
}

TEST_F(Start, WithTooFewFileDescriptorsSaysSo) {
#if ORVEX_IS_SANITIZED
  GTEST_SKIP() << "a sanitizer needs some, too";
#endif
  const TestTelevision television;
  for (const char* const count : {"8", "20", "40"}) {
    EXPECT_EQ("exit code 1", Run(std::string("ulimit -n ") + count + "; exec \"$0\"",
                                 {{"ORVEX_TV", television.GetDirectory().string()}}));
    EXPECT_THAT(Err(),
                AllOf(HasSubstr("orvex-host: the main loop cannot run: the system gives this process too few file "
                                "descriptors: expected 48 more than are open; see ulimit -n\n"),
                      Not(HasSubstr("Orvex Service Create!"))));
  }
}

TEST_F(Start, ASecondServiceOnATelevisionIsRefusedAndTheFirstGoesOn) {
  const TestTelevision television;
  ServiceRun first(television, {});
  ASSERT_TRUE(first.WaitFor(kIsRecording));
  EXPECT_EQ("exit code 3", Run("exec \"$0\"", {{"ORVEX_TV", television.GetDirectory().string()}}));
  EXPECT_THAT(Err(), AllOf(HasSubstr("orvex-host: " + television.GetDirectory().string() +
                                     ": another service runs on this television; wait for its end\n"),
                           Not(HasSubstr("Orvex Service Create!"))));
  EXPECT_TRUE(first.WaitFor("text = {result=pass;{s};terminate=done}"));
  EXPECT_EQ("exit code 0", Describe(first.WaitForEnd()));
}

TEST_F(Start, AKilledServiceLeavesNoLock) {
  const TestTelevision television;
  {
    ServiceRun killed(television, {});
    ASSERT_TRUE(killed.WaitFor(kIsRecording));
    killed.Signal(SIGKILL);
    EXPECT_EQ("signal 9", Describe(killed.WaitForEnd()));
  }
  television.Remove("service.log");
  ServiceRun next(television, {});
  EXPECT_TRUE(next.WaitFor(kIsRecording));
  next.Signal(SIGTERM);
  EXPECT_EQ("exit code 0", Describe(next.WaitForEnd()));
}

// Nobody reads what it prints.
TEST_F(Start, AClosedPipeDoesNotEndARun) {
  const TestTelevision television;
  const std::map<std::string, std::string> environment{{"ORVEX_TV", television.GetDirectory().string()}};
  EXPECT_EQ("exit code 0", Run("{ \"$0\" 2>&1; echo $? >\"$ORVEX_TV.code\"; } | true", environment));
  const fs::path code = television.GetDirectory().string() + ".code";
  EXPECT_EQ(ReadWholeFile(code), "0\n");
  fs::remove(code);
  EXPECT_THAT(television.ReadFile("service.log"), HasSubstr("terminate=done"));
  EXPECT_NE(television.Get("delay/spdif"), 100);
}

struct EarlyEnd {
  std::string ending;
  bool wasCreated = false;
  bool wasDestroyed = false;
  bool wentOn = false;  // for longer than half a second
  bool isAsBefore = false;
};

// One run that gets `number` so long after its start.
EarlyEnd EndEarly(int number, std::chrono::microseconds after, const std::vector<int>& blocked) {
  const TestTelevision television;
  television.Set("sound/mute", "1");
  television.Set("sound/speaker", "1");
  const std::string output = television.GetDirectory().string() + ".output";
  Process process(
      {ORVEX_SERVICE_PROGRAM, {}, {{"ORVEX_TV", television.GetDirectory().string()}}, output, output, -1, -1, blocked});
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(after);
  const timespec pause{seconds.count(), static_cast<long>(std::chrono::nanoseconds(after - seconds).count())};
  ::nanosleep(&pause, nullptr);  // the moment is what is drawn
  process.Signal(number);
  EarlyEnd end;
  end.ending = Describe(process.WaitForEnd());
  const std::string log = ReadWholeFile(output);
  end.wasCreated = log.find("Orvex Service Create!") != std::string::npos;
  end.wentOn = log.find("completed ambient noise") != std::string::npos;
  end.wasDestroyed = log.find("original volume value[15]") != std::string::npos;
  end.isAsBefore =
      television.Get("sound/mute") == 1 && television.Get("sound/volume") == 15 && television.Get("delay/spdif") == 100;
  fs::remove(output);
  for (const char* const name : {"/tmp/audio_dump_", "/tmp/audio_result_"}) {
    const std::string stem = name + std::to_string(process.GetId()) + "_1";
    fs::remove(stem);
    fs::remove(stem + ".csv");
  }
  return end;
}

std::vector<EarlyEnd> EndManyEarly(const std::vector<int>& blocked) {
  constexpr std::size_t kRuns = 200;
  constexpr int kFirstUs = 30000;
  constexpr int kSignals[] = {SIGTERM, SIGTERM, SIGINT, SIGHUP, SIGQUIT};
  std::mt19937 random(1);
  std::vector<std::chrono::microseconds> moments;
  for (std::size_t run = 0; run < kRuns; ++run) {
    moments.emplace_back(random() % kFirstUs);
  }
  std::vector<EarlyEnd> ends(kRuns);
  InParallel(kRuns, [&](std::size_t run) {
    ends[run] = EndEarly(kSignals[run % std::size(kSignals)], moments[run], blocked);
  });
  return ends;
}

// Started by somebody who holds the signals back, a run has no moment in which one could end it otherwise.
TEST_F(Start, AnEndSignalAtAnyMomentEndsTheRunInOrder) {
  int created = 0;
  for (const EarlyEnd& end : EndManyEarly({SIGTERM, SIGINT, SIGHUP, SIGQUIT})) {
    EXPECT_EQ(end.ending, "exit code 0");
    EXPECT_TRUE(end.wasCreated && end.wasDestroyed && end.isAsBefore);
    EXPECT_FALSE(end.wentOn);
    created += end.wasCreated ? 1 : 0;
  }
  EXPECT_EQ(created, 200);
}

// Otherwise a signal ends the process as usual before the program's own code runs; nothing has been touched then.
TEST_F(Start, AnEndSignalBeforeTheProgramRunsLeavesTheTelevisionAsItWas) {
  for (const EarlyEnd& end : EndManyEarly({})) {
    EXPECT_TRUE(end.isAsBefore);
    EXPECT_EQ(end.wasCreated, end.wasDestroyed);
    EXPECT_EQ(end.ending == "exit code 0", end.wasCreated) << end.ending;
    EXPECT_FALSE(end.wentOn);
  }
}

}  // namespace
}  // namespace orvex::integration
