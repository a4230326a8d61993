// The start record: what it asks the television, in which order, and the text that it makes of the answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "Application/OrvexManager.h"
#include "support/journal.h"

namespace {

using orvex::test::During;
using orvex::test::FromTo;
using orvex::test::Texts;
using orvex::world::World;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

constexpr char kConsentKey[] = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";

// A failure of the television that hands out an object all the same.
constexpr long kFailsButHandsOut = -1000;
// A success that hands out none.
constexpr long kHandsOutNothing = 1;

class StartRecord : public testing::Test {
protected:
  StartRecord() { world.settings[kConsentKey] = 1; }

  Texts Send() {
    return During(world, [this] { manager.m_SendKPILogStartTime(); });
  }
  // The record's text; it must be the one that was logged and the only one that was sent.
  std::string TextSent() {
    world.events.clear();
    Send();
    EXPECT_EQ(world.events.size(), 1U);
    const std::string text = world.events.at(0).value;
    EXPECT_EQ(world.journal.Count("I0 text = " + text), 1);
    return text;
  }

  World world;
  OrvexManager manager;
};

TEST_F(StartRecord, AsksForDeviceSignalSourceAndCodecAndHandsTheTextOver) {
  EXPECT_THAT(Send(), ElementsAre("> tv_get_activity_info_by_source(99)", "I0 type = 3, brandName = acme",
                                  "> tv_create_av_control(1, 0) = 0", "> getResolution(2) = 0",
                                  "I0 resolution = 7, frequency = 60", "> tv_create_source_control(1, 0) = 0",
                                  "> getCurrentSource() = 0", "I0 source = 5",
                                  "> IAudioControl::getInstance() = object", "> getSpdifOutCodec() = 0", "I0 type = 2",
                                  "I0 text = {device=acme|3;source=5;videoinfo=tv|7|60;codec=2}",
                                  "> settings_get_int(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = 0",
                                  "I0 defaultdisclaimeragree=1",
                                  "I0 Service[] Event[ORVEXENV] Category[EV013] "
                                  "Value[{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}]",
                                  "> event_log_get_instance() = object",
                                  "> event_log_add_sync(21_remocon, ORVEXENV, EV013, "
                                  "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}) = 1",
                                  "I0 add event log sync:1"));
}

TEST_F(StartRecord, IsKeptUntilTheOwnerAgrees) {
  world.settings[kConsentKey] = 0;
  EXPECT_EQ(Send().back(), "I0 defaultdisclaimeragree=0");
  EXPECT_THAT(world.events, IsEmpty());
  world.brand = "another one by now";
  world.ChangeSetting(kConsentKey, 1);
  world.AdvanceMs(0);
  ASSERT_EQ(world.events.size(), 1U);
  EXPECT_EQ(world.events.at(0).service, "21_remocon");
  EXPECT_EQ(world.events.at(0).event, "ORVEXENV");
  EXPECT_EQ(world.events.at(0).category, "EV013");
  EXPECT_EQ(world.events.at(0).value, "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}");
}

TEST_F(StartRecord, IsMadeOfDefaultsWhenEveryQueryFails) {
  world.brand.reset();
  world.answers.Always("tv_create_av_control", -1);
  world.answers.Always("tv_create_source_control", -1);
  world.hasAudioControl = false;
  EXPECT_THAT(FromTo(Send(), "> tv_get_activity_info_by_source(99)",
                     "I0 text = {device=none|-1;source=0;videoinfo=none|0|0;codec=0}"),
              ElementsAre("> tv_get_activity_info_by_source(99)", "I0 activity info is null",
                          "> tv_create_av_control(1, 0) = -1", "E2 Create Resolution Control failed",
                          "> tv_create_source_control(1, 0) = -1", "E2 Can not get Source Control.", "I0 source = 0",
                          "> IAudioControl::getInstance() = null", "I0 type = 0",
                          "I0 text = {device=none|-1;source=0;videoinfo=none|0|0;codec=0}"));
  EXPECT_EQ(world.events.size(), 1U) << "and is sent like any other";
}

TEST_F(StartRecord, CopiesTheBrandAsItStands) {
  for (const char* brand : {"", "a|b;c}d{", ";source=9", "%s%n%d", " two words ", "Größe", "none"}) {
    world.brand = brand;
    EXPECT_EQ(TextSent(), "{device=" + *world.brand + "|3;source=5;videoinfo=tv|7|60;codec=2}");
    EXPECT_TRUE(world.journal.Has("I0 type = 3, brandName = " + *world.brand));
  }
}

TEST_F(StartRecord, AsksAnewEachTime) {
  EXPECT_EQ(TextSent(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}");
  world.brand = "other";
  world.source = 6;
  world.frequency = 50;
  world.codec = 0;
  EXPECT_EQ(TextSent(), "{device=other|3;source=6;videoinfo=tv|7|50;codec=0}");
}

TEST_F(StartRecord, TakesNoVideoInformationFromAControlThatCouldNotBeMade) {
  for (const long result : {-1L, -2L, kHandsOutNothing, kFailsButHandsOut}) {
    world.answers.Next("tv_create_av_control", {result});
    EXPECT_EQ(TextSent(), "{device=acme|3;source=5;videoinfo=none|0|0;codec=2}");
    EXPECT_EQ(world.journal.Count("E2 Create Resolution Control failed"), 1);
    EXPECT_EQ(world.journal.CountStartingWith("> getResolution"), 0);
    EXPECT_EQ(world.journal.CountStartingWith("I0 resolution"), 0);
  }
}

TEST_F(StartRecord, ShowsTheSelectorOfAResolutionThatTheControlDidNotTell) {
  world.answers.Next("getResolution", {-1});
  EXPECT_EQ(TextSent(), "{device=acme|3;source=5;videoinfo=tv|2|0;codec=2}");
  EXPECT_TRUE(world.journal.Has("I0 resolution = 2, frequency = 0"));
  EXPECT_EQ(world.journal.CountStartingWith("E"), 0) << "the answer is not looked at";
}

TEST_F(StartRecord, UsesWhateverSourceControlItWasHanded) {
  world.answers.Next("tv_create_source_control", {kFailsButHandsOut});
  EXPECT_EQ(TextSent(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}");
  EXPECT_EQ(world.journal.CountStartingWith("E"), 0);
}

TEST_F(StartRecord, HasNoSourceWithoutAControl) {
  for (const long result : {-1L, kHandsOutNothing}) {
    world.answers.Next("tv_create_source_control", {result});
    EXPECT_EQ(TextSent(), "{device=acme|3;source=0;videoinfo=tv|7|60;codec=2}");
    EXPECT_EQ(world.journal.Count("E2 Can not get Source Control."), 1);
    EXPECT_EQ(world.journal.Count("I0 source = 0"), 1);
    EXPECT_EQ(world.journal.CountStartingWith("> getCurrentSource"), 0);
  }
}

TEST_F(StartRecord, HasNoSourceWhenTheControlAnswersNegatively) {
  for (const long result : {-1L, -2L, static_cast<long>(INT32_MIN)}) {
    world.answers.Next("getCurrentSource", {result});
    EXPECT_THAT(FromTo(Send(), "> tv_create_source_control(1, 0) = 0", "I0 source = 0"),
                ElementsAre("> tv_create_source_control(1, 0) = 0", "> getCurrentSource() = " + std::to_string(result),
                            "E2 Can not Set Source by Source Control.", "I0 source = 0"));
  }
}

TEST_F(StartRecord, TakesAPositiveAnswerOfTheSourceControlForNoFailure) {
  world.answers.Next("getCurrentSource", {1});
  EXPECT_THAT(Send(), Not(Contains("E2 Can not Set Source by Source Control.")));
}

TEST_F(StartRecord, HasNoCodecWhenItCannotBeAskedFor) {
  world.answers.Next("getSpdifOutCodec", {-1});
  EXPECT_EQ(TextSent(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=0}");
  world.hasAudioControl = false;
  EXPECT_EQ(TextSent(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=0}");
  EXPECT_EQ(world.journal.CountStartingWith("> getSpdifOutCodec"), 0);
  EXPECT_EQ(world.journal.CountStartingWith("E"), 0) << "a missing object is no error here";
}

// A number of the television, and how record and log show it.
struct Number {
  std::int32_t value;
  const char* asSigned;
  const char* asUnsigned;
};

class StartRecordNumber : public StartRecord, public testing::WithParamInterface<Number> {};

TEST_P(StartRecordNumber, KeepsItsSignAsDeviceTypeAndSourceAndLosesItElsewhere) {
  const auto& [value, asSigned, asUnsigned] = GetParam();
  world.deviceType = value;
  world.source = value;
  world.resolution = value;
  world.frequency = value;
  world.codec = value;
  EXPECT_EQ(TextSent(), std::string("{device=acme|") + asSigned + ";source=" + asSigned + ";videoinfo=tv|" +
                            asUnsigned + "|" + asUnsigned + ";codec=" + asUnsigned + "}");
  const std::string text = asSigned;
  const Texts logged = {"I0 type = " + text + ", brandName = acme", "I0 resolution = " + text + ", frequency = " + text,
                        "I0 source = " + text, "I0 type = " + text};
  const Texts logs = world.journal.Logs();
  EXPECT_THAT(Texts(logs.begin(), logs.begin() + 4), ElementsAreArray(logged)) << "the log shows signed numbers";
}

INSTANTIATE_TEST_SUITE_P(Any, StartRecordNumber,
                         testing::Values(Number{0, "0", "0"}, Number{7, "7", "7"},
                                         Number{1234567, "1234567", "1234567"}, Number{-1, "-1", "4294967295"},
                                         Number{-20, "-20", "4294967276"},
                                         Number{INT32_MAX, "2147483647", "2147483647"},
                                         Number{INT32_MIN, "-2147483648", "2147483648"}));

}  // namespace
