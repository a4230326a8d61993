// What gnuplot is told, and what is refused before the work begins.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "sweep/plot.h"

namespace orvex::tools {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

SweepResult TwoRows() {
  RoomResult found;
  found.found = true;
  found.beforeMs = 50.0;
  found.errorMs = 3.4;
  SweepResult result;
  result.rows = {{found, RoomResult{}}, {found, found}};
  return result;
}

TEST(SweepPlot, DrawsTheDistributionOfTheErrorsTheErrorsAndTheShareFoundOfEachRow) {
  std::ostringstream script;
  WriteFigureScript(script, "figures.svg", Plan({{axis::kToneDb, "46,40"}}, 1), TwoRows());
  const std::string text = script.str();
  EXPECT_THAT(text, HasSubstr("\n2 0\n3 50\n4 0\n"));
  EXPECT_THAT(text, HasSubstr("\n2 0\n3 100\n4 0\n"));
  EXPECT_THAT(text, HasSubstr("$errors1 << END\nNaN NaN\n50 3.4\nEND\n"));
  EXPECT_THAT(text, HasSubstr("1 50 \"tone-db 46\"\n2 100 \"tone-db 40\"\n"));
  EXPECT_THAT(text, HasSubstr("set terminal svg "));
}

// What stands between `begin` and the next END, line by line.
std::vector<std::string> DataOf(const std::string& script, const std::string& begin) {
  std::istringstream lines(script.substr(script.find(begin) + begin.size()));
  std::vector<std::string> data;
  for (std::string line; std::getline(lines, line) && line != "END";) {
    data.push_back(line);
  }
  return data;
}

TEST(SweepPlot, HasEveryMillisecondOfTheHistogramAlsoThoseWithoutARoom) {
  SweepResult result = TwoRows();
  result.rows[1][0].errorMs = -40.2;
  std::ostringstream script;
  WriteFigureScript(script, "figures.svg", Plan({{axis::kToneDb, "46,40"}}, 1), result);
  const auto inside = DataOf(script.str(), "$histogram1 << END\n");
  ASSERT_EQ(71u, inside.size());
  for (int error = -35; error <= 35; ++error) {
    EXPECT_EQ(std::to_string(error) + (error == 3 ? " 50" : " 0"), inside[static_cast<std::size_t>(error + 35)]);
  }
  const auto beyond = DataOf(script.str(), "$histogram2 << END\n");
  ASSERT_EQ(76u, beyond.size());
  EXPECT_EQ("-40 50", beyond.front());
  EXPECT_EQ("-39 0", beyond[1]);
}

class SweepPlotByGnuplot : public testing::Test {
protected:
  void SetUp() override {
    testing::internal::CaptureStdout();
    try {
      CheckFigures("figures.svg");
    } catch (const std::runtime_error& problem) {
      testing::internal::GetCapturedStdout();
      GTEST_SKIP() << problem.what();
    }
  }

  // The picture, followed by what was printed on standard output.
  static std::string Draw(const std::string& path, const SweepResult& result) {
    std::ostringstream picture;
    DrawFigures(picture, path, Plan({{axis::kToneDb, "46,40"}}, 1), result);
    return picture.str() + testing::internal::GetCapturedStdout();
  }
};

TEST_F(SweepPlotByGnuplot, PrintsThePictureAndNothingElse) {
  const std::string svg = Draw("figures.svg", TwoRows());
  EXPECT_THAT(svg, testing::StartsWith("<?xml"));
  EXPECT_THAT(svg, testing::EndsWith("</svg>\n\n"));
  EXPECT_THAT(svg, HasSubstr("tone-db 40"));
}

TEST_F(SweepPlotByGnuplot, DrawsRowsInWhichNothingWasFound) {
  SweepResult result;
  result.rows = {{RoomResult{}}, {RoomResult{}}};
  testing::internal::CaptureStderr();
  const std::string png = Draw("figures.png", result);
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_THAT(png, testing::StartsWith("\x89PNG"));
}

TEST(SweepPlot, RefusesAnEndingThatItCannotDraw) {
  EXPECT_THAT([] { CheckFigures("figures.jpg"); },
              ThrowsMessage<std::runtime_error>(HasSubstr("figures.jpg: expected a name that ends in .svg or .png")));
}

}  // namespace
}  // namespace orvex::tools
