// What gnuplot is told, and what is refused before the work begins.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "plot.h"

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
  WriteFigureScript(script, "it's.svg", Plan({{axis::kToneDb, "46,40"}}, 1), TwoRows());
  const std::string text = script.str();
  EXPECT_THAT(text, HasSubstr("$histogram1 << END\n3 50\nEND\n"));
  EXPECT_THAT(text, HasSubstr("$histogram2 << END\n3 100\nEND\n"));
  EXPECT_THAT(text, HasSubstr("$errors1 << END\n50 3.4\nEND\n"));
  EXPECT_THAT(text, HasSubstr("1 50 \"tone-db 46\"\n2 100 \"tone-db 40\"\n"));
  EXPECT_THAT(text, HasSubstr("set terminal svg "));
  EXPECT_THAT(text, HasSubstr("set output 'it''s.svg'\n"));
}

TEST(SweepPlot, RefusesAnEndingThatItCannotDraw) {
  EXPECT_THAT([] { CheckFigures("figures.jpg"); },
              ThrowsMessage<std::runtime_error>(HasSubstr("figures.jpg: expected a name that ends in .svg or .png")));
}

}  // namespace
}  // namespace orvex::tools
