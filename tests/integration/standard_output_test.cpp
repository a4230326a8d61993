// Every command tells when what it prints cannot be written.
#include <unistd.h>

#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/test_television.h"
#include "integration/tool_run.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;

struct Command {
  const char* program;
  std::vector<std::string> arguments;
  const char* failure;  // how it then ends
};

struct Prepared {
  TestTelevision television;
  std::vector<Command> commands;

  Prepared() {
    television.WriteFile("silence", std::string(40 * kVoiceBlockBytes, '\0'));
    television.WriteFile("sound.wav", "none");
    const std::string directory = television.GetDirectory().string();
    const std::string sound = television.PathOf("new.wav").string();
    commands = {
        {ORVEX_TESTSOUND_PROGRAM, {"--help"}, "exit code 2"},
        {ORVEX_TESTSOUND_PROGRAM, {sound}, "exit code 2"},
        {ORVEX_TESTSOUND_PROGRAM, {"--check", television.PathOf("sound.wav").string()}, "exit code 2"},
        {ORVEX_SWEEP_PROGRAM, {"--help"}, "exit code 2"},
        {ORVEX_SWEEP_PROGRAM, {"--rooms", "1", "--jobs", "1"}, "exit code 2"},
        {ORVEX_REPLAY_PROGRAM, {"--help"}, "exit code 2"},
        {ORVEX_REPLAY_PROGRAM, {television.PathOf("silence").string()}, "exit code 2"},
        {ORVEX_TV_PROGRAM, {"--help"}, "exit code 1"},
        {ORVEX_TV_PROGRAM, {"run", "--help"}, "exit code 1"},
        {ORVEX_TV_PROGRAM, {"list", "--tv", directory}, "exit code 1"},
        {ORVEX_TV_PROGRAM, {"get", "--tv", directory, "delay"}, "exit code 1"},
        {ORVEX_TV_PROGRAM, {"events", "--tv", directory}, "exit code 1"},
    };
  }
};

void ExpectFailure(const Command& command, Process& process, const std::filesystem::path& errors) {
  SCOPED_TRACE(std::string(command.program) + ' ' + testing::PrintToString(command.arguments));
  EXPECT_EQ(command.failure, Describe(process.WaitForEnd()));
  EXPECT_THAT(ReadWholeFile(errors), HasSubstr(": standard output: cannot be written"));
  std::filesystem::remove(errors);
}

TEST(StandardOutput, OfEveryCommandThatIsAFullDeviceIsAnError) {
  const Prepared prepared;
  const auto errors = prepared.television.PathOf("stderr");
  for (const Command& command : prepared.commands) {
    Process process({command.program, command.arguments, {}, "/dev/full", errors});
    ExpectFailure(command, process, errors);
  }
}

TEST(StandardOutput, OfEveryCommandThatIsClosedIsAnError) {
  const Prepared prepared;
  const auto errors = prepared.television.PathOf("stderr");
  for (const Command& command : prepared.commands) {
    std::vector<std::string> arguments{"-c", "exec \"$@\" >&-", "sh", command.program};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    Process process({"/bin/sh", arguments, {}, "/dev/null", errors});
    ExpectFailure(command, process, errors);
  }
}

TEST(StandardOutput, OfEveryCommandThatIsAPipeWithoutAReaderIsAnErrorAndNoCrash) {
  const Prepared prepared;
  const auto errors = prepared.television.PathOf("stderr");
  std::array<int, 2> ends{};
  ASSERT_EQ(0, ::pipe(ends.data()));
  ::close(ends[0]);
  for (const Command& command : prepared.commands) {
    Process process({command.program, command.arguments, {}, {}, errors, -1, ends[1]});
    ExpectFailure(command, process, errors);
  }
  ::close(ends[1]);
}

}  // namespace
}  // namespace orvex::integration
