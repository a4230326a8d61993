// orvex-pc-room: the command's surroundings, its exit code, and that nothing is left.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "integration/process.h"

namespace orvex::integration {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class RoomProgram : public testing::Test {
protected:
  RoomProgram() {
    std::string name = "/tmp/orvex-room-test-XXXXXX";
    m_Folder = ::mkdtemp(name.data());
  }
  ~RoomProgram() override { fs::remove_all(m_Folder); }

  std::unique_ptr<Process> Start(const std::vector<std::string>& arguments) const {
    return std::make_unique<Process>(
        ProcessCommand{ORVEX_PC_ROOM_PROGRAM, arguments, {{"HOME", m_Folder}}, File("out"), File("errors")});
  }
  ProcessEnding Run(const std::vector<std::string>& arguments) const { return Start(arguments)->WaitForEnd(); }

  fs::path File(const char* name) const { return m_Folder / name; }
  std::string Read(const char* name) const {
    std::ifstream in(File(name));
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  fs::path m_Folder;
};

TEST_F(RoomProgram, AnswersTheExitCodeOfItsCommand) {
  EXPECT_EQ("exit code 7", Describe(Run({"--", "sh", "-c", "echo said; echo complained >&2; exit 7"})));
  EXPECT_EQ("said\n", Read("out"));
  EXPECT_EQ("complained\n", Read("errors"));
}

TEST_F(RoomProgram, TheCommandFindsACompleteRoom) {
  EXPECT_EQ("exit code 0", Describe(Run({"--", ORVEX_PC_PROGRAM, "status"}))) << Read("errors");
  EXPECT_THAT(Read("out"), testing::ContainsRegex("reference output  television, [a-z]+, linked\n"));
  EXPECT_THAT(Read("out"), testing::ContainsRegex("delayed output    soundbar, [a-z]+, linked\n"));
}

TEST_F(RoomProgram, NothingIsLeft) {
  ASSERT_EQ("exit code 0", Describe(Run({"--", "sh", "-c", "echo \"$XDG_RUNTIME_DIR\""}))) << Read("errors");
  const fs::path runtimeFolder = Read("out").substr(0, Read("out").find('\n'));
  ASSERT_THAT(runtimeFolder.string(), HasSubstr("/orvex-pw-"));
  EXPECT_FALSE(fs::exists(runtimeFolder.parent_path())) << runtimeFolder;
  EXPECT_EQ("", Read("errors"));
}

// The command tells the test through a pipe that it runs.
TEST_F(RoomProgram, ASignalEndsTheCommandAndTheRoom) {
  for (const int number : {SIGINT, SIGTERM}) {
    const fs::path pipe = File("pipe");
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    const std::unique_ptr<Process> room =
        Start({"--", "sh", "-c", "sleep 60 & trap 'echo ended; exit 0' TERM; echo \"$XDG_RUNTIME_DIR\" >\"$1\"; wait",
               "sh", pipe});
    std::string runtimeFolder;
    std::ifstream begun(pipe);
    std::getline(begun, runtimeFolder);
    ASSERT_TRUE(fs::exists(runtimeFolder)) << Read("errors");
    room->Signal(number);
    EXPECT_EQ("exit code " + std::to_string(128 + number), Describe(room->WaitForEnd()));
    EXPECT_EQ("ended\n", Read("out"));
    EXPECT_FALSE(fs::exists(fs::path(runtimeFolder).parent_path())) << runtimeFolder;
    fs::remove(pipe);
    fs::remove(File("out"));
  }
}

TEST_F(RoomProgram, WrongUsage) {
  EXPECT_EQ("exit code 2", Describe(Run({})));
  EXPECT_THAT(Read("errors"), HasSubstr("orvex-pc-room: COMMAND is missing"));
  EXPECT_EQ("exit code 2", Describe(Run({"--reference", "-1", "--", "true"})));
  EXPECT_EQ("", Read("out"));
}

}  // namespace
}  // namespace orvex::integration
