// The person's choice of outputs and microphone.
#include "pipewire/client/pc_config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>

#include "unit/tools/temporary_folder.h"

namespace orvex::pipewire {
namespace {

class PcConfigTest : public testing::Test {
protected:
  // What reading this text fails with, behind the name of the file; empty: it does not fail.
  std::string ProblemOf(const std::string& text) const {
    std::ofstream(m_File) << text;
    try {
      ReadPcConfig(m_File);
      return "";
    } catch (const PcConfigError& problem) {
      return std::string(problem.what()).substr(m_File.string().size() + 2);
    }
  }

  const tools::TemporaryFolder m_Folder;
  const std::filesystem::path m_File = m_Folder / "pc.json";
};

TEST_F(PcConfigTest, ReadsWhatItHasWrittenAndMakesTheFolder) {
  const std::filesystem::path file = m_Folder / "new/orvex/pc.json";
  WritePcConfig(file, {"hdmi", "spdif", "micro \"phone\""});
  const PcConfig config = ReadPcConfig(file);
  EXPECT_EQ(config.reference, "hdmi");
  EXPECT_EQ(config.delayed, "spdif");
  EXPECT_EQ(config.microphone, "micro \"phone\"");
}

TEST_F(PcConfigTest, ProblemsNameKeyValueAndExpectation) {
  EXPECT_EQ(ProblemOf(R"({"delayed":"b","microphone":"m"})"), "\"reference\" is missing, expected the name of a node");
  EXPECT_EQ(ProblemOf(R"({"reference":5,"delayed":"b","microphone":"m"})"),
            "\"reference\" is 5, expected the name of a node");
  EXPECT_EQ(ProblemOf(R"({"reference":"a","delayed":"","microphone":"m"})"),
            "\"delayed\" is \"\", expected the name of a node");
  EXPECT_EQ(ProblemOf(R"({"reference":"a","delayed":"a","microphone":"m"})"),
            "\"reference\" and \"delayed\" are both \"a\", expected two outputs");
  EXPECT_THAT(ProblemOf(R"({"reference":"a","delayed":"b","microphone":"m","x":1})"),
              testing::StartsWith("\"x\" is unknown, expected "));
  EXPECT_THAT(ProblemOf("no JSON"), testing::StartsWith("expected a JSON object with the names of the nodes "));
  EXPECT_THAT(ProblemOf(std::string(70000, ' ')), testing::StartsWith("longer than 65536 bytes"));
}

TEST_F(PcConfigTest, WithoutAFileTheMessageSaysWhatWritesIt) {
  EXPECT_THAT([&] { ReadPcConfig(m_File); },
              testing::ThrowsMessage<PcConfigError>(
                  m_File.string() + ": cannot be read: No such file or directory; \"orvex-pc setup\" writes it"));
}

TEST_F(PcConfigTest, FoldersAreThoseOfTheXdgVariablesOrBelowHome) {
  ::setenv("HOME", (m_Folder / "home").c_str(), 1);
  ::setenv("XDG_CONFIG_HOME", "/elsewhere", 1);
  ::unsetenv("XDG_STATE_HOME");
  EXPECT_EQ(PcConfigFile(), "/elsewhere/orvex/pc.json");
  EXPECT_EQ(StateFolder(), m_Folder / "home/.local/state/orvex");
  EXPECT_TRUE(std::filesystem::is_directory(StateFolder()));
  ::setenv("XDG_CONFIG_HOME", "not/absolute", 1);
  EXPECT_EQ(PcConfigFile(), m_Folder / "home/.config/orvex/pc.json");
  ::unsetenv("HOME");
  EXPECT_THROW(PcConfigFile(), PcConfigError);
}

}  // namespace
}  // namespace orvex::pipewire
