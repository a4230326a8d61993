// Where the commands put what a person asks them to write.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/test_television.h"
#include "integration/tool_run.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;

class Output : public testing::Test {
protected:
  std::string PathOf(const std::string& name) const { return m_Folder.PathOf(name).string(); }

  // A way to /dev/null that can be taken away without harm.
  std::string Device() const {
    std::filesystem::create_symlink("/dev/null", PathOf("device"));
    return PathOf("device");
  }

  const TestTelevision m_Folder;
};

TEST_F(Output, OfTestsoundIsARegularFileOrStandardOutput) {
  const std::string device = Device();
  const ToolRun refused = RunProgram(ORVEX_TESTSOUND_PROGRAM, {device});
  EXPECT_EQ("exit code 2", Describe(refused.ending));
  EXPECT_EQ("orvex-testsound: " + device + ": no regular file, expected one or a new name\n", refused.errors);
  EXPECT_EQ("", refused.output);
  EXPECT_TRUE(std::filesystem::is_character_file(device));
  const ToolRun file = RunProgram(ORVEX_TESTSOUND_PROGRAM, {PathOf("sound.wav")});
  const ToolRun output = RunProgram(ORVEX_TESTSOUND_PROGRAM, {"-"});
  EXPECT_EQ("exit code 0", Describe(output.ending));
  EXPECT_EQ(m_Folder.ReadFile("sound.wav"), output.output);
  EXPECT_THAT(file.output, HasSubstr("sound.wav: 2.738 s, 4 pairs"));
  EXPECT_THAT(output.errors, HasSubstr("-: 2.738 s, 4 pairs"));
}

TEST_F(Output, OfReplayIsNotOfStandardInputTwice) {
  const ToolRun refused = RunProgram(ORVEX_REPLAY_PROGRAM, {"-", "-"});
  EXPECT_EQ("exit code 2", Describe(refused.ending));
  EXPECT_THAT(refused.errors, HasSubstr("- is given more than once"));
}

class OutputOfReplay : public Output {
protected:
  OutputOfReplay() { m_Folder.WriteFile("recording", kSilence); }

  ToolRun Report(const std::string& page, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"--report", page, m_Recording};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunProgram(ORVEX_REPLAY_PROGRAM, arguments);
  }

  const std::string kSilence = std::string(40 * kVoiceBlockBytes, '\0');
  const std::string m_Recording = PathOf("recording");
};

TEST_F(OutputOfReplay, IsNotTheRecordingByWhateverName) {
  std::filesystem::create_symlink("recording", PathOf("symbolic"));
  std::filesystem::create_hard_link(m_Recording, PathOf("hard"));
  for (const char* const name : {"recording", "symbolic", "hard"}) {
    const ToolRun run = Report(PathOf(name));
    EXPECT_EQ("exit code 2", Describe(run.ending));
    EXPECT_THAT(run.errors, HasSubstr(": the same file as " + m_Recording + ", expected another one"));
    EXPECT_EQ("", run.output);
  }
  EXPECT_EQ(kSilence, m_Folder.ReadFile("recording"));
}

TEST_F(OutputOfReplay, IsARegularFile) {
  const ToolRun run = Report(Device());
  EXPECT_EQ("exit code 2", Describe(run.ending));
  EXPECT_THAT(run.errors, HasSubstr("device: no regular file, expected one or a new name"));
}

TEST_F(OutputOfReplay, IsTriedBeforeTheRecordingIsReadAndKeptWhenThatCannotBeRead) {
  m_Folder.WriteFile("page.html", "old page");
  EXPECT_EQ("exit code 2",
            Describe(RunProgram(ORVEX_REPLAY_PROGRAM, {"--report", PathOf("page.html"), "gone"}).ending));
  EXPECT_EQ("exit code 2",
            Describe(RunProgram(ORVEX_REPLAY_PROGRAM, {"--report", PathOf("page.html"), "gone", "away"}).ending));
  EXPECT_EQ("old page", m_Folder.ReadFile("page.html"));
  const ToolRun run = Report("/nonexistent/page.html");
  EXPECT_EQ("exit code 2", Describe(run.ending));
  EXPECT_EQ("", run.output);
}

TEST_F(OutputOfReplay, GoesToStandardOutputInPlaceOfTheLines) {
  Report(PathOf("page.html"));
  const ToolRun run = Report("-");
  EXPECT_EQ("exit code 1", Describe(run.ending)) << run.errors;
  EXPECT_EQ(m_Folder.ReadFile("page.html"), run.output);
  const ToolRun both = Report("-", {"--trace"});
  EXPECT_EQ("exit code 2", Describe(both.ending));
  EXPECT_THAT(both.errors, HasSubstr("--report -: takes standard output for the page, expected no --trace"));
  EXPECT_EQ("", both.output);
}

class OutputOfSweep : public Output {
protected:
  ToolRun Sweep(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--rooms", "2", "--jobs", "1"});
    return RunProgram(ORVEX_SWEEP_PROGRAM, arguments);
  }
};

TEST_F(OutputOfSweep, IsNeitherARecordingNorTheOtherOutputNorADevice) {
  ASSERT_EQ("exit code 0", Describe(RunProgram(ORVEX_TESTSOUND_PROGRAM, {PathOf("noise.wav")}).ending));
  const std::string noise = m_Folder.ReadFile("noise.wav");
  for (const auto& [arguments, error] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"--csv", PathOf("noise.wav"), "--recording", PathOf("noise.wav")}, "noise.wav: the same file as "},
           {{"--csv", PathOf("new.svg"), "--plot", PathOf("./new.svg")}, "new.svg: the same file as "},
           {{"--csv", "-", "--plot", "-"}, "--csv and --plot both take standard output"},
           {{"--csv", Device()}, "device: no regular file, expected one or a new name"},
           {{"--plot", PathOf("new.jpg")}, "new.jpg: expected a name that ends in .svg"},
           {{"--csv", "/nonexistent/rooms.csv"}, "rooms.csv: cannot be written: No such file or directory"}}) {
    const ToolRun run = Sweep(arguments);
    EXPECT_EQ("exit code 2", Describe(run.ending));
    EXPECT_THAT(run.errors, HasSubstr(error));
    EXPECT_EQ("", run.output);  // it has not begun
  }
  EXPECT_EQ(noise, m_Folder.ReadFile("noise.wav"));
  EXPECT_FALSE(std::filesystem::exists(PathOf("new.svg")));
}

TEST_F(OutputOfSweep, GoesToStandardOutputWithTheTableOnStandardError) {
  const ToolRun file = Sweep({"--csv", PathOf("rooms.csv")});
  const ToolRun figures = Sweep({"--plot", "-"});
  EXPECT_EQ("exit code 0", Describe(figures.ending));
  EXPECT_THAT(figures.output, testing::AllOf(testing::StartsWith("<svg"), testing::EndsWith("</svg>\n")));
  EXPECT_THAT(figures.errors, HasSubstr("rooms"));
  const ToolRun run = Sweep({"--csv", "-"});
  EXPECT_EQ("exit code 0", Describe(run.ending));
  EXPECT_EQ(m_Folder.ReadFile("rooms.csv"), run.output);
  EXPECT_THAT(run.errors, HasSubstr(file.output));
}

// A terminal that takes a program's messages, for its progress is shown nowhere else.
class ErrorTerminal {
public:
  ErrorTerminal() : m_Screen(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    EXPECT_EQ(0, ::grantpt(m_Screen));
    EXPECT_EQ(0, ::unlockpt(m_Screen));
    m_Device = ::open(::ptsname(m_Screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(m_Device, 0);
  }
  ~ErrorTerminal() {
    ::close(m_Device);
    ::close(m_Screen);
  }
  ErrorTerminal(const ErrorTerminal&) = delete;
  ErrorTerminal& operator=(const ErrorTerminal&) = delete;

  int GetDevice() const { return m_Device; }
  // False: `text` does not come in time.
  bool WaitFor(const std::string& text) {
    pollfd source{m_Screen, POLLIN, 0};
    while (m_Text.find(text) == std::string::npos) {
      std::array<char, 1000> piece{};
      if (::poll(&source, 1, static_cast<int>(std::chrono::milliseconds(kPatience).count())) != 1) {
        return false;
      }
      const ssize_t count = ::read(m_Screen, piece.data(), piece.size());
      if (count <= 0) {
        return false;
      }
      m_Text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return true;
  }

private:
  const int m_Screen;
  int m_Device = -1;
  std::string m_Text;
};

TEST_F(OutputOfSweep, HasTheRoomsThatAreDoneWhenItIsInterrupted) {
  m_Folder.WriteFile("figures.svg", "old figures");
  ErrorTerminal errors;
  Process process({ORVEX_SWEEP_PROGRAM,
                   {"--rooms", "100000", "--jobs", "2", "--csv", PathOf("rooms.csv"), "--plot", PathOf("figures.svg")},
                   {},
                   PathOf("table"),
                   {},
                   errors.GetDevice()});
  ASSERT_TRUE(errors.WaitFor(" of 100000 rooms, "));
  process.Signal(SIGTERM);
  EXPECT_EQ("exit code 1", Describe(process.WaitForEnd()));
  EXPECT_TRUE(errors.WaitFor("orvex-sweep: interrupted after "));
  const std::string csv = m_Folder.ReadFile("rooms.csv");
  const auto rooms = std::count(csv.begin(), csv.end(), '\n') - 1;
  EXPECT_GT(rooms, 0);
  EXPECT_LT(rooms, 100000);
  EXPECT_THAT(csv, HasSubstr("\n1," + std::to_string(rooms) + ","));
  EXPECT_THAT(m_Folder.ReadFile("table"),
              HasSubstr("\nincomplete: interrupted after " + std::to_string(rooms) + " of 100000 rooms\n"));
  EXPECT_EQ("old figures", m_Folder.ReadFile("figures.svg"));
}

}  // namespace
}  // namespace orvex::integration
