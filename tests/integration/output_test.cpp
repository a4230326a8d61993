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

}  // namespace
}  // namespace orvex::integration
