// The page about several recordings.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(ReplayOverview, HasALineAndAPartForEachRecording) {
  const auto late = MakeRecording(Ambient() + "7..9");
  const auto missing = MakeRecording(Ambient() + "77" + std::string(30, '.'));
  const auto given = MakeRecording(Ambient() + std::string(11, 'y'));
  fine::Reading fine;
  fine.differenceS = 0.0507;
  fine.intervalS = {0.0506, 0.0508};
  ReportPage page(4);
  page.Add(ReplayRecord(late), SubjectOf(late, "late.raw"), fine);
  page.AddUnreadable("<gone>", "<gone>: cannot be read");
  page.Add(ReplayRecord(missing), SubjectOf(missing, "missing.raw"));
  page.Add(ReplayRecord(given), SubjectOf(given, "given.raw"));
  EXPECT_FALSE(page.IsEmpty());
  const std::string html = page.Finish();
  EXPECT_THAT(html, HasSubstr("<h1>Replay of 4 recordings</h1>"));
  EXPECT_THAT(html,
              HasSubstr("<a href='#recording-1'>late.raw</a></th><td class='good'>The optical output is 49.5 ms "
                        "late</td><td>+49.5 ms</td><td>+50.70 ms (+50.60 to +50.80)</td><td>-20.8 dBFS, found in 1 "
                        "block</td><td>-20.8 dBFS, found in 1 block</td></tr>"));
  EXPECT_THAT(html, HasSubstr("<tr><th scope='row'>&lt;gone&gt;</th><td class='bad'>Not read: &lt;gone&gt;: cannot be "
                              "read</td><td>-</td><td>-</td><td>-</td><td>-</td></tr>"));
  EXPECT_THAT(html,
              HasSubstr("<a href='#recording-3'>missing.raw</a></th><td class='warn'>No difference: 19 kHz (optical "
                        "output) was not found</td><td>none</td><td>-</td><td>-20.8 dBFS, found in 2 blocks</td>"));
  EXPECT_THAT(html, HasSubstr("dB short of its threshold</td></tr>"));
  EXPECT_THAT(html, HasSubstr("<td class='bad'>Given up: abnormal input</td>"));
  for (const char* const part : {"recording-1", "recording-3", "recording-4"}) {
    EXPECT_THAT(html, HasSubstr("<article id='" + std::string(part) + "'"));
    EXPECT_THAT(html, HasSubstr("id='" + std::string(part) + "-close-spectrogram'"));
  }
  EXPECT_THAT(html, Not(HasSubstr("id='recording-2'")));
}

TEST(ReplayOverview, MentionsTheFineReadingOnlyWhenItWasAskedFor) {
  const auto bytes = MakeRecording(Ambient() + "7..9");
  ReportPage page(2);
  page.Add(ReplayRecord(bytes), SubjectOf(bytes));
  page.Add(ReplayRecord(bytes), SubjectOf(bytes));
  EXPECT_THAT(page.Finish(), Not(HasSubstr("fine reading")));
}

TEST(ReplayOverview, IsNotThereForOneRecording) {
  const std::string html = PageOf(MakeRecording(Ambient() + "7..9"));
  EXPECT_THAT(html, HasSubstr("<h1>Replay of <code>dump</code></h1>"));
  EXPECT_THAT(html, Not(HasSubstr("<article")));
  EXPECT_THAT(html, Not(HasSubstr("recording-1")));
}

TEST(ReplayOverview, SaysWhenNothingCouldBeRead) {
  ReportPage page(2);
  page.AddUnreadable("a", "a: cannot be read");
  page.AddUnreadable("b", "b: cannot be read");
  EXPECT_TRUE(page.IsEmpty());
}

}  // namespace
}  // namespace orvex::tools
