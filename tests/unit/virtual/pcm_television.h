// A virtual television for one test of sound and recording, in a folder of its own.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "virtual/alsa_config.h"
#include "virtual/television.h"

namespace orvex::virtual_tv {

// A process has one television, so each test needs a process of its own, as ctest gives it.
class PcmTelevision : public testing::Test {
protected:
  void SetUp() override {
    static bool isTaken = false;
    if (isTaken || !TheFolder().isMade) {
      GTEST_SKIP() << "needs a process of its own, and no ORVEX_TV: run it by ctest, or alone by --gtest_filter";
    }
    isTaken = true;
  }

  // To be called before the first use of room and faults.
  static void Write(const std::string& name, const std::string& content) { std::ofstream(Folder() / name) << content; }
  static std::filesystem::path Folder() { return TheFolder().path; }

private:
  // Removed at the end of the process, so that one that a test ends by exit() leaves nothing either.
  struct TemporaryFolder {
    TemporaryFolder() {
      std::string pattern = (std::filesystem::temp_directory_path() / "orvex pcm XXXXXX").string();
      const bool hasFolder = mkdtemp(pattern.data()) != nullptr;
      path = pattern;
      setenv("ORVEX_TV", pattern.c_str(), 1);
      ConfigureAlsa();
      isMade = hasFolder && Television::Instance().GetDirectory() == path;
      unsetenv("ORVEX_TV");  // a process started by the test makes its own
    }
    ~TemporaryFolder() {
      std::error_code ignored;
      std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path path;
    bool isMade = false;
  };
  static const TemporaryFolder& TheFolder() {
    static const TemporaryFolder folder;
    return folder;
  }
};

}  // namespace orvex::virtual_tv
