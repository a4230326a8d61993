// The end record: its text, made of the delay in force, the wall clock and how the run ended.
#include <limits>
#include <locale>
#include <string>

#include "orvex/platform/output_delay.h"
#include "unit/service/manager_support.h"

namespace {

using orvex::test::Ambient;
using orvex::test::ManagerTest;
using orvex::test::Tone;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int64_t kMs = 1000;  // microseconds
constexpr std::int64_t kMsClockTurn = std::int64_t{1} << 32;
constexpr std::int64_t kSomeDayUs = 1'700'000'000'000'000;
// The 32-bit clock of milliseconds wraps around at this time in 2023.
constexpr std::int64_t kTurnUs = 396 * kMsClockTurn * kMs;

class EndRecord : public ManagerTest {
protected:
  std::string EndText() {
    return TextSentBy([this] { manager.m_SendKPILogEndTime(); });
  }
};

TEST_F(EndRecord, IsKeptUntilTheOwnerAgrees) {
  world.settings[orvex::world::kConsentKey] = 0;
  Handle(ORVEX_START_SYNC);
  manager.m_SendKPILogEndTime();
  EXPECT_THAT(world.events, IsEmpty());
  world.ChangeSetting(orvex::world::kConsentKey, 1);
  world.AdvanceMs(0);
  ASSERT_EQ(world.events.size(), 2U);
  EXPECT_EQ(world.events.at(0).category, "EV013") << "after the start record";
  EXPECT_EQ(world.events.at(1).service, "21_remocon");
  EXPECT_EQ(world.events.at(1).event, "ORVEXSET");
  EXPECT_EQ(world.events.at(1).category, "EV012");
  EXPECT_EQ(world.events.at(1).value, "{result=fail;delay=100;du=0;terminate=etc}");
}

TEST_F(EndRecord, ShowsTheDelayThatIsInForceNow) {
  Handle(ORVEX_START_SYNC);
  for (const std::uint32_t delayMs : {0U, 7U, 120U, 2147483648U, std::numeric_limits<std::uint32_t>::max()}) {
    world.delayMs = delayMs;
    EXPECT_EQ(EndText(), "{result=fail;delay=" + std::to_string(delayMs) + ";du=0;terminate=etc}");
  }
}

TEST_F(EndRecord, ShowsNoDelayWhenItCannotBeRead) {
  Handle(ORVEX_START_SYNC);
  world.answers.Always("avoc_get_delay", kDelayUnreachable);
  EXPECT_EQ(EndText(), "{result=fail;delay=0;du=0;terminate=etc}");
}

TEST_F(EndRecord, TakesTheDelayFromTheDelayServiceAlone) {
  Handle(ORVEX_START_SYNC);
  world.answers.Always("getSpdifOutDelay", kAudioControlFailed);
  EXPECT_EQ(EndText(), "{result=fail;delay=100;du=0;terminate=etc}");
  EXPECT_TRUE(world.journal.Has("E0 spdif out delay = 0"));
  world.hasAudioControl = false;
  EXPECT_EQ(EndText(), "{result=fail;delay=100;du=0;terminate=etc}");
  EXPECT_TRUE(world.journal.Has("E2 audio_control is null"));
}

// The wall clock at the start and at the end of a run, and the duration between.
struct Duration {
  const char* name;
  std::int64_t startUs;
  std::int64_t endUs;
  const char* shown;
};

class EndRecordDuration : public EndRecord, public testing::WithParamInterface<Duration> {};

TEST_P(EndRecordDuration, IsSignedMillisecondsOfA32BitClock) {
  world.wallClockUs = GetParam().startUs;
  Handle(ORVEX_START_SYNC);
  world.wallClockUs = GetParam().endUs;
  EXPECT_EQ(EndText(), std::string("{result=fail;delay=100;du=") + GetParam().shown + ";terminate=etc}");
}

INSTANTIATE_TEST_SUITE_P(
    WallClock, EndRecordDuration,
    testing::Values(Duration{"NoTime", kSomeDayUs, kSomeDayUs, "0"},
                    Duration{"SomeSeconds", kSomeDayUs, kSomeDayUs + 15342 * kMs, "15342"},
                    Duration{"LessThanAMillisecond", kSomeDayUs, kSomeDayUs + 999, "0"},
                    Duration{"AMomentIntoTheNextMillisecond", kSomeDayUs + 999, kSomeDayUs + 1000, "1"},
                    Duration{"AMomentIntoTheNextSecond", kSomeDayUs + 999'999, kSomeDayUs + 1'000'000, "1"},
                    Duration{"AnHour", kSomeDayUs, kSomeDayUs + 3'600'000 * kMs, "3600000"},
                    Duration{"AcrossTheTurn", kTurnUs - 500 * kMs, kTurnUs + 700 * kMs, "1200"},
                    Duration{"FromJustBeforeTheTurnToIt", kTurnUs - 1 * kMs, kTurnUs, "1"},
                    Duration{"ClockPutBackASecond", kSomeDayUs, kSomeDayUs - 1000 * kMs, "-1000"},
                    Duration{"ClockPutBackAcrossTheTurn", kTurnUs + 5 * kMs, kTurnUs - 5 * kMs, "-10"},
                    Duration{"ClockPutBackToItsBeginning", 10 * kMs, 0, "-10"},
                    Duration{"LongestThatIsShown", kSomeDayUs, kSomeDayUs + 2147483647 * kMs, "2147483647"},
                    Duration{"LongerThanThat", kSomeDayUs, kSomeDayUs + 2147483648 * kMs, "-2147483648"},
                    Duration{"OneMillisecondLessThanATurn", kSomeDayUs, kSomeDayUs + (kMsClockTurn - 1) * kMs, "-1"},
                    Duration{"AWholeTurn", kSomeDayUs, kSomeDayUs + kMsClockTurn* kMs, "0"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(EndRecord, CountsFromTheBeginningOfTheClockWhenNoRunWasStarted) {
  world.wallClockUs = kTurnUs + 1234 * kMs;
  EXPECT_EQ(EndText(), "{result=fail;delay=100;du=1234;terminate=etc}");
  world.wallClockUs = kTurnUs - 1234 * kMs;
  EXPECT_EQ(EndText(), "{result=fail;delay=100;du=-1234;terminate=etc}") << "the clock's upper half is negative";
}

TEST_F(EndRecord, CountsFromTheStartOfTheLastRun) {
  Handle(ORVEX_START_SYNC);
  world.AdvanceMs(1000);
  Handle(ORVEX_START_SYNC);
  world.AdvanceMs(250);
  EXPECT_THAT(EndText(), HasSubstr(";du=250;"));
}

TEST_F(EndRecord, StaysAPassOnceAnyRunOfTheProcessHasPassed) {
  RunHearing({Tone(17000, 5000), Ambient(), Tone(19000, 5000)});  // 17 kHz came 2 buffers, 33 ms, before 19 kHz
  EXPECT_EQ(world.events.back().value, "{result=pass;delay=67;du=0;terminate=done}");
  RunHearing({});
  EXPECT_EQ(world.events.back().value, "{result=pass;delay=67;du=0;terminate=diff_fail}");
  OrvexManager::m_OnAbnomalStatusCallback(&manager);
  EXPECT_EQ(EndText(), "{result=pass;delay=67;du=0;terminate=abnormal_input_fail}");
}

TEST_F(EndRecord, TurnsFromAFailIntoAPass) {
  RunHearing({});
  EXPECT_EQ(world.events.back().value, "{result=fail;delay=100;du=0;terminate=diff_fail}");
  RunHearing({Tone(17000, 5000), Ambient(), Tone(19000, 5000)});
  EXPECT_EQ(world.events.back().value, "{result=pass;delay=67;du=0;terminate=done}");
}

TEST_F(EndRecord, ShowsTheDelayThatSomebodySetAfterTheRun) {
  RunHearing({Tone(17000, 5000), Ambient(), Tone(19000, 5000)});
  world.delayMs = 55;
  EXPECT_EQ(EndText(), "{result=pass;delay=55;du=0;terminate=done}");
}

// Groups digits as some countries do.
class Grouped : public std::numpunct<char> {
protected:
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

class GlobalLocale {
public:
  explicit GlobalLocale(const std::locale& locale) : m_Before(std::locale::global(locale)) {}
  ~GlobalLocale() { std::locale::global(m_Before); }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
  std::locale m_Before;
};

TEST_F(EndRecord, GroupsDigitsWhenTheGlobalLocaleDoes) {
  Handle(ORVEX_START_SYNC);
  world.delayMs = 1000;
  world.AdvanceMs(1234567);
  const GlobalLocale grouped(std::locale(std::locale::classic(), new Grouped));
  EXPECT_EQ(EndText(), "{result=fail;delay=1,000;du=1,234,567;terminate=etc}");
}

}  // namespace
