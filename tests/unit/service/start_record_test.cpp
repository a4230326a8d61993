// The start record: the text that it makes of what the television answers.
#include "orvex/platform/output_delay.h"
#include "orvex/platform/tv_service.h"
#include "unit/service/manager_support.h"

namespace {

using orvex::test::FirstOf;
using orvex::test::ManagerTest;
using orvex::test::Texts;
using testing::ElementsAreArray;

// A failure of the television that hands out an object all the same.
constexpr long kFailsButHandsOut = -1000;
// A success that hands out none.
constexpr long kHandsOutNothing = 1;

class StartRecord : public ManagerTest {
protected:
  std::string StartText() {
    return TextSentBy([this] { manager.m_SendKPILogStartTime(); });
  }
};

TEST_F(StartRecord, IsMadeOfDefaultsWhenEveryQueryFails) {
  world.brand.reset();
  world.answers.Always("tv_create_av_control", kTvFailed);
  world.answers.Always("tv_create_source_control", kTvFailed);
  world.hasAudioControl = false;
  EXPECT_EQ(StartText(), "{device=none|-1;source=0;videoinfo=none|0|0;codec=0}") << "and is sent like any other";
  for (const char* line : {"I0 activity info is null", "E2 Create Resolution Control failed",
                           "E2 Can not get Source Control.", "I0 source = 0", "I0 type = 0"}) {
    EXPECT_EQ(world.journal.Count(line), 1) << line;
  }
}

TEST_F(StartRecord, CopiesTheBrandAsItStands) {
  for (const char* brand : {"", "a|b;c}d{", ";source=9", "%s%n%d", " two words ", "Größe", "none"}) {
    world.brand = brand;
    EXPECT_EQ(StartText(), "{device=" + *world.brand + "|3;source=5;videoinfo=tv|7|60;codec=2}");
    EXPECT_TRUE(world.journal.Has("I0 type = 3, brandName = " + *world.brand));
  }
}

TEST_F(StartRecord, AsksAnewEachTime) {
  EXPECT_EQ(StartText(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}");
  world.brand = "other";
  world.source = 6;
  world.frequency = 50;
  world.codec = 0;
  EXPECT_EQ(StartText(), "{device=other|3;source=6;videoinfo=tv|7|50;codec=0}");
}

TEST_F(StartRecord, TakesNoVideoInformationFromAControlThatCouldNotBeMade) {
  for (const long result : {static_cast<long>(kTvFailed), -2L, kHandsOutNothing, kFailsButHandsOut}) {
    world.answers.Next("tv_create_av_control", {result});
    EXPECT_EQ(StartText(), "{device=acme|3;source=5;videoinfo=none|0|0;codec=2}");
    EXPECT_EQ(world.journal.Count("E2 Create Resolution Control failed"), 1);
    EXPECT_EQ(world.journal.CountStartingWith("> getResolution"), 0);
    EXPECT_EQ(world.journal.CountStartingWith("I0 resolution"), 0);
  }
}

TEST_F(StartRecord, ShowsTheSelectorOfAResolutionThatTheControlDidNotTell) {
  world.answers.Next("getResolution", {kTvFailed});
  EXPECT_EQ(StartText(), "{device=acme|3;source=5;videoinfo=tv|2|0;codec=2}");
  EXPECT_TRUE(world.journal.Has("I0 resolution = 2, frequency = 0"));
  EXPECT_EQ(world.journal.CountStartingWith("E"), 0) << "the answer is not looked at";
}

TEST_F(StartRecord, UsesWhateverSourceControlItWasHanded) {
  world.answers.Next("tv_create_source_control", {kFailsButHandsOut});
  EXPECT_EQ(StartText(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}");
  EXPECT_EQ(world.journal.CountStartingWith("E"), 0);
}

TEST_F(StartRecord, HasNoSourceWithoutAControl) {
  for (const long result : {static_cast<long>(kTvFailed), kHandsOutNothing}) {
    world.answers.Next("tv_create_source_control", {result});
    EXPECT_EQ(StartText(), "{device=acme|3;source=0;videoinfo=tv|7|60;codec=2}");
    EXPECT_EQ(world.journal.Count("E2 Can not get Source Control."), 1);
    EXPECT_EQ(world.journal.Count("I0 source = 0"), 1);
    EXPECT_EQ(world.journal.CountStartingWith("> getCurrentSource"), 0);
  }
}

TEST_F(StartRecord, HasNoSourceWhenTheControlAnswersNegatively) {
  for (const int result : {kTvFailed, -2, INT32_MIN}) {
    world.answers.Next("getCurrentSource", {result});
    EXPECT_EQ(StartText(), "{device=acme|3;source=0;videoinfo=tv|7|60;codec=2}");
    EXPECT_EQ(world.journal.Count("E2 Can not Set Source by Source Control."), 1);
  }
}

TEST_F(StartRecord, TakesAPositiveAnswerOfTheSourceControlForNoFailure) {
  world.answers.Next("getCurrentSource", {1});
  StartText();
  EXPECT_EQ(world.journal.Count("E2 Can not Set Source by Source Control."), 0);
}

TEST_F(StartRecord, HasNoCodecWhenItCannotBeAskedFor) {
  world.answers.Next("getSpdifOutCodec", {kAudioControlFailed});
  EXPECT_EQ(StartText(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=0}");
  world.hasAudioControl = false;
  EXPECT_EQ(StartText(), "{device=acme|3;source=5;videoinfo=tv|7|60;codec=0}");
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
  EXPECT_EQ(StartText(), std::string("{device=acme|") + asSigned + ";source=" + asSigned + ";videoinfo=tv|" +
                             asUnsigned + "|" + asUnsigned + ";codec=" + asUnsigned + "}");
  const std::string text = asSigned;
  const Texts logged = {"I0 type = " + text + ", brandName = acme", "I0 resolution = " + text + ", frequency = " + text,
                        "I0 source = " + text, "I0 type = " + text};
  EXPECT_THAT(FirstOf(world.journal.Logs(), 4), ElementsAreArray(logged)) << "the log shows signed numbers";
}

INSTANTIATE_TEST_SUITE_P(Any, StartRecordNumber,
                         testing::Values(Number{0, "0", "0"}, Number{7, "7", "7"},
                                         Number{1234567, "1234567", "1234567"}, Number{-1, "-1", "4294967295"},
                                         Number{-20, "-20", "4294967276"},
                                         Number{INT32_MAX, "2147483647", "2147483647"},
                                         Number{INT32_MIN, "-2147483648", "2147483648"}));

}  // namespace
