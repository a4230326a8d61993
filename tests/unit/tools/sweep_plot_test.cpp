// The figures of a sweep: that they show what the rooms say, can be told apart, and can be read by a screen reader.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "chart/palette.h"
#include "sweep/plot.h"
#include "unit/tools/markup.h"

namespace orvex::tools {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::ThrowsMessage;

RoomResult FoundRoom(double errorMs, double trueMs = 50.0) {
  RoomResult room;
  room.found = true;
  room.errorMs = errorMs;
  room.beforeMs = trueMs;
  return room;
}

// As many rows as the axes have, with the same rooms in each.
struct PlottedSweep {
  PlottedSweep(const std::map<Axis, std::string>& axes, const std::vector<RoomResult>& rooms)
      : command{axes, rooms.size(), 7, {}}, plan(axes, 7) {
    result.rows.assign(plan.Rows(), rooms);
  }

  std::string Draw() const {
    std::ostringstream svg;
    DrawFigures(svg, command, plan, result);
    return svg.str();
  }

  SweepCommand command;
  Plan plan;
  SweepResult result;
};

PlottedSweep TwoLevels() {
  PlottedSweep sweep({{axis::kToneDb, "46,40"}}, {FoundRoom(3.4), FoundRoom(3.4)});
  sweep.result.rows[1][1] = RoomResult{};
  return sweep;
}

std::vector<Element> WithClass(const std::vector<Element>& elements, const std::string& style) {
  std::vector<Element> some;
  std::copy_if(elements.begin(), elements.end(), std::back_inserter(some), [&](const Element& element) {
    return (" " + element.Get("class") + " ").find(" " + style + " ") != std::string::npos;
  });
  return some;
}

// The number behind each of the letter's places in a path.
std::vector<double> NumbersBehind(char letter, const std::string& path) {
  const std::regex number(std::string(1, letter) + "(-?[0-9.]+)( (-?[0-9.]+))?");
  std::vector<double> numbers;
  for (std::sregex_iterator at(path.begin(), path.end(), number), end; at != end; ++at) {
    numbers.push_back(std::stod((*at)[(*at)[3].matched ? 3 : 1]));
  }
  return numbers;
}

TEST(SweepPlot, IsAPictureOfAnyWidthWithTextsForThoseWhoCannotSeeIt) {
  const std::vector<Element> elements = ReadMarkup(TwoLevels().Draw());
  const Element& picture = elements.at(0);
  EXPECT_EQ("svg", picture.name);
  EXPECT_EQ("http://www.w3.org/2000/svg", picture.Get("xmlns"));
  EXPECT_EQ("100%", picture.Get("width"));
  EXPECT_THAT(picture.Get("viewBox"), testing::StartsWith("0 0 1020 "));
  EXPECT_FALSE(picture.Has("height"));
  EXPECT_EQ("img", picture.Get("role"));
  EXPECT_EQ("title desc", picture.Get("aria-labelledby"));
  EXPECT_EQ("title", elements.at(1).Get("id"));
  EXPECT_EQ("How well the receiver measures by tone-db", elements[1].text);
  EXPECT_EQ("desc", elements.at(2).Get("id"));
  EXPECT_THAT(elements[2].text,
              HasSubstr("tone-db 46: 100.00 % found, between 34.24 and 100.00 % with 95 % confidence; "
                        "error: bias 3.40 ms, RMS 3.40 ms, 95 % within 3.4 ms, worst 3.4 ms.\n"));
  EXPECT_THAT(elements[2].text, HasSubstr("tone-db 40: 50.00 % found, between 9.45 and 90.55 %"));
}

TEST(SweepPlot, HasColoursThatMoreThanBrowsersKnow) {
  const std::string svg = TwoLevels().Draw();
  EXPECT_THAT(svg, HasSubstr(".l0 { stroke: #0b5cad; fill: #0b5cad; }"));
  EXPECT_THAT(svg, HasSubstr("fill: #1b1f24;"));
  EXPECT_THAT(svg, Not(HasSubstr("var(")));
  EXPECT_THROW(WithColours("stroke: var(--ink-of-no-name)"), std::logic_error);
  EXPECT_EQ("a { fill: #1b1f24; }@media (prefers-color-scheme: dark) {a { fill: #e9edf2; }}\n",
            WithColours("a { fill: var(--ink); }"));
}

TEST(SweepPlot, NamesCommandSeedAndRooms) {
  const auto elements = ReadMarkup(TwoLevels().Draw());
  EXPECT_EQ("orvex-sweep --rooms 2 --seed 7 --tone-db 46,40", WithClass(elements, "command").at(0).text);
  EXPECT_EQ("Rooms: 2 in each of 2 rows. Seed: 7.", WithClass(elements, "soft").at(0).text);
}

TEST(SweepPlot, NamesACommandThatAShellReadsAsItWasMeant) {
  const SweepCommand command{
      {{axis::kToneDb, "46"}, {axis::kRateErrorPpm, "-400,400"}, {axis::kDisturbance, "recording"}},
      10,
      3,
      {"a.wav", "it's b.wav"}};
  EXPECT_EQ(
      "orvex-sweep --rooms 10 --seed 3 --rate-ppm=-400,400 --disturbance recording --recording a.wav "
      "'it'\\''s b.wav'",
      Text(command));
}

TEST(SweepPlot, SplitsALongCommandSoThatAShellPutsItTogetherAgain) {
  std::string tones = "30";
  for (int tone = 31; tone < 90; ++tone) {
    tones += "," + std::to_string(tone);
  }
  const PlottedSweep sweep({{axis::kToneDb, tones}, {axis::kRt60S, "0.25"}}, {FoundRoom(1.0)});
  std::string together;
  std::size_t lines = 0;
  for (const Element& line : WithClass(ReadMarkup(sweep.Draw()), "command")) {
    EXPECT_LE(line.text.size(), 116u);
    together += line.text + "\n";
    ++lines;
  }
  EXPECT_EQ(3u, lines);
  EXPECT_EQ(Text(sweep.command) + "\n", std::regex_replace(together, std::regex("\\\\\n"), ""));
}

TEST(SweepPlot, DrawsTheShareFoundFromLeftToRightWithBarsOfConfidence) {
  const auto elements = ReadMarkup(TwoLevels().Draw());
  const auto marks = WithClass(elements, "mark");
  const auto bars = WithClass(elements, "bar");
  ASSERT_THAT(marks, SizeIs(2));
  ASSERT_THAT(bars, SizeIs(2));
  // The first is 46 dB, which was given first; the line begins at 40 dB.
  const std::string half = marks[0].Get("d");
  const std::string all = marks[1].Get("d");
  EXPECT_EQ(all.substr(0, all.find('m')).substr(1),
            WithClass(elements, "stroke").at(0).Get("d").substr(half.find('m') + 1));
  const double y50 = NumbersBehind('M', half).at(0);
  const double y100 = NumbersBehind('M', all).at(0);
  const auto percent = [&](double y) { return 50.0 + 50.0 * (y - y50) / (y100 - y50); };
  EXPECT_NEAR(9.45, percent(NumbersBehind('M', bars[0].Get("d")).at(0)), 0.1);
  EXPECT_NEAR(90.55, percent(NumbersBehind('V', bars[0].Get("d")).at(0)), 0.1);
  EXPECT_NEAR(34.24, percent(NumbersBehind('M', bars[1].Get("d")).at(0)), 0.1);
  EXPECT_NEAR(100.0, percent(NumbersBehind('V', bars[1].Get("d")).at(0)), 0.1);
}

// Of every chart, dashes and mark of each line.
std::map<std::size_t, std::vector<std::string>> LinesOfCharts(const std::vector<Element>& elements) {
  std::map<std::size_t, std::map<std::size_t, std::string>> styles;
  for (const Element& element : elements) {
    const Element& around = elements[element.parent];
    if (element.Get("class") == "stroke" && around.Has("data-label")) {
      styles[around.parent][element.parent] = element.Get("stroke-dasharray");
    } else if (element.Get("class") == "mark" && elements[around.parent].Has("data-label")) {
      const std::string path = element.Get("d");
      std::string& style = styles[elements[around.parent].parent][around.parent];
      const std::string mark = " " + path.substr(path.find('m'));
      style += style.find(mark) == std::string::npos ? mark : "";
    }
  }
  std::map<std::size_t, std::vector<std::string>> lines;
  for (const auto& [chart, ofLines] : styles) {
    for (const auto& [line, style] : ofLines) {
      lines[chart].push_back(style);
    }
  }
  return lines;
}

TEST(SweepPlot, HasNoTwoLinesOfTheSameDashesAndMarkInAChart) {
  const PlottedSweep sweep({{axis::kToneDb, "34,36,38,40,42,44,46,48"}, {axis::kRt60S, "0.1,0.2,0.3,0.4,0.5,0.6,0.7"}},
                           {FoundRoom(1.0), RoomResult{}});
  const auto charts = LinesOfCharts(ReadMarkup(sweep.Draw()));
  ASSERT_THAT(charts, SizeIs(2));
  std::size_t count = 0;
  for (const auto& [chart, lines] : charts) {
    count += lines.size();
    EXPECT_EQ(lines.size(), std::set<std::string>(lines.begin(), lines.end()).size());
    std::set<std::string> marks;
    for (const std::string& line : lines) {
      EXPECT_TRUE(marks.insert(line.substr(line.find(" m"))).second) << line;
    }
  }
  EXPECT_EQ(7u, count);
}

std::vector<std::string> Labels(const PlottedSweep& sweep) {
  std::vector<std::string> labels;
  for (const Element& element : ReadMarkup(sweep.Draw())) {
    if (element.Has("data-label")) {
      labels.push_back(element.Get("data-label"));
    }
  }
  return labels;
}

TEST(SweepPlot, DrawsLinesOverTheAxisWithMostValuesAndRatherOverNumbersThanNames) {
  const std::vector<RoomResult> rooms{FoundRoom(1.0)};
  EXPECT_THAT(Labels(PlottedSweep({{axis::kToneDb, "40,46"}, {axis::kRt60S, "0.2,0.4,0.6"}}, rooms)),
              ElementsAre("tone-db 40", "tone-db 46"));
  EXPECT_THAT(Labels(PlottedSweep({{axis::kToneDb, "40,46"}, {axis::kRt60S, "0.2,0.4"}}, rooms)),
              ElementsAre("rt60-s 0.2", "rt60-s 0.4"));
  EXPECT_THAT(Labels(PlottedSweep({{axis::kToneDb, "40,46"}, {axis::kDisturbance, "hiss,claps,keys"}}, rooms)),
              ElementsAre("disturbance hiss", "disturbance claps", "disturbance keys"));
}

TEST(SweepPlot, DrawsNoLineBetweenNames) {
  const auto elements = ReadMarkup(PlottedSweep({{axis::kDisturbance, "hiss,claps"}}, {FoundRoom(1.0)}).Draw());
  EXPECT_THAT(WithClass(elements, "stroke"), SizeIs(0));
  EXPECT_THAT(WithClass(elements, "bar"), SizeIs(2));
}

TEST(SweepPlot, HasAPanelForEachRowWithEveryMillisecondOfTheErrorsAlsoThoseWithoutARoom) {
  const auto bins = WithClass(ReadMarkup(TwoLevels().Draw()), "bins");
  ASSERT_THAT(bins, SizeIs(2));
  std::vector<double> heights;
  for (const Element& row : bins) {
    const std::vector<double> steps = NumbersBehind('V', row.Get("d"));
    ASSERT_THAT(steps, SizeIs(72));  // and the last one leads back
    const double zero = NumbersBehind('M', row.Get("d")).at(0);
    for (int error = -35; error <= 35; ++error) {
      if (error == 3) {
        heights.push_back(zero - steps[static_cast<std::size_t>(error + 35)]);
      } else {
        EXPECT_EQ(zero, steps[static_cast<std::size_t>(error + 35)]) << error;
      }
    }
    EXPECT_EQ(zero, steps.back());
  }
  EXPECT_GT(heights[1], 10.0);
  EXPECT_NEAR(2.0 * heights[1], heights[0], 0.15);  // 100 % and 50 % of the rooms, to the same scale
}

TEST(SweepPlot, CountsErrorsThatItDoesNotShow) {
  PlottedSweep sweep({}, {FoundRoom(-35.4), FoundRoom(35.6), FoundRoom(-80.0), RoomResult{}});
  const std::string svg = sweep.Draw();
  EXPECT_THAT(svg, HasSubstr(">2 beyond<"));
  sweep.result.rows[0] = {FoundRoom(1.0)};
  EXPECT_THAT(sweep.Draw(), Not(HasSubstr(" beyond<")));
}

TEST(SweepPlot, DrawsMedianAndMiddleNinetyPercentOfTheErrorsOverTheTrueDifference) {
  std::vector<RoomResult> rooms{FoundRoom(-30.0, 100.0)};
  for (int error = 0; error <= 20; ++error) {
    rooms.push_back(FoundRoom(error, -100.0));
  }
  const auto elements = ReadMarkup(PlottedSweep({}, rooms).Draw());
  const auto bars = WithClass(elements, "middle90");
  const auto medians = WithClass(elements, "median");
  ASSERT_THAT(bars, SizeIs(2));
  ASSERT_THAT(medians, SizeIs(2));
  const double y10 = NumbersBehind('M', medians[0].Get("d")).at(0);
  const double yMinus30 = NumbersBehind('M', medians[1].Get("d")).at(0);
  const auto error = [&](double y) { return 10.0 - 40.0 * (y - y10) / (yMinus30 - y10); };
  EXPECT_NEAR(1.0, error(NumbersBehind('M', bars[0].Get("d")).at(0)), 0.1);
  EXPECT_NEAR(19.0, error(NumbersBehind('V', bars[0].Get("d")).at(0)), 0.1);
}

TEST(SweepPlot, DrawsNothingOverADifferenceThatAllRoomsHave) {
  EXPECT_THAT(TwoLevels().Draw(), HasSubstr("Error over true difference"));
  EXPECT_THAT(PlottedSweep({}, {FoundRoom(1.0)}).Draw(), Not(HasSubstr("Error over true difference")));
}

TEST(SweepPlot, DrawsRowsInWhichNothingWasFound) {
  const std::string svg = PlottedSweep({{axis::kToneDb, "20,10"}}, {RoomResult{}, RoomResult{}}).Draw();
  const auto elements = ReadMarkup(svg);
  EXPECT_THAT(elements.at(2).text,
              HasSubstr("tone-db 20: 0.00 % found, between 0.00 and 65.76 % with 95 % confidence.\n"));
  EXPECT_THAT(svg, HasSubstr(">nothing found<"));
  EXPECT_THAT(svg, Not(HasSubstr("nan")));
  for (const Element& row : WithClass(elements, "bins")) {
    for (const double step : NumbersBehind('V', row.Get("d"))) {
      EXPECT_EQ(NumbersBehind('M', row.Get("d")).at(0), step);
    }
  }
}

TEST(SweepPlot, RefusesAnEndingThatItCannotDraw) {
  EXPECT_NO_THROW(CheckFigures("figures.svg"));
  EXPECT_THAT([] { CheckFigures("figures.png"); },
              ThrowsMessage<std::runtime_error>(HasSubstr("figures.png: expected a name that ends in .svg")));
}

}  // namespace
}  // namespace orvex::tools
