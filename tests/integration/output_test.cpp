// Where the commands put what a person asks them to write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "test_television.h"
#include "tool_run.h"

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

class OutputOfReplay : public Output {
protected:
  OutputOfReplay() { m_Folder.WriteFile("recording", kSilence); }

  ToolRun Report(const std::string& page, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"--report", page, m_Recording};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunProgram(ORVEX_REPLAY_PROGRAM, arguments);
  }

  const std::string kSilence = std::string(40 * 1536, '\0');
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

}  // namespace
}  // namespace orvex::integration
