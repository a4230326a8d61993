// The five status lines, in memory and in the log.
#include "UI/OrvexUI.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/journal.h"

namespace {

using orvex::test::During;
using orvex::world::World;
using testing::ElementsAre;

TEST(StatusLines, BeginWithNothingSet) {
  const World world;
  const OrvexUI ui;
  EXPECT_EQ(ui.GetStatusText(), "< > ");
  EXPECT_EQ(ui.GetCurrentDelayText(), "SPDIF Delay Setting : 4294967295");
  EXPECT_EQ(ui.GetAudioDealyText(), "After Auto-sync Delay Setting : 4294967295");
  EXPECT_EQ(ui.GetDiffTimeText(), "Diff Delay Time : ");
  EXPECT_EQ(ui.GetElapsedTimeText(), "Elapsed Time : ");
}

TEST(StatusText, IsPutBetweenItsBracketsAndReplacesTheOneBefore) {
  World world;
  OrvexUI ui;
  for (const std::string& status : {std::string("running"), std::string(), std::string("< done >"),
                                    std::string("%s %n %u"), std::string("Größe"), std::string(5000, 's')}) {
    EXPECT_THAT(During(world, [&] { ui.SetStatusText(status); }),
                ElementsAre("I0 SetStatusText value: " + status, "I0 m_StatusStr: < " + status + "> "));
    EXPECT_EQ(ui.GetStatusText(), "< " + status + "> ");
  }
}

TEST(StatusLines, AreSetEachAlone) {
  const World world;
  OrvexUI ui;
  ui.SetStatusText("running");
  ui.SetCurrentDelayText(1);
  ui.SetAudioDealyText(2);
  ui.SetDiffTimeText(3);
  ui.SetElapsedTimeText(4);
  EXPECT_EQ(ui.GetStatusText(), "< running> ");
  EXPECT_EQ(ui.GetCurrentDelayText(), "SPDIF Delay Setting : 1");
  EXPECT_EQ(ui.GetAudioDealyText(), "After Auto-sync Delay Setting : 2");
  EXPECT_EQ(ui.GetDiffTimeText(), "Diff Delay Time : 3");
  EXPECT_EQ(ui.GetElapsedTimeText(), "Elapsed Time : 4");
}

// One of the four lines that show a number.
struct Line {
  const char* setterName;
  const char* fieldName;
  const char* label;
  void (OrvexUI::*set)(std::int32_t value);
  const std::string& (OrvexUI::*get)() const;
  std::string minusOne;  // what follows the label then
};

class NumberLine : public testing::TestWithParam<Line> {
protected:
  void ExpectShown(std::int32_t value, const std::string& shown) {
    const std::string line = GetParam().label + shown;
    const std::string argument = " value: " + std::to_string(value);
    EXPECT_THAT(During(world, [&] { (ui.*GetParam().set)(value); }),
                ElementsAre("I0 " + std::string(GetParam().setterName) + argument,
                            "I0 " + std::string(GetParam().fieldName) + ": " + line));
    EXPECT_EQ((ui.*GetParam().get)(), line);
  }

  World world;
  OrvexUI ui;
};

TEST_P(NumberLine, ShowsTheValueAsAnUnsignedNumberAndLogsItAsASignedOne) {
  ExpectShown(120, "120");
  ExpectShown(0, "0");
  ExpectShown(7, "7");
  ExpectShown(INT32_MAX, "2147483647");
  ExpectShown(INT32_MIN, "2147483648");
  ExpectShown(-2, "4294967294");
}

TEST_P(NumberLine, ShowsThatNothingIsSetInItsOwnWay) {
  ExpectShown(120, "120");
  ExpectShown(-1, GetParam().minusOne);
}

INSTANTIATE_TEST_SUITE_P(StatusLines, NumberLine,
                         testing::Values(Line{"SetCurrentDelayText", "m_CurrentSpdifStr",
                                              "SPDIF Delay Setting : ", &OrvexUI::SetCurrentDelayText,
                                              &OrvexUI::GetCurrentDelayText, "4294967295"},
                                         Line{"SetAudioDealyText", "m_SyncSpdifStr", "After Auto-sync Delay Setting : ",
                                              &OrvexUI::SetAudioDealyText, &OrvexUI::GetAudioDealyText, "4294967295"},
                                         Line{"SetDiffTimeText", "m_DiffStr", "Diff Delay Time : ",
                                              &OrvexUI::SetDiffTimeText, &OrvexUI::GetDiffTimeText, ""},
                                         Line{"SetElapsedTimeText", "m_ElapsedTimeStr", "Elapsed Time : ",
                                              &OrvexUI::SetElapsedTimeText, &OrvexUI::GetElapsedTimeText, ""}),
                         [](const auto& row) { return std::string(row.param.setterName); });

}  // namespace
