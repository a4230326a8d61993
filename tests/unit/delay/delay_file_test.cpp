// The file that keeps the delay from one start to the next.
#include "delay/delay_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

class DelayFileTest : public testing::Test {
protected:
  void Put(const std::string& text) const { std::ofstream(m_Path) << text; }

  const TemporaryFolder m_Folder;
  const std::filesystem::path m_Path = m_Folder / "delay";
  std::vector<std::string> m_Reports;
  const DelayFile m_File{m_Path, [this](const std::string& text) { m_Reports.push_back(text); }};
};

TEST_F(DelayFileTest, WithoutAFileTheDelayIsZero) {
  EXPECT_EQ(m_File.Read(), 0.0);
  EXPECT_THAT(m_Reports, testing::IsEmpty());
}

TEST_F(DelayFileTest, ReadsWhatItHasWritten) {
  for (const double delayMs : {0.0, 37.5, 2000.0, 33.333333333333336}) {
    m_File.Write(delayMs);
    EXPECT_EQ(m_File.Read(), delayMs);
  }
  EXPECT_THAT(m_Reports, testing::IsEmpty());
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_Path.parent_path()), {}), 1);
}

TEST_F(DelayFileTest, TextThatIsNoDelayCountsAsZeroAndIsTold) {
  for (const std::string text : {"", "abc", "12 ms", "-1", "2000.5", "nan", "inf"}) {
    Put(text);
    m_Reports.clear();
    EXPECT_EQ(m_File.Read(), 0.0);
    EXPECT_THAT(m_Reports, testing::ElementsAre(m_Path.string() + ": \"" + text +
                                                "\", expected milliseconds from 0 to 2000; beginning with 0"));
  }
}

TEST_F(DelayFileTest, AFileThatCannotBeWrittenIsTold) {
  std::filesystem::create_directory(m_Path);
  m_File.Write(1.0);
  EXPECT_THAT(m_Reports, testing::ElementsAre(testing::HasSubstr("delay: cannot be written: Is a directory")));
}

}  // namespace
}  // namespace orvex::tools
