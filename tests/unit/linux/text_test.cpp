// Texts that come from elsewhere, for a terminal, a log and a record.
#include <gtest/gtest.h>

#include "linux/printable_text.h"

namespace orvex::port {
namespace {

struct Row {
  const char* name;
  std::string text;
  bool isPrintable;
  std::string printable;
  std::string valid;
};

const Row kRows[] = {
    {"Nothing", "", true, "", ""},
    {"Words", "Größe 7 €", true, "Größe 7 €", "Größe 7 €"},
    {"BeyondTheFirstPlane", "\xF0\x9F\x93\xBA", true, "\xF0\x9F\x93\xBA", "\xF0\x9F\x93\xBA"},
    {"LineBreaks", "a\nb\r\tc", false, "a\\nb\\r\\tc", "a\nb\r\tc"},
    {"Escape", "\033[31mred", false, "\\x1b[31mred", "\033[31mred"},
    {"Delete", "\x7F", false, "\\x7f", "\x7F"},
    {"Zero", std::string("a\0b", 3), false, "a\\x00b", std::string("a\0b", 3)},
    {"ControlSequenceOfC1",
     "\xC2\x9B"
     "31m",
     false, "\\u009b31m",
     "\xC2\x9B"
     "31m"},
    {"LoneByte", "a\xFFz", false, "a\\xffz", "a\xEF\xBF\xBDz"},
    {"ByteOfC1",
     "\x9B"
     "31m",
     false, "\\x9b31m",
     "\xEF\xBF\xBD"
     "31m"},
    {"CutOff", "z\xC3", false, "z\\xc3", "z\xEF\xBF\xBD"},
    {"CutOffThenMore", "\xE2\x82z", false, "\\xe2\\x82z", "\xEF\xBF\xBD\xEF\xBF\xBDz"},
    {"OverLong", "\xC0\xAF", false, "\\xc0\\xaf", "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"HalfOfAPair", "\xED\xA0\x80", false, "\\xed\\xa0\\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

class Text : public testing::TestWithParam<Row> {};

TEST_P(Text, IsMadeFit) {
  EXPECT_EQ(IsPrintable(GetParam().text), GetParam().isPrintable);
  EXPECT_EQ(Printable(GetParam().text), GetParam().printable);
  EXPECT_EQ(ValidUtf8(GetParam().text), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(Of, Text, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace orvex::port
