// What options accept, and how a refusal reads.
#include <cstdint>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include "options/whole_number.h"

namespace orvex::tools {
namespace {

// The value, or the message with which it is refused.
std::string Parse(const std::string& text, const CLI::Validator& validator) {
  CLI::App app;
  std::optional<std::uint64_t> value;
  app.add_option("--seed", value)->check(validator);
  try {
    app.parse("--seed " + text);
    return std::to_string(*value);
  } catch (const CLI::ParseError& error) {
    return error.what();
  }
}

TEST(WholeNumber, IsDecimalDigitsOfANumberInTheRange) {
  EXPECT_EQ("0", Parse("0", WholeNumber()));
  EXPECT_EQ("18446744073709551615", Parse("18446744073709551615", WholeNumber()));
  EXPECT_EQ("1", Parse("1", WholeNumber(1, 1024)));
  EXPECT_EQ("1024", Parse("1024", WholeNumber(1, 1024)));
}

TEST(WholeNumber, IsRefusedOtherwiseWithOptionValueAndWhatWasExpected) {
  for (const char* const text : {"-1", "-0", "+1", "1.5", "1e3", "010", "0x10", "ten", "1s", "18446744073709551616"}) {
    EXPECT_EQ("--seed: \"" + std::string(text) + "\": expected a whole number from 0 to 18446744073709551615",
              Parse(text, WholeNumber()));
  }
  for (const char* const text : {"0", "1025", "-1"}) {
    EXPECT_EQ("--seed: \"" + std::string(text) + "\": expected a whole number from 1 to 1024",
              Parse(text, WholeNumber(1, 1024)));
  }
}

}  // namespace
}  // namespace orvex::tools
