// Texts with fields in them match what they describe and nothing else.
#include <gmock/gmock.h>

#include "world/runs/text_pattern.h"

namespace {

using orvex::runs::TextPattern;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(TextPattern, WithoutFieldsMatchesItself) {
  EXPECT_TRUE(TextPattern("I0 text = {result=pass}").Matches("I0 text = {result=pass}"));
  EXPECT_FALSE(TextPattern("I0 Create").Matches("I0 Create "));
  EXPECT_FALSE(TextPattern("I0 Create").Matches("I0 Creat"));
}

TEST(TextPattern, FieldsTakeWhatTheyAreFor) {
  EXPECT_TRUE(TextPattern("I0 buffer: {u}").Matches("I0 buffer: 17"));
  EXPECT_FALSE(TextPattern("I0 buffer: {u}").Matches("I0 buffer: -17"));
  EXPECT_FALSE(TextPattern("I0 buffer: {u}").Matches("I0 buffer: "));
  EXPECT_FALSE(TextPattern("I0 buffer: {d}").Matches("I0 buffer: 1.5"));
  EXPECT_TRUE(TextPattern("{f} {f} {f}").Matches("-1.50 inf -nan"));
  EXPECT_FALSE(TextPattern("{f}").Matches("1.2.3"));
  EXPECT_TRUE(TextPattern("buf {p}, frames to write{d}.").Matches("buf 0x7f12ab, frames to write9824."));
  EXPECT_FALSE(TextPattern("buf {p}").Matches("buf 7f12ab"));
  EXPECT_TRUE(TextPattern("[{s}][{s}]").Matches("[/tmp/a][/tmp/b]"));
}

TEST(TextPattern, FieldsAreHandedOut) {
  EXPECT_THAT(TextPattern("@ [{d}] - [{d}] : {f} s\n").Fields("@ [50] - [53] : 0.0495 s\n"),
              ElementsAre("50", "53", "0.0495"));
  EXPECT_THAT(TextPattern("[{s}] [{s}]").Fields("[a] b] [c]"), ElementsAre("a] b", "c"));
  EXPECT_THAT(TextPattern("({s}) = {d}").Fields("(a) = x"), IsEmpty());
}

}  // namespace
