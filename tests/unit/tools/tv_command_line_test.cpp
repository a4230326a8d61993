// orvex-tv as it is called: what it prints and its exit codes.
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/json_text.h"
#include "tv/command_line.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

struct Outcome {
  int exitCode;
  std::string out;
  std::string error;
};

Outcome Call(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "orvex-tv");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Outcome outcome{RunCommandLine(static_cast<int>(arguments.size()), arguments.data()), "", ""};
  outcome.out = testing::internal::GetCapturedStdout();
  outcome.error = testing::internal::GetCapturedStderr();
  return outcome;
}

class CommandLine : public testing::Test {
protected:
  // Writes a service that is a shell script of these lines; returns its path.
  std::string Service(const std::string& lines) const {
    const std::string path = m_Folder.Write("service", "#!/bin/sh\n" + lines);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  const TemporaryFolder m_Folder;
  const std::string m_Tv = m_Folder / "tv";
};

TEST_F(CommandLine, SetsAndGetsAValueByItsShortName) {
  EXPECT_EQ(0, Call({"set", "--tv", m_Tv.c_str(), "delay", "120"}).exitCode);
  const Outcome get = Call({"get", "--tv", m_Tv.c_str(), "delay/spdif"});
  EXPECT_EQ(0, get.exitCode);
  EXPECT_EQ("120\n", get.out);
}

TEST_F(CommandLine, RefusesUnknownNamesAndBadValues) {
  const Outcome name = Call({"get", "--tv", m_Tv.c_str(), "colour"});
  EXPECT_EQ(2, name.exitCode);
  EXPECT_THAT(name.error, AllOf(HasSubstr("\"colour\""), HasSubstr("delay/spdif")));
  EXPECT_THAT(Call({"get", "--tv", m_Tv.c_str(), "volmue"}).error, HasSubstr(", did you mean \"volume\"?\nKnown "));
  const Outcome value = Call({"set", "--tv", m_Tv.c_str(), "mute", "2"});
  EXPECT_EQ(2, value.exitCode);
  EXPECT_THAT(value.error, AllOf(HasSubstr("sound/mute: \"2\""), HasSubstr("an integer from 0 to 1")));
}

TEST_F(CommandLine, SaysWhenThereIsNoSuchTelevision) {
  const Outcome get = Call({"get", "--tv", m_Tv.c_str(), "delay"});
  EXPECT_EQ(1, get.exitCode);
  EXPECT_THAT(get.error, HasSubstr(m_Tv + "/delay/spdif does not exist"));
  EXPECT_FALSE(std::filesystem::exists(m_Tv));
}

TEST_F(CommandLine, ListsEveryValueWithItsMeaning) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "77"});
  std::filesystem::remove(m_Tv + "/tv/brand");
  m_Folder.Write("tv/sound/volume", "loud\n");
  const Outcome list = Call({"list", "--tv", m_Tv.c_str()});
  EXPECT_EQ(0, list.exitCode);
  EXPECT_THAT(list.out, testing::ContainsRegex("delay/spdif +77 ms +0\\.\\.4294967295 +delay of the optical output"));
  EXPECT_THAT(list.out, testing::ContainsRegex("tv/brand +\\(missing\\)"));
  EXPECT_THAT(list.out, testing::ContainsRegex("sound/volume +\\(unreadable\\)"));
}

TEST_F(CommandLine, PrintsRecordsAndNamesTheLinesThatAreNone) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "77"});
  m_Folder.Write("tv/events.jsonl", "{\"event\":\"ORVEXENV\"}\n{\"eve");
  const Outcome events = Call({"events", "--tv", m_Tv.c_str()});
  EXPECT_EQ(0, events.exitCode);
  EXPECT_THAT(events.out, HasSubstr("ORVEXENV"));
  EXPECT_THAT(events.error, HasSubstr("line 2: no whole JSON value, skipped"));
}

TEST_F(CommandLine, FailsOnRecordsThatCannotBeRead) {
  std::filesystem::create_directories(m_Tv + "/events.jsonl");
  const Outcome events = Call({"events", "--tv", m_Tv.c_str()});
  EXPECT_EQ(1, events.exitCode);
  EXPECT_EQ("", events.out);
  EXPECT_THAT(events.error, HasSubstr(m_Tv + "/events.jsonl: no regular file"));
}

TEST_F(CommandLine, RefusesAMessageThatIsNoJsonObjectBeforeItLooksForTheService) {
  for (const char* const message : {"hello", "[]", "{\"type\": \"ask\"} {}", "", "{'type': 'ask'}"}) {
    const Outcome send = Call({"send", "--tv", m_Tv.c_str(), message});
    EXPECT_EQ(2, send.exitCode) << message;
    EXPECT_THAT(send.error, HasSubstr("\"" + std::string(message) + "\": expected a message like "));
  }
}

TEST_F(CommandLine, SaysThatNoServiceListens) {
  const Outcome send = Call({"send", "--tv", m_Tv.c_str(), "{}"});
  EXPECT_EQ(1, send.exitCode);
  EXPECT_THAT(send.error, HasSubstr("messages.sock: no service listens"));
}

TEST_F(CommandLine, ExplainsItselfAndRefusesWhatItDoesNotKnow) {
  EXPECT_EQ(0, Call({"--help"}).exitCode);
  EXPECT_EQ(0, Call({"run", "--help"}).exitCode);
  EXPECT_EQ(2, Call({}).exitCode);
  EXPECT_EQ(2, Call({"dance"}).exitCode);
}

TEST_F(CommandLine, RefusesNumbersBelowZeroAndTooLargeOnes) {
  const auto refusal = [](const char* option, const char* value) {
    const Outcome run = Call({"run", option, value, "--service", "/nonexistent/service"});
    EXPECT_EQ(2, run.exitCode) << option << " " << value;
    return run.error;
  };
  EXPECT_THAT(refusal("--seed", "-1"),
              HasSubstr("--seed: \"-1\": expected a whole number from 0 to 18446744073709551615"));
  EXPECT_THAT(refusal("--base-delay", "-1"),
              HasSubstr("--base-delay: \"-1\": expected a whole number of milliseconds from 0 to 4294967295"));
  EXPECT_THAT(refusal("--base-delay", "4294967296"),
              HasSubstr("--base-delay: \"4294967296\": expected a whole number of milliseconds"));
}

TEST_F(CommandLine, PrintsOneObjectOfARunWithTheRecordsOfThisRunOnly) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "100"});
  m_Folder.Write("tv/events.jsonl", "{\"event\":\"BEFORE\"}\n");
  const std::string service = Service(
      "echo 'A.cpp: f(1) > ORVEX_START_SYNC'; echo 'A.cpp: f(1) > avoc delay = 100'\n"
      "echo 'A.cpp: f(1) > diff time = 0.0400'; echo 'A.cpp: f(1) > after delay = 60'\n"
      "echo 60 >$ORVEX_TV/delay/spdif; echo '{\"event\":\"ORVEXSET\"}' >>$ORVEX_TV/events.jsonl\n");
  const Outcome run = Call({"run", "--json", "--tv", m_Tv.c_str(), "--service", service.c_str()});
  EXPECT_EQ(0, run.exitCode) << run.error;
  const Json::Value json = port::ParseJson(run.out);
  EXPECT_EQ("aligned", json["verdict"].asString());
  EXPECT_EQ("done", json["terminate"].asString());
  EXPECT_DOUBLE_EQ(40.0, json["misalignment_before_ms"].asDouble());
  EXPECT_DOUBLE_EQ(0.0, json["misalignment_after_ms"].asDouble());
  ASSERT_EQ(1u, json["events"].size());
  EXPECT_EQ("ORVEXSET", json["events"][0]["event"].asString());
}

TEST_F(CommandLine, FailsWhenTheRunDoesNotEndDoneOrInOrder) {
  const auto run = [&](const std::string& lines) {
    const std::string service = Service(lines);
    return Call({"run", "--service", service.c_str()});
  };
  EXPECT_EQ(1, run("echo 'A.cpp: f(1) > no_diff_detected!!'\n").exitCode);
  const Outcome crashed = run("echo 'A.cpp: f(1) > after delay = 60'; kill -ABRT $$\n");
  EXPECT_EQ(1, crashed.exitCode);
  EXPECT_THAT(crashed.error, HasSubstr("the service was ended by signal 6"));
  const Outcome missing = Call({"run", "--json", "--service", "/nonexistent/service"});
  EXPECT_EQ(1, missing.exitCode);
  EXPECT_THAT(missing.error, HasSubstr("/nonexistent/service cannot be started"));
  EXPECT_THAT(missing.out, HasSubstr("\"exit_code\" : null"));
}

TEST_F(CommandLine, FailsWhenARunHasNotDoneWhatItSaysOrHasMadeThingsWorse) {
  const auto run = [&](const std::string& room, const std::string& lines) {
    const std::string service = Service("echo 'A.cpp: f(1) > after delay = 0'\n" + lines);
    return Call({"run", "--optical-latency", room.c_str(), "--service", service.c_str()});
  };
  const std::string write = "echo 0 >$ORVEX_TV/delay/spdif\n";
  const Outcome notApplied = run("20", "");
  EXPECT_EQ(1, notApplied.exitCode);
  EXPECT_THAT(notApplied.out, AllOf(HasSubstr("delay not applied: 0 ms wanted, 100 ms in force\n"),
                                    HasSubstr("not_applied: 0 ms wanted, 100 ms in force; +40.0 ms remain\n")));
  const Outcome worse = run("20", write);
  EXPECT_EQ(1, worse.exitCode);
  EXPECT_THAT(worse.out, HasSubstr("worse: there were +40.0 ms before; -60.0 ms remain\n"));
  const Outcome clamped = run("150", write);
  EXPECT_EQ(0, clamped.exitCode);
  EXPECT_THAT(clamped.out, HasSubstr("clamped: the delay is 0 and cannot become less; +70.0 ms remain\n"));
}

TEST_F(CommandLine, ShowsTheRunAndOnRequestTheLog) {
  const std::string service = Service("echo 'A.cpp: f(1) > completed ambient noise' >&2\n");
  const Outcome quiet = Call({"run", "--service", service.c_str()});
  EXPECT_THAT(quiet.out, AllOf(HasSubstr("ambient noise measured"), HasSubstr("true misalignment")));
  EXPECT_EQ("", quiet.error);
  const Outcome verbose = Call({"run", "--verbose", "--service", service.c_str()});
  EXPECT_EQ("A.cpp: f(1) > completed ambient noise\n", verbose.error);
}

// A run with its temporary television in a folder of its own, and with a service that leaves debug files.
class InterruptedRun : public CommandLine {
protected:
  void SetUp() override {
    std::filesystem::create_directory(m_Temporary);
    ::setenv("TMPDIR", m_Temporary.c_str(), 1);
    m_Folder.Write("dump", "sound");
    m_Folder.Write("result.csv", "1");
  }
  void TearDown() override { ::unsetenv("TMPDIR"); }

  // A service that names its debug files, then runs `lines`; it exits with 0 on SIGTERM.
  std::string ServiceWithDebugFiles(const std::string& lines) const {
    return Service("trap 'exit 0' TERM\necho 'A.cpp: f(1) > Temp file name=[" + m_Folder / "dump" + "][" +
                   m_Folder / "result.csv" + "]'\n" + lines);
  }
  bool HasDebugFiles() const {
    return std::filesystem::exists(m_Folder / "dump") || std::filesystem::exists(m_Folder / "result.csv");
  }
  bool HasTelevision() const { return !std::filesystem::is_empty(m_Temporary); }

  const std::string m_Temporary = m_Folder / "tmp";
};

TEST_F(InterruptedRun, LeavesNothingAndSaysWhichSignalItWas) {
  ::signal(SIGHUP, SIG_DFL);
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    SetUp();
    const std::string service =
        ServiceWithDebugFiles("kill -" + std::to_string(number) + " $PPID\nwhile :; do sleep 0.01; done\n");
    const Outcome run = Call({"run", "--json", "--service", service.c_str()});
    EXPECT_EQ(128 + number, run.exitCode);
    EXPECT_THAT(run.error, HasSubstr("orvex-tv: interrupted by signal " + std::to_string(number) + " ("));
    EXPECT_THAT(run.out, AllOf(HasSubstr("\"verdict\" : \"failed\""), HasSubstr("\"dump_file\" : null")));
    EXPECT_FALSE(HasDebugFiles());
    EXPECT_FALSE(HasTelevision());
  }
}

TEST_F(InterruptedRun, DoesNotBeginWhenTheSignalCameBefore) {
  sigset_t held;
  sigset_t before;
  sigemptyset(&held);
  sigaddset(&held, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &held, &before);
  ::raise(SIGTERM);
  const std::string service = Service("echo 'A.cpp: f(1) > ORVEX_START_SYNC'\n");
  const Outcome run = Call({"run", "--service", service.c_str()});
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(128 + SIGTERM, run.exitCode);
  EXPECT_THAT(run.out, Not(HasSubstr("run started")));
  EXPECT_FALSE(HasTelevision());
}

TEST_F(InterruptedRun, KeepsTheDebugFilesOfARunThatIsNotInterrupted) {
  const std::string service = ServiceWithDebugFiles("");
  EXPECT_EQ(1, Call({"run", "--service", service.c_str()}).exitCode);
  EXPECT_TRUE(HasDebugFiles());
  EXPECT_FALSE(HasTelevision());
}

// Redirects standard output to `fd` until it is destroyed.
class RedirectedOutput {
public:
  explicit RedirectedOutput(int fd) : m_Before(::dup(STDOUT_FILENO)) { ::dup2(fd, STDOUT_FILENO); }
  ~RedirectedOutput() {
    ::dup2(m_Before, STDOUT_FILENO);
    ::close(m_Before);
  }
  RedirectedOutput(const RedirectedOutput&) = delete;
  RedirectedOutput& operator=(const RedirectedOutput&) = delete;

private:
  int m_Before;
};

TEST_F(InterruptedRun, EndsInOrderWhenItsOutputCannotBeWritten) {
  const std::string service = ServiceWithDebugFiles("while :; do sleep 0.01; done\n");
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  testing::internal::CaptureStderr();
  int exitCode = 0;
  {
    const RedirectedOutput output(full);
    const char* const arguments[] = {"orvex-tv", "run", "--service", service.c_str()};
    exitCode = RunCommandLine(4, arguments);
  }
  ::close(full);
  EXPECT_EQ(1, exitCode);
  EXPECT_EQ("orvex-tv: standard output: cannot be written: No space left on device\n",
            testing::internal::GetCapturedStderr());
  EXPECT_FALSE(HasDebugFiles());
  EXPECT_FALSE(HasTelevision());
}

}  // namespace
}  // namespace orvex::tools
