// A virtual television for one test of sound and recording, in a folder of its own.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "alsa_config.h"
#include "television.h"

namespace orvex::host {

// A process has one television, so each test needs a process of its own, as ctest gives it.
class PcmTelevision : public testing::Test {
protected:
  PcmTelevision() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvex pcm XXXXXX").string();
    m_IsMade = mkdtemp(pattern.data()) != nullptr;
    m_Folder = pattern;
    setenv("ORVEX_TV", pattern.c_str(), 1);
    ConfigureAlsa();
    m_IsMade = m_IsMade && Television::Instance().GetDirectory() == m_Folder;
    unsetenv("ORVEX_TV");  // a process started by the test makes its own
  }

  ~PcmTelevision() override {
    std::error_code ignored;
    std::filesystem::remove_all(m_Folder, ignored);
  }

  void SetUp() override {
    if (!m_IsMade) {
      GTEST_SKIP() << "needs a process of its own, and no ORVEX_TV: run it by ctest, or alone by --gtest_filter";
    }
  }

  // To be called before the first use of room and faults.
  void Write(const std::string& name, const std::string& content) const { std::ofstream(m_Folder / name) << content; }
  std::filesystem::path Folder() const { return m_Folder; }

private:
  std::filesystem::path m_Folder;
  bool m_IsMade = false;
};

}  // namespace orvex::host
