// The virtual television of a test process, as new at the beginning of each test and gone at its end.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "virtual/faults.h"
#include "virtual/television.h"

namespace orvex::virtual_tv {

class TelevisionTest : public testing::Test {
protected:
  TelevisionTest() : m_Folder(TestFolder()) {}

  ~TelevisionTest() override {
    if (!m_Folder.empty()) {
      std::error_code ignored;
      std::filesystem::remove_all(m_Folder, ignored);
      Faults::Instance().Reload();
    }
  }

  void SetUp() override {
    if (m_Folder.empty()) {
      GTEST_SKIP() << "this process has a television that is not the tests' own: unset ORVEX_TV";
    }
    std::filesystem::remove_all(m_Folder);
    Television::Instance().Create();
    Faults::Instance().Reload();
  }

  const std::filesystem::path& Folder() const { return m_Folder; }

  // As "echo content > name" does it: the file is opened, cut to nothing and written.
  void Echo(const std::string& name, const std::string& content) const { std::ofstream(m_Folder / name) << content; }
  std::string Content(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(m_Folder / name).rdbuf();
    return text.str();
  }
  void Remove(const std::string& name) const { std::filesystem::remove_all(m_Folder / name); }
  void SetFaults(const std::string& json) const {
    Echo("faults.json", json);
    Faults::Instance().Reload();
  }

private:
  // Never a directory that a user has named.
  static std::filesystem::path TestFolder() {
    static const std::filesystem::path folder = [] {
      const char* const named = getenv("ORVEX_TV");
      const std::string made = named == nullptr || *named == '\0' ? NewFolder() : "";
      if (made.empty()) {
        return std::filesystem::path();
      }
      setenv("ORVEX_TV", made.c_str(), 1);
      const auto directory = Television::Instance().GetDirectory();
      unsetenv("ORVEX_TV");
      return directory == made ? directory : std::filesystem::path();
    }();
    return folder;
  }

  // A test that dies, as a child process, shares the folder of its parent, which cleans up behind it.
  static std::string NewFolder() {
    constexpr const char* kParentsFolder = "ORVEX_TEST_TELEVISION";
    if (const char* const parents = getenv(kParentsFolder)) {
      return parents;
    }
    // The blanks are on purpose: a folder's name may have some.
    std::string pattern = (std::filesystem::temp_directory_path() / "orvex television XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      return "";
    }
    setenv(kParentsFolder, pattern.c_str(), 1);
    return pattern;
  }

  std::filesystem::path m_Folder;
};

}  // namespace orvex::virtual_tv
