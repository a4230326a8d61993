// A standard output that cannot be written: full, closed, or a pipe that nobody reads.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "output/standard_output.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::ExitedWithCode;

constexpr int kFailure = 3;
constexpr std::size_t kMoreThanAnyBuffer = 300000;

int PrintLittle() {
  std::printf("little\n");
  return 0;
}

int PrintMuch() {
  std::cout << std::string(kMoreThanAnyBuffer, 'x') << '\n';
  return 0;
}

void UseFullDevice() {
  ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO);
}

void UsePipeWithoutReader() {
  std::array<int, 2> ends{};
  ASSERT_EQ(0, ::pipe(ends.data()));
  ::close(ends[0]);
  ::dup2(ends[1], STDOUT_FILENO);
}

void Close() {
  ::close(STDOUT_FILENO);
}

// Runs the work as main() does, in a process of its own, as it ends that.
[[noreturn]] void RunAndExit(void (*prepare)(), int (*work)()) {
  prepare();
  std::_Exit(RunWithStandardOutput("tool", kFailure, work));
}

TEST(StandardOutput, ThatCannotBeWrittenIsAnErrorWithItsCause) {
  EXPECT_EXIT(RunAndExit(UseFullDevice, PrintLittle), ExitedWithCode(kFailure),
              "^tool: standard output: cannot be written: No space left on device\n$");
  EXPECT_EXIT(RunAndExit(UsePipeWithoutReader, PrintLittle), ExitedWithCode(kFailure),
              "^tool: standard output: cannot be written: Broken pipe\n$");
  EXPECT_EXIT(RunAndExit(Close, PrintLittle), ExitedWithCode(kFailure),
              "^tool: standard output: cannot be written: Bad file descriptor\n$");
}

// The output fails before the work ends in this case, so that its cause is no longer known at the end.
TEST(StandardOutput, ThatCannotBeWrittenIsAnErrorAlsoWhenMoreWasPrintedThanItsBufferHolds) {
  for (void (*const prepare)() : {UseFullDevice, UsePipeWithoutReader, Close}) {
    EXPECT_EXIT(RunAndExit(prepare, PrintMuch), ExitedWithCode(kFailure), "^tool: standard output: cannot be written");
  }
}

TEST(StandardOutput, LeavesTheExitCodeAsItIsWhenNothingIsLost) {
  const auto nothing = [] {};
  EXPECT_EXIT(RunAndExit(nothing, PrintLittle), ExitedWithCode(0), "^$");
  EXPECT_EXIT(RunAndExit(nothing, [] { return 1; }), ExitedWithCode(1), "^$");
  EXPECT_EXIT(RunAndExit(UseFullDevice, [] { return 0; }), ExitedWithCode(0), "^$");  // nothing was printed
}

TEST(StandardOutput, ThatCannotBeWrittenLeavesAWorseExitCode) {
  EXPECT_EXIT(RunAndExit(UseFullDevice, [] { return PrintLittle() + 7; }), ExitedWithCode(7), "cannot be written");
}

TEST(StandardOutput, ThatIsClosedIsNotReplacedByAFileThatIsOpened) {
  const TemporaryFolder folder;
  const std::string path = folder / "file";
  static const char* name;
  name = path.c_str();
  EXPECT_EXIT(
      RunAndExit(Close, [] { return ::open(name, O_WRONLY | O_CREAT, 0600) > STDERR_FILENO ? PrintLittle() : 99; }),
      ExitedWithCode(kFailure), "cannot be written");
  EXPECT_EQ("", folder.Read("file"));
}

TEST(StandardOutput, LeavesSigpipeAtItsDefaultInProgramsThatTheToolStarts) {
  EXPECT_EXIT(RunAndExit([] {}, [] { return std::system("kill -PIPE $$") == SIGPIPE ? 5 : 0; }), ExitedWithCode(5),
              "^$");
}

}  // namespace
}  // namespace orvex::tools
