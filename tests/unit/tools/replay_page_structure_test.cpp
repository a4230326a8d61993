// What every page of a replay keeps, so that everybody can read it: without a script, by a screen reader, by the
// keyboard, on light and dark paper.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <set>
#include <stdexcept>

#include "chart/palette.h"
#include "replay/page_parts.h"
#include "unit/tools/markup.h"
#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

fine::Reading MakeFineReading() {
  fine::Reading reading;
  reading.differenceS = 0.0507;
  reading.intervalS = {0.0506, 0.0508};
  reading.pairs = 4;
  for (auto& arrival : reading.arrivals) {
    arrival = fine::Arrival{46545.0, 1e-5, 60.0, 50.0, {{-1e-3, 0.0}, {0.0, 5.0}, {1e-3, 50.0}}};
  }
  return reading;
}

// Pages of one recording and of several, with everything that a page can hold.
std::vector<std::string> EveryPage() {
  const auto pair = MakeRecording(Ambient() + "7..9.x.y");
  const auto given = MakeRecording(Ambient() + "7" + std::string(19, '.') + "9" + std::string(11, 'y'));
  ReportPage several(4);
  several.Add(ReplayRecord(pair), SubjectOf(pair, "first & <second>"), MakeFineReading());
  several.AddUnreadable("gone", "gone: cannot be read: it's <not> there");
  several.Add(ReplayRecord(given), SubjectOf(given));
  several.Add(ReplayRecord({}), SubjectOf({}));
  return {PageOf(pair, "dump", MakeFineReading()), PageOf(given), PageOf(MakeRecording("...")), PageOf({}),
          several.Finish()};
}

std::set<std::string> NamesIn(const std::vector<Element>& elements) {
  std::set<std::string> names;
  for (const Element& element : elements) {
    if (element.Has("id")) {
      EXPECT_TRUE(names.insert(element.Get("id")).second) << element.Get("id");
    }
  }
  return names;
}

TEST(ReplayPageStructure, IsWellFormedWithUniqueNamesThatReferencesLeadTo) {
  for (const std::string& page : EveryPage()) {
    const std::vector<Element> elements = ReadMarkup(page);
    const std::set<std::string> names = NamesIn(elements);
    for (const Element& element : elements) {
      std::istringstream references(element.Get("aria-labelledby"));
      for (std::string name; references >> name;) {
        EXPECT_THAT(names, Contains(name));
      }
      if (element.name == "a") {
        EXPECT_THAT(names, Contains(element.Get("href").substr(1)));
      }
    }
  }
}

TEST(ReplayPageStructure, NeedsNeitherAScriptNorAnythingBesideThePage) {
  for (const std::string& page : EveryPage()) {
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src 'unsafe-inline'; img-src data:\""));
    EXPECT_THAT(page, Not(HasSubstr("url(")));
    EXPECT_THAT(page, Not(HasSubstr("@import")));
    for (const Element& element : ReadMarkup(page)) {
      EXPECT_THAT((std::set<std::string>{"script", "link", "img", "iframe", "object"}), Not(Contains(element.name)));
      EXPECT_FALSE(element.Has("src"));
      const std::string target = element.Get("href");
      EXPECT_TRUE(target.empty() || target[0] == '#' || target.rfind("data:image/png;base64,", 0) == 0) << target;
      for (const auto& [name, value] : element.attributes) {
        EXPECT_NE(0u, name.rfind("on", 0)) << name;
      }
    }
  }
}

TEST(ReplayPageStructure, TellsAScreenReaderWhatEachPictureShows) {
  for (const std::string& page : EveryPage()) {
    const std::vector<Element> elements = ReadMarkup(page);
    std::map<std::size_t, std::map<std::string, const Element*>> texts;
    for (const Element& element : elements) {
      if (element.name == "title" || element.name == "desc") {
        texts[element.parent].emplace(element.name, &element);
      }
    }
    for (std::size_t n = 0; n < elements.size(); ++n) {
      if (elements[n].name != "svg" || elements[n].Get("aria-hidden") == "true") {
        continue;
      }
      EXPECT_EQ("img", elements[n].Get("role"));
      ASSERT_THAT(texts[n], SizeIs(2)) << elements[n].Get("id");
      EXPECT_EQ(texts[n]["title"]->Get("id") + " " + texts[n]["desc"]->Get("id"), elements[n].Get("aria-labelledby"));
      EXPECT_GE(texts[n]["title"]->text.size(), 10u);
      EXPECT_GE(texts[n]["desc"]->text.size(), 30u) << texts[n]["desc"]->text;
    }
  }
}

TEST(ReplayPageStructure, HasPicturesAndTablesInWhatTheKeyboardScrolls) {
  for (const std::string& page : EveryPage()) {
    const std::vector<Element> elements = ReadMarkup(page);
    for (const Element& element : elements) {
      if (element.name == "table" || element.Get("class") == "chart") {
        const Element& around = elements[element.parent];
        EXPECT_EQ("scroll", around.Get("class"));
        EXPECT_EQ("0", around.Get("tabindex"));
        EXPECT_NE("", around.Get("aria-label"));
      }
    }
  }
}

TEST(ReplayPageStructure, HasANameOfItsOwnForEachThingThatTheKeyboardReaches) {
  std::set<std::string> names;
  for (const Element& element : ReadMarkup(EveryPage()[0])) {
    if (element.Get("tabindex") == "0") {
      EXPECT_TRUE(names.insert(element.Get("aria-label")).second) << element.Get("aria-label");
    }
  }
  EXPECT_THAT(names, SizeIs(testing::Ge(15u)));
}

TEST(ReplayPageStructure, ShowsWhereTheKeyboardIs) {
  EXPECT_THAT(kPageStyle, HasSubstr(":focus-visible { outline: 3px solid var(--ink-17);"));
  EXPECT_THAT(kPageStyle, Not(HasSubstr("outline: none")));
}

TEST(ReplayPageStructure, NamesColumnsAndRowsOfTables) {
  for (const std::string& page : EveryPage()) {
    for (const Element& element : ReadMarkup(page)) {
      if (element.name == "th") {
        EXPECT_THAT((std::set<std::string>{"col", "row"}), Contains(element.Get("scope"))) << element.text;
      }
    }
  }
}

TEST(ReplayPageStructure, NeverSkipsALevelOfHeadings) {
  for (const std::string& page : EveryPage()) {
    int level = 0;
    for (const Element& element : ReadMarkup(page)) {
      if (element.name.size() == 2 && element.name[0] == 'h' && std::isdigit(element.name[1]) != 0) {
        const int next = element.name[1] - '0';
        EXPECT_LE(next, level + 1) << element.text;
        EXPECT_TRUE(next > 1 || level == 0) << "a second h1";
        level = next;
      }
    }
  }
}

TEST(ReplayPageStructure, TellsCurvesOfAChartApartByTheirStrokesToo) {
  const std::string style = std::string(kPalette) + kPageStyle;
  EXPECT_THAT(style, HasSubstr(".curve.f19, .curve.f18 { stroke-dasharray: 6 3; }"));
  EXPECT_THAT(style, HasSubstr(".curve.fitted { stroke: var(--ink); stroke-dasharray: 7 4; }"));
  EXPECT_THAT(style, Not(HasSubstr(".curve.f17 {")));
  EXPECT_THAT(style, Not(HasSubstr(".curve.f175 {")));
}

// Colours by the names that the style sheet gives them.
using Palette = std::map<std::string, std::array<double, 3>>;

Palette ReadPalette(const std::string& css) {
  static const std::regex kColour("--([a-z0-9-]+): #([0-9a-f]{2})([0-9a-f]{2})([0-9a-f]{2});");
  Palette palette;
  for (std::sregex_iterator at(css.begin(), css.end(), kColour), end; at != end; ++at) {
    for (std::size_t n = 0; n < 3; ++n) {
      palette[(*at)[1]][n] = std::stoi((*at)[n + 2], nullptr, 16) / 255.0;
    }
  }
  return palette;
}

// Light and dark.
std::array<Palette, 2> ReadPalettes() {
  const std::string style = std::string(kPalette) + kPageStyle;
  const std::size_t dark = style.find("@media (prefers-color-scheme: dark)");
  const std::size_t end = style.find("}", dark);
  EXPECT_NE(std::string::npos, end);
  return {ReadPalette(style.substr(0, dark)), ReadPalette(style.substr(dark, end - dark))};
}

// Relative luminance and contrast as the Web Content Accessibility Guidelines 2.1 define them.
double Luminance(const std::array<double, 3>& colour) {
  const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
  return 0.2126 * linear(colour[0]) + 0.7152 * linear(colour[1]) + 0.0722 * linear(colour[2]);
}

double Contrast(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  const double one = Luminance(a);
  const double other = Luminance(b);
  return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

bool IsNamed(const std::string& name, const std::string& begin) {
  return name.rfind(begin, 0) == 0;
}

TEST(ReplayPageColours, AreComputedAsTheGuidelinesSay) {
  EXPECT_NEAR(21.0, Contrast({0, 0, 0}, {1, 1, 1}), 1e-9);
  const double grey = 0x76 / 255.0;  // the lightest grey that passes on white
  EXPECT_NEAR(4.54, Contrast({grey, grey, grey}, {1, 1, 1}), 0.005);
}

TEST(ReplayPageColours, AreTheSameNamesInLightAndDark) {
  const auto [light, dark] = ReadPalettes();
  ASSERT_THAT(light, SizeIs(testing::Ge(15u)));
  ASSERT_EQ(light.size(), dark.size());
  for (const auto& [name, colour] : light) {
    EXPECT_EQ(1u, dark.count(name)) << name;
    EXPECT_NE(colour, dark.at(name)) << name;
  }
}

TEST(ReplayPageColours, LetEachInkBeReadOnEachPaper) {
  for (const Palette& palette : ReadPalettes()) {
    for (const auto& [ink, colour] : palette) {
      for (const auto& [paper, ground] : palette) {
        if (IsNamed(ink, "ink") && IsNamed(paper, "paper")) {
          EXPECT_GE(Contrast(colour, ground), 4.5) << ink << " on " << paper;
        }
      }
    }
    EXPECT_GE(Contrast(palette.at("line-strong"), palette.at("paper")), 3.0);
  }
}

// The bands of a chart cover the paper in part, and labels stand on them.
TEST(ReplayPageColours, LetInksBeReadOnBands) {
  static const std::regex kBand("\\.[a-z]+ \\{ fill: var\\(--line-strong\\); fill-opacity: (\\.[0-9]+); \\}");
  const std::string style = std::string(kPalette) + kPageStyle;
  int bands = 0;
  for (std::sregex_iterator at(style.begin(), style.end(), kBand), end; at != end; ++at, ++bands) {
    const double cover = std::stod((*at)[1]);
    for (const Palette& palette : ReadPalettes()) {
      std::array<double, 3> ground{};
      for (std::size_t n = 0; n < 3; ++n) {
        ground[n] = palette.at("line-strong")[n] * cover + palette.at("paper")[n] * (1.0 - cover);
      }
      EXPECT_GE(Contrast(palette.at("ink"), ground), 4.5);
      EXPECT_GE(Contrast(palette.at("ink-soft"), ground), 4.5);
    }
  }
  EXPECT_EQ(2, bands);
}

TEST(ReplayPageColours, StandInTheTwoListsAlone) {
  const std::string style = std::string(kPalette) + kPageStyle;
  static const std::regex kNumber("#[0-9a-fA-F]{3,8}\\b|rgba?\\(|hsla?\\(");
  const auto numbers = std::distance(std::sregex_iterator(style.begin(), style.end(), kNumber), std::sregex_iterator());
  const auto [light, dark] = ReadPalettes();
  EXPECT_EQ(light.size() + dark.size(), static_cast<std::size_t>(numbers));
  static const std::regex kUse("var\\(--([a-z0-9-]+)\\)");
  for (std::sregex_iterator at(style.begin(), style.end(), kUse), end; at != end; ++at) {
    EXPECT_EQ(1u, light.count((*at)[1])) << (*at)[1];
  }
}

TEST(Markup, RefusesWhatIsNotWellFormed) {
  for (const char* const page : {"<a>", "<a></b>", "</a>", "<a b=c></a>", "<a b='1' b='2'></a>", "<a>&nothing;</a>",
                                 "<a b='&'></a>", "<a", "<p><b></p></b>"}) {
    EXPECT_THROW(ReadMarkup(page), std::runtime_error) << page;
  }
  EXPECT_THAT(ReadMarkup("<!DOCTYPE html><a b='1'>x<c/>y</a>"), SizeIs(2));
}

}  // namespace
}  // namespace orvex::tools
