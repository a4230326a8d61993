// The five status lines of a run, in memory and in the log, and the moment at which they are made.
#include "UI/OrvexUI.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "Application/OrvexApp.h"
#include "support/journal.h"
#include "unit/service/run_support.h"

namespace {

using orvex::test::Concat;
using orvex::test::During;
using orvex::test::Texts;
using orvex::world::World;
using testing::ElementsAre;
using testing::ElementsAreArray;

// What the log shows of lines that nobody has set yet.
const Texts kFirstLines = {
    "I0 SetStatusText value: ",         "I0 m_StatusStr: < > ",
    "I0 SetCurrentDelayText value: -1", "I0 m_CurrentSpdifStr: SPDIF Delay Setting : 4294967295",
    "I0 SetAudioDealyText value: -1",   "I0 m_SyncSpdifStr: After Auto-sync Delay Setting : 4294967295",
    "I0 SetDiffTimeText value: -1",     "I0 m_DiffStr: Diff Delay Time : ",
    "I0 SetElapsedTimeText value: -1",  "I0 m_ElapsedTimeStr: Elapsed Time : "};
constexpr char kConsentSubscription[] =
    "> settings_subscribe(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = 0";

TEST(StatusLines, AreMadeOneAfterTheOtherWithNothingSet) {
  World world;
  std::unique_ptr<OrvexUI> ui;
  EXPECT_THAT(During(world, [&] { ui = std::make_unique<OrvexUI>(); }), ElementsAreArray(kFirstLines));
  EXPECT_EQ(ui->GetStatusText(), "< > ");
  EXPECT_EQ(ui->GetCurrentDelayText(), "SPDIF Delay Setting : 4294967295");
  EXPECT_EQ(ui->GetAudioDealyText(), "After Auto-sync Delay Setting : 4294967295");
  EXPECT_EQ(ui->GetDiffTimeText(), "Diff Delay Time : ");
  EXPECT_EQ(ui->GetElapsedTimeText(), "Elapsed Time : ");
}

TEST(StatusLines, ComeBeforeTheConsentIsSubscribedToWhenTheApplicationIsMade) {
  World world;
  std::unique_ptr<COrvexApp> app;
  EXPECT_THAT(During(world, [&] { app = std::make_unique<COrvexApp>(); }),
              ElementsAreArray(
                  Concat({{"> FwEflApplication(\"org.velta.orvex-service\")"}, kFirstLines, {kConsentSubscription}})));
}

TEST(StatusLines, FollowTheQueryForHdmiInputsAtProgramStart) {
  World world;
  std::unique_ptr<COrvexApp> app;
  EXPECT_THAT(
      During(world, [&] { app.reset(COrvexApp::CreateAtProgramStart()); }),
      ElementsAreArray(Concat(
          {Concat({{"> tv_get_hdmi_input_count()", "> FwEflApplication(\"org.velta.orvex-service\")"}, kFirstLines}),
           {kConsentSubscription}})));
}

using StatusLinesOfARun = orvex::test::Run;

TEST_F(StatusLinesOfARun, AreNotSetAgainNotEvenByARunThatMeasures) {
  StartRecording();
  LearnAmbient();
  DeliverPair(2);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_STREQ(app.GetManager().GetTerminateStatus(), "done");
  for (const char* setter :
       {"SetStatusText", "SetCurrentDelayText", "SetAudioDealyText", "SetDiffTimeText", "SetElapsedTimeText"}) {
    EXPECT_EQ(world.journal.CountStartingWith(std::string("I0 ") + setter), 0) << setter;
  }
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

TEST_P(NumberLine, LeavesTheOtherLinesAlone) {
  const Texts before = {ui.GetStatusText(), ui.GetCurrentDelayText(), ui.GetAudioDealyText(), ui.GetDiffTimeText(),
                        ui.GetElapsedTimeText()};
  (ui.*GetParam().set)(12345);
  const Texts after = {ui.GetStatusText(), ui.GetCurrentDelayText(), ui.GetAudioDealyText(), ui.GetDiffTimeText(),
                       ui.GetElapsedTimeText()};
  int changed = 0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    changed += before[i] != after[i] ? 1 : 0;
  }
  EXPECT_EQ(changed, 1);
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
