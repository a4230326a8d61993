// What the command lines of all tools have in common: which values they take, and how they refuse.
#include <cstdint>
#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "options/completion.h"
#include "options/program.h"
#include "options/suggestion.h"
#include "options/version.h"

namespace orvex::tools {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr int kBellFailure = 7;

// A program with something of everything.
struct Bell {
  Program program{"bell", "Rings.", "0 it rang, 7 it did not, 2 wrong usage", kBellFailure};
  std::optional<double> pauseMs;
  std::optional<std::uint64_t> seed;
  int strokes = 3;
  std::string tone = "low";
  std::string level;
  std::vector<std::string> sounds;
  std::vector<std::string> bells;
  std::string coin;
  bool isLoud = false;
  bool isMuffled = false;
  std::function<int()> ring = [] { return 0; };

  Bell() {
    Command& ringing = program.AddCommand("ring", "ring the bells");
    ringing.Add("--pause", pauseMs, value::Number("MS", 0, 1000), "between two strokes");
    ringing.Add("--seed", seed, value::WholeNumber("N"), "of everything random");
    ringing.Add("-n,--strokes", strokes, value::WholeNumber("N", 1, 12), "of each bell");
    Option& tones = ringing.Add("--tone", tone, value::Text("TONE"), "of the bells").InGroup("Sound");
    tones.kind.words = {"bright", "dull"};
    tones.kind.isList = true;
    ringing.Add("--level", level, value::OrWord(value::Number("DB"), "none"), "of the bells").InGroup("Sound");
    ringing.Add("--sound", sounds, value::File(), "of the bells").InGroup("Sound");
    const Option& loud = ringing.AddFlag("-l,--loud", isLoud, "for all to hear");
    const Option& muffled = ringing.AddFlag("--muffled", isMuffled, "for few to hear").NotWith(loud);
    ringing.Add("--cloth", tone, value::Text("CLOTH"), "around the clapper").OnlyWith(muffled);
    const auto bellsAfter = [](const std::vector<std::string>& before) {
      return before.empty() ? std::vector<std::string>{"great", "small"}
                            : std::vector<std::string>{"after-" + before[0]};
    };
    ringing.Add("BELL", bells, value::Text("BELL", bellsAfter), "which to ring").Required();
    ringing.AddExample("bell ring --pause 20 great");
    ringing.SetAction([this] { return ring(); });
    Command& give = program.AddCommand("give", "throw a coin");
    give.Add("COIN", coin, value::Text("COIN"), "the coin");
    give.SetAction([] { return 0; });
  }
};

struct BellOutcome {
  int exitCode;
  std::string out;
  std::string error;
};

BellOutcome CallBell(const Bell& bell, std::vector<const char*> words) {
  words.insert(words.begin(), "/usr/bin/bell");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  BellOutcome outcome{bell.program.Run(static_cast<int>(words.size()), words.data()), "", ""};
  outcome.out = testing::internal::GetCapturedStdout();
  outcome.error = testing::internal::GetCapturedStderr();
  return outcome;
}

// The first line of the refusal, without the program's name.
std::string RefusalOf(const std::vector<const char*>& words) {
  const BellOutcome outcome = CallBell(Bell(), words);
  EXPECT_EQ(kExitUsage, outcome.exitCode);
  EXPECT_EQ("", outcome.out);
  EXPECT_THAT(outcome.error, StartsWith("bell: "));
  return outcome.error.substr(6, outcome.error.find('\n') - 6);
}

TEST(Options, PutTheirValuesIntoTheVariables) {
  Bell bell;
  bell.program.Read({"ring", "--pause", "+2.5", "--seed=18446744073709551615", "-n12", "--level", "-6", "--sound",
                     "a.wav", "--sound", "b.wav", "-l", "--", "great", "-small"});
  EXPECT_EQ(2.5, bell.pauseMs);
  EXPECT_EQ(18446744073709551615U, bell.seed);
  EXPECT_EQ(12, bell.strokes);
  EXPECT_EQ("-6", bell.level);
  EXPECT_THAT(bell.sounds, ElementsAre("a.wav", "b.wav"));
  EXPECT_TRUE(bell.isLoud);
  EXPECT_THAT(bell.bells, ElementsAre("great", "-small"));
}

TEST(Options, LeaveTheVariablesOfThoseThatAreNotGivenAlone) {
  Bell bell;
  bell.program.Read({"ring", "great"});
  EXPECT_EQ(std::nullopt, bell.pauseMs);
  EXPECT_EQ(3, bell.strokes);
  EXPECT_EQ("low", bell.tone);
  EXPECT_FALSE(bell.isLoud);
}

TEST(Options, RefuseAWholeNumberThatIsNotWrittenAsOne) {
  for (const char* const text : {"-1", "-0", "+1", "1.5", "1e3", "010", "0x10", "ten", "1s", "18446744073709551616"}) {
    EXPECT_EQ("--seed: \"" + std::string(text) + "\": expected a whole number from 0 to 18446744073709551615",
              RefusalOf({"ring", "--seed", text, "great"}));
  }
  for (const char* const text : {"0", "13", "-1"}) {
    EXPECT_EQ("--strokes: \"" + std::string(text) + "\": expected a whole number from 1 to 12",
              RefusalOf({"ring", "-n", text, "great"}));
  }
}

TEST(Options, RefuseWhatIsNoNumberAndNameTheUnit) {
  for (const char* const text : {"abc", "1000.5", "-1", "1ms", "nan", "inf", "1,5", " 1", "+-1"}) {
    EXPECT_EQ("--pause: \"" + std::string(text) + "\": expected a number of milliseconds from 0 to 1000",
              RefusalOf({"ring", "--pause", text, "great"}));
  }
}

TEST(Options, RefuseWhatIsNeitherANumberNorTheWord) {
  EXPECT_EQ("--level: \"abc\": expected a number of decibels or \"none\"",
            RefusalOf({"ring", "--level", "abc", "great"}));
  EXPECT_EQ("--level: \"nome\": expected a number of decibels or \"none\", did you mean \"none\"?",
            RefusalOf({"ring", "--level", "nome", "great"}));
}

TEST(Options, SayWhatIsMissing) {
  EXPECT_EQ("a command is missing, expected ring or give", RefusalOf({}));
  EXPECT_EQ("BELL is missing", RefusalOf({"ring"}));
  EXPECT_EQ("--pause: expected a number of milliseconds from 0 to 1000 after it",
            RefusalOf({"ring", "great", "--pause"}));
  EXPECT_EQ("--tone: expected TONE after it", RefusalOf({"ring", "great", "--tone"}));
  EXPECT_EQ("--pause: expected a number of milliseconds from 0 to 1000 after it",
            RefusalOf({"ring", "--pause=", "great"}));
  EXPECT_EQ("--tone: expected TONE after it, not --loud", RefusalOf({"ring", "--tone", "--loud", "great"}));
  EXPECT_EQ("--sound: \"\": expected a file", RefusalOf({"ring", "--sound", "", "great"}));
}

TEST(Options, SayWhatIsUnknownAndWhatItMayMean) {
  EXPECT_EQ("unknown command \"rnig\", did you mean \"ring\"?", RefusalOf({"rnig", "great"}));
  EXPECT_EQ("unknown command \"dance\", expected ring or give", RefusalOf({"dance"}));
  EXPECT_EQ("unknown option \"--puase\", did you mean \"--pause\"?", RefusalOf({"ring", "--puase", "5"}));
  EXPECT_EQ("unknown option \"--puase\", did you mean \"--pause\"?", RefusalOf({"ring", "great", "--puase=5"}));
  EXPECT_EQ("unknown option \"--hepl\", did you mean \"--help\"?", RefusalOf({"--hepl"}));
  EXPECT_EQ("unknown option \"-x\"", RefusalOf({"ring", "-x", "great"}));
  EXPECT_EQ("unexpected argument \"more\"", RefusalOf({"give", "penny", "more"}));
  EXPECT_EQ("unexpected argument \"-\"", RefusalOf({"give", "penny", "-"}));
}

TEST(Options, SayWhatDoesNotGoTogether) {
  EXPECT_EQ("--muffled cannot be combined with --loud", RefusalOf({"ring", "-l", "--muffled", "great"}));
  EXPECT_EQ("--cloth needs --muffled beside it", RefusalOf({"ring", "--cloth", "wool", "--", "great"}));
  EXPECT_EQ("--pause is given 2 times, expected once", RefusalOf({"ring", "--pause", "1", "--pause", "2", "great"}));
  EXPECT_EQ("--loud: \"very\": expected no value", RefusalOf({"ring", "--loud=very", "great"}));
}

TEST(Program, NamesTheHelpThatTellsMore) {
  EXPECT_EQ("bell: BELL is missing\nRun \"bell ring --help\" for more information.\n",
            CallBell(Bell(), {"ring"}).error);
}

TEST(Program, HelpsWithDefaultsRangesGroupsAndExamples) {
  const BellOutcome help = CallBell(Bell(), {"ring", "--help"});
  EXPECT_EQ(0, help.exitCode);
  EXPECT_EQ("", help.error);
  EXPECT_THAT(help.out,
              AllOf(StartsWith("ring the bells\nUsage: bell ring [OPTIONS] BELL...\n"),
                    HasSubstr("\nSound:\n  --tone TONE"), HasSubstr(" of the bells (default low)\n"),
                    HasSubstr(" between two strokes (0 to 1000)\n"), HasSubstr(" of each bell (1 to 12, default 3)\n"),
                    HasSubstr(" of everything random\n"), HasSubstr("\n  --sound FILE ... "),
                    HasSubstr("\nExamples:\n  bell ring --pause 20 great\n"), Not(HasSubstr("--version"))));
  EXPECT_THAT(CallBell(Bell(), {"-h"}).out,
              AllOf(HasSubstr("\nExit code: 0 it rang, 7 it did not, 2 wrong usage.\nUsage: bell [OPTIONS] COMMAND\n"),
                    HasSubstr("\nCommands:\n  ring "), HasSubstr("  --version ")));
}

TEST(Program, TellsItsVersion) {
  const BellOutcome version = CallBell(Bell(), {"--version"});
  EXPECT_EQ(0, version.exitCode);
  EXPECT_EQ("bell " + Version() + "\n", version.out);
  EXPECT_THAT(Version(), testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+( \\([0-9a-f]+(-dirty)?\\))?"));
}

TEST(Program, AnswersTheExitCodeOfItsCommand) {
  Bell bell;
  bell.ring = [] { return 5; };
  EXPECT_EQ(5, CallBell(bell, {"ring", "great"}).exitCode);
}

TEST(Program, TurnsExceptionsIntoMessagesAndExitCodes) {
  Bell bell;
  bell.program.SetUsageErrors(
      [](const std::exception& error) { return dynamic_cast<const std::domain_error*>(&error) != nullptr; });
  const auto call = [&](auto problem) {
    bell.ring = [=]() -> int { throw problem; };
    const BellOutcome outcome = CallBell(bell, {"ring", "great"});
    return std::to_string(outcome.exitCode) + " " + outcome.error;
  };
  EXPECT_EQ("2 bell: no rope\n", call(UsageError("no rope")));
  EXPECT_EQ("2 bell: no tower\n", call(std::domain_error("no tower")));
  EXPECT_EQ("7 bell: it is cracked\n", call(CommandError("it is cracked")));
  EXPECT_EQ("7 bell: no memory\n", call(std::runtime_error("no memory")));
}

// What is offered for the last word, with blanks between.
std::string OffersFor(const std::vector<std::string>& words) {
  const Bell bell;
  std::istringstream lines(CompletionLines(bell.program, words));
  std::string offers;
  for (std::string line; std::getline(lines, line);) {
    offers += (offers.empty() ? "" : " ") + (line[0] == '\t' ? line.substr(1) : line.substr(0, line.find('\t')));
  }
  return offers;
}

TEST(Completion, OffersCommandsOptionsAndWhatOneOfThemCanBe) {
  EXPECT_EQ("ring give", OffersFor({""}));
  EXPECT_EQ("give", OffersFor({"g"}));
  EXPECT_EQ("-h --help --version", OffersFor({"-"}));
  EXPECT_EQ("--level --loud", OffersFor({"ring", "--l"}));
  EXPECT_EQ("none", OffersFor({"ring", "--level", ""}));
  EXPECT_EQ("none", OffersFor({"ring", "--level", "=", "n"})) << "as bash splits it";
  EXPECT_EQ("--level=none", OffersFor({"ring", "--level=n"})) << "as zsh and fish leave it";
  EXPECT_EQ("files", OffersFor({"ring", "--sound", "a"}));
  EXPECT_EQ("", OffersFor({"ring", "--pause", ""}));
  EXPECT_EQ("", OffersFor({}));
}

TEST(Completion, OffersTheNextOfAListWithThoseBeforeIt) {
  EXPECT_EQ("bright dull", OffersFor({"ring", "--tone", ""}));
  EXPECT_EQ("dull,bright", OffersFor({"ring", "--tone", "dull,b"}));
  EXPECT_EQ("dull,bright,bright dull,bright,dull", OffersFor({"ring", "--tone", "dull,bright,"}));
  EXPECT_EQ("--tone=dull,bright --tone=dull,dull", OffersFor({"ring", "--tone=dull,"}));
  EXPECT_EQ("dull,bright dull,dull", OffersFor({"ring", "--tone", "=", "dull,"})) << "as bash splits it";
  EXPECT_EQ("", OffersFor({"ring", "--level", "none,"})) << "no list";
}

TEST(Completion, OffersArgumentsByWhatStandsBefore) {
  EXPECT_EQ("great small", OffersFor({"ring", "--pause", "5", "-l", ""}));
  EXPECT_EQ("after-great", OffersFor({"ring", "great", ""}));
  EXPECT_EQ("", OffersFor({"ring", "--", "-"}));
  EXPECT_EQ("", OffersFor({"give", "penny", ""}));
}

TEST(Completion, OffersAnOptionOnceUnlessItMayBeRepeated) {
  EXPECT_EQ("", OffersFor({"ring", "--muffled", "--mu"}));
  EXPECT_EQ("--sound", OffersFor({"ring", "--sound", "a.wav", "--so"}));
}

TEST(Completion, IsPrintedWithTheMeaningOfEachWord) {
  const BellOutcome outcome = CallBell(Bell(), {kCompleteWords, ""});
  EXPECT_EQ(0, outcome.exitCode);
  EXPECT_EQ("ring\tring the bells\ngive\tthrow a coin\n", outcome.out);
}

TEST(DidYouMean, NamesTheNearestWord) {
  const std::vector<std::string> known = {"run", "get", "set", "list", "send", "events", "--optical-latency"};
  EXPECT_EQ(", did you mean \"set\"?", DidYouMean("ste", known)) << "two letters change places";
  EXPECT_EQ(", did you mean \"events\"?", DidYouMean("evnt", known)) << "two letters are missing";
  EXPECT_EQ(", did you mean \"list\"?", DidYouMean("liist", known)) << "a letter is surplus";
  EXPECT_EQ(", did you mean \"run\"?", DidYouMean("ron", known)) << "another letter";
  EXPECT_EQ(", did you mean \"--optical-latency\"?", DidYouMean("--optikal-latenz", known));
}

TEST(DidYouMean, IsSilentWhenNothingIsNear) {
  const std::vector<std::string> known = {"run", "-v", "events", "--help"};
  for (const char* const word : {"", "-", "--", "-x", "x", "ruin-it", "event-list", "help-me", "rob"}) {
    EXPECT_EQ("", DidYouMean(word, known)) << word;
  }
  EXPECT_EQ("", DidYouMean("run", {}));
}

}  // namespace
}  // namespace orvex::tools
