// Tests of the pieces: the port's folder is empty at the beginning of each and gone at its end.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "unit/linux/test_port.h"

namespace orvex::port {

class PortTest : public testing::Test {
protected:
  ~PortTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(Folder(), ignored);
  }

  void SetUp() override {
    ASSERT_FALSE(Folder().empty()) << "no folder could be made";
    std::filesystem::remove_all(Folder());
    std::filesystem::create_directories(Folder() / "settings");
  }

  static const std::filesystem::path& Folder() { return TestFolder(); }

  // As "echo content > name" does it: the file is opened, cut to nothing and written.
  void Echo(const std::string& name, const std::string& content) const { std::ofstream(Folder() / name) << content; }
  std::string Content(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(Folder() / name).rdbuf();
    return text.str();
  }
  void Remove(const std::string& name) const { std::filesystem::remove_all(Folder() / name); }
};

}  // namespace orvex::port
