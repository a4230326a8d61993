// Where the service finds its files on a living-room computer.
#include "orvex/platform/file_location.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// The fixed path of a file, and where an installation with this test's program in bin/ has it.
class InstalledFile : public testing::Test {
protected:
  void SetUp() override {
    fs::create_directories(m_Folder);
    std::ofstream(m_Place) << "sound";
  }
  void TearDown() override {
    fs::remove_all(m_Folder);
    unsetenv("ORVEX_RESOURCES");
  }

  const std::string m_FixedFolder = "/orvex-file-location-" + std::to_string(getpid());
  const std::string m_FixedPath = m_FixedFolder + "/sound.wav";
  const std::string m_Root =
      fs::read_symlink("/proc/self/exe").parent_path().parent_path().string() + "/share/orvex/pc";
  const std::string m_Folder = m_Root + m_FixedFolder;
  const std::string m_Place = m_Root + m_FixedPath;
};

TEST_F(InstalledFile, IsFoundBesideTheProgramsFolder) {
  EXPECT_EQ(file_location(m_FixedPath), m_Place);
}

TEST_F(InstalledFile, YieldsToTheFolderThatThePersonNames) {
  setenv("ORVEX_RESOURCES", "/resources", 1);
  EXPECT_EQ(file_location(m_FixedPath), "/resources" + m_FixedPath);
}

TEST_F(InstalledFile, ThatIsNotThereIsOneOfTheMachineOrOfTheBuild) {
  fs::remove_all(m_Folder);
  EXPECT_EQ(file_location("/proc/self/status"), "/proc/self/status");
  EXPECT_THAT(file_location(m_FixedPath), testing::EndsWith("/sysroot" + m_FixedPath));
}

}  // namespace
