// The generated ALSA configuration: what it says, and when libasound is led to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "unit/virtual/pcm_player.h"
#include "unit/virtual/pcm_television.h"
#include "virtual/alsa_config.h"

namespace orvex::virtual_tv {
namespace {

class PcmConfig : public PcmTelevision {};

TEST_F(PcmConfig, NamesTheLibraryByItsAbsolutePath) {
  std::ifstream file(Folder() / "alsa.conf");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  EXPECT_THAT(text, testing::ContainsRegex("pcm_type.orvex . lib \"/.*/liborvex-host.so\" ."));
}

// The test's folder has blanks in its name, which part a list of files for libasound.
TEST_F(PcmConfig, WorksInAFolderWithBlanksInItsName) {
  ASSERT_NE(Folder().string().find(' '), std::string::npos);
  EXPECT_EQ(PcmPlayer().OpenResult(), 0);
}

TEST(PcmConfigText, QuotesTheLibrarysPath) {
  EXPECT_THAT(AlsaConfiguration("/a \"b\"\\c.so"), testing::HasSubstr(R"(lib "/a \"b\"\\c.so" )"));
}

TEST(PcmConfigChoice, TheSystemsOwnDevicesStayInPlaceWhenAskedFor) {
  setenv("ORVEX_ALSA", "system", 1);
  setenv("ALSA_CONFIG_PATH", "/etc/alsa/mine.conf", 1);
  ConfigureAlsa();
  EXPECT_STREQ(getenv("ALSA_CONFIG_PATH"), "/etc/alsa/mine.conf");
  unsetenv("ORVEX_ALSA");
  unsetenv("ALSA_CONFIG_PATH");
}

}  // namespace
}  // namespace orvex::virtual_tv
