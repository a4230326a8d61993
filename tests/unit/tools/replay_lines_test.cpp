// The lines of orvex-replay: which events, in which order, with which values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "linux/json_text.h"
#include "replay/recording.h"
#include "replay/report_lines.h"
#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

using testing::ElementsAre;

// "event@buffer" of each line but the summary.
std::vector<std::string> Events(const std::vector<Json::Value>& lines) {
  std::vector<std::string> events;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    events.push_back(lines[i]["event"].asString() + "@" + lines[i]["buffer"].asString());
  }
  return events;
}

std::vector<std::string> EventsOf(const std::string& blocks) {
  return Events(ReplayLines(MakeRecording(blocks)));
}

const Json::Value& Find(const std::vector<Json::Value>& lines, const std::string& event) {
  const auto found =
      std::find_if(lines.begin(), lines.end(), [&](const Json::Value& line) { return line["event"] == event; });
  static const Json::Value none;
  return found == lines.end() ? none : *found;
}

TEST(ReplayLines, OfATelevisionFirstPair) {
  const auto lines = ReplayLines(MakeRecording(Ambient() + "..7...9."));
  EXPECT_THAT(Events(lines), ElementsAre("ambient@35", "first17@38", "result@42"));
  EXPECT_EQ(Json::objectValue, lines[0].type());
  EXPECT_THAT(lines[0].getMemberNames(), ElementsAre("buffer", "event"));
  EXPECT_THAT(lines[1].getMemberNames(), ElementsAre("buffer", "event"));
  EXPECT_THAT(lines[2].getMemberNames(), ElementsAre("buffer", "difference_s", "event", "first", "second"));
  EXPECT_EQ(38, lines[2]["first"].asInt());
  EXPECT_EQ(42, lines[2]["second"].asInt());
  EXPECT_EQ(4 * kVoiceBlockSamples / kVoiceRateHz, lines[2]["difference_s"].asDouble());
}

TEST(ReplayLines, OfAnOpticalFirstPairNameTheTonesInTheOrderOfDetection) {
  const auto lines = ReplayLines(MakeRecording(Ambient() + "..9...7."));
  EXPECT_THAT(Events(lines), ElementsAre("ambient@35", "first19@38", "result@42"));
  EXPECT_EQ(38, lines[2]["first"].asInt());
  EXPECT_EQ(42, lines[2]["second"].asInt());
  EXPECT_EQ(-4 * kVoiceBlockSamples / kVoiceRateHz, lines[2]["difference_s"].asDouble());
}

TEST(ReplayLines, PutASequenceErrorBeforeTheFirstToneThatItLeadsTo) {
  const std::string nineteenBuffers(18, '.');
  EXPECT_THAT(EventsOf(Ambient() + "7" + nineteenBuffers + "9"), ElementsAre("ambient@35", "first17@36", "result@55"));
  EXPECT_THAT(EventsOf(Ambient() + "7" + nineteenBuffers + ".9"),
              ElementsAre("ambient@35", "first17@36", "sequence@56", "first19@56"));
  EXPECT_THAT(EventsOf(Ambient() + "9" + nineteenBuffers + ".7"),
              ElementsAre("ambient@35", "first19@36", "sequence@56", "first17@56"));
}

TEST(ReplayLines, CountTheNoisyTonesOfBothFrequencies) {
  const auto lines = ReplayLines(MakeRecording(Ambient() + "x.y.x"));
  EXPECT_THAT(Events(lines), ElementsAre("ambient@35", "noisy17@36", "noisy19@38", "noisy17@40"));
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(i, lines[static_cast<std::size_t>(i)]["count"].asInt());
    EXPECT_THAT(lines[static_cast<std::size_t>(i)].getMemberNames(), ElementsAre("buffer", "count", "event"));
  }
  EXPECT_EQ(3, lines.back()["noise_count"].asInt());
}

TEST(ReplayLines, TellAbnormalInputFromTheEleventhNoisyToneOnIfItIsThatOf19Khz) {
  EXPECT_EQ(Json::Value(), Find(ReplayLines(MakeRecording(Ambient() + std::string(10, 'y'))), "abnormal"));
  EXPECT_EQ(Json::Value(), Find(ReplayLines(MakeRecording(Ambient() + std::string(11, 'x'))), "abnormal"));
  const auto events = EventsOf(Ambient() + std::string(12, 'y'));
  const std::vector<std::string> last(events.end() - 4, events.end());
  EXPECT_THAT(last, ElementsAre("noisy19@46", "abnormal@46", "noisy19@47", "abnormal@47"));
}

TEST(ReplayLines, TellTheExtendCommandWithTheBufferAfterWhichItIsSent) {
  EXPECT_THAT(EventsOf(std::string(501, '.')), ElementsAre("ambient@35", "extend@250", "extend@500"));
  EXPECT_THAT(EventsOf(std::string(250, '.')), ElementsAre("ambient@35"));
}

TEST(ReplayLines, EndInASummary) {
  const auto lines = ReplayLines(MakeRecording(Ambient() + "..9...7."));
  const Json::Value& summary = lines.back();
  EXPECT_THAT(summary.getMemberNames(), ElementsAre("ambient", "blocks", "buffers", "difference_s", "direction",
                                                    "event", "noise_count", "run_difference_s"));
  EXPECT_EQ("summary", summary["event"].asString());
  EXPECT_EQ(43, summary["buffers"].asInt());
  EXPECT_EQ(39, summary["blocks"].asInt());
  EXPECT_EQ(-4 * kVoiceBlockSamples / kVoiceRateHz, summary["difference_s"].asDouble());
  EXPECT_EQ(-4 * kVoiceBlockSamples / kVoiceRateHz, summary["run_difference_s"].asDouble());
  EXPECT_EQ(-1, summary["direction"].asInt());
  EXPECT_EQ(0, summary["noise_count"].asInt());
}

TEST(ReplayLines, EndInTheLastDifferenceAndInTheFirstByWhichARunGoes) {
  const auto lines = ReplayLines(MakeRecording(Ambient() + "7..6.9"));
  EXPECT_THAT(Events(lines), ElementsAre("ambient@35", "first17@36", "result@39", "result@41"));
  EXPECT_EQ(5 * kVoiceBlockSamples / kVoiceRateHz, lines.back()["difference_s"].asDouble());
  EXPECT_EQ(3 * kVoiceBlockSamples / kVoiceRateHz, lines.back()["run_difference_s"].asDouble());
}

TEST(ReplayLines, HaveNoDifferenceOfARunThatAbnormalInputHasEnded) {
  const auto lines = ReplayLines(MakeRecording(Ambient() + std::string(11, 'y') + "7.9"));
  EXPECT_EQ(2 * kVoiceBlockSamples / kVoiceRateHz, lines.back()["difference_s"].asDouble());
  EXPECT_TRUE(lines.back()["run_difference_s"].isNull());
}

TEST(ReplayLines, HaveNoDifferenceWhenNoneWasFound) {
  for (const char* const blocks : {"..7..", "..9.."}) {
    const auto lines = ReplayLines(MakeRecording(Ambient() + blocks));
    EXPECT_TRUE(lines.back()["difference_s"].isNull());
    EXPECT_TRUE(lines.back()["run_difference_s"].isNull());
  }
}

TEST(ReplayLines, GiveTheAmbientMeansOfTheThirtyBlocksAfterTheFirstFour) {
  // What comes before and behind the ambient phase does not count.
  for (const char* const rest : {"7", "79", "799"}) {
    const auto lines = ReplayLines(MakeRecording("7979" + std::string(30, '.') + rest), true);
    const Json::Value& ambient = lines.back()["ambient"];
    for (const char* const frequency : {"17000", "17500", "18000", "19000"}) {
      double sum = 0.0;
      for (std::size_t block = 0; block < 30; ++block) {
        sum += lines[block]["m" + std::string(frequency)].asDouble();
      }
      EXPECT_GT(sum, 0.0);
      EXPECT_EQ(sum / 30.0, ambient[frequency].asDouble()) << frequency << ' ' << rest;
    }
  }
}

TEST(ReplayLines, HaveNoAmbientMeanOfARecordingThatIsTooShort) {
  const auto lines = ReplayLines(MakeRecording(std::string(34, '.')));
  ASSERT_EQ(1u, lines.size());
  EXPECT_TRUE(lines[0]["ambient"]["17000"].isNull());
  EXPECT_TRUE(lines[0]["difference_s"].isNull());
  EXPECT_EQ(0, lines[0]["direction"].asInt());
}

// Magnitude as the receiver defines it, of the samples of a recording's block.
double MagnitudeOf(const std::vector<std::uint8_t>& bytes, std::size_t block, double frequencyHz) {
  double re = 0.0;
  double im = 0.0;
  for (int n = 0; n < kVoiceBlockSamples; ++n) {
    const std::size_t at = block * kVoiceBlockBytes + 2 * static_cast<std::size_t>(n);
    const auto sample = static_cast<std::int16_t>(bytes[at] | bytes[at + 1] << 8U);
    const double angle = static_cast<double>(n) * 6.283185307179586 * frequencyHz / kVoiceRateHz;
    re += sample * std::cos(angle);
    im += sample * std::sin(angle);
  }
  return std::sqrt(re * re + im * im);
}

TEST(ReplayTrace, HasEachAnalysedBlockAtFullPrecisionBeforeTheEventsOfItsBuffer) {
  const auto bytes = MakeRecording(Ambient() + "b");
  const auto lines = ReplayLines(bytes, true);
  ASSERT_EQ(32u + 2u + 1u, lines.size());
  EXPECT_EQ(5, lines[0]["buffer"].asInt());
  const Json::Value& block = lines[32];
  EXPECT_EQ("block", block["event"].asString());
  EXPECT_EQ(36, block["buffer"].asInt());
  EXPECT_EQ("first17", lines[33]["event"].asString());
  EXPECT_THAT(block.getMemberNames(),
              ElementsAre("buffer", "event", "m17000", "m17500", "m18000", "m19000", "r17", "r19"));
  for (const int frequency : {17000, 17500, 18000, 19000}) {
    const double expected = MagnitudeOf(bytes, 35, frequency);
    EXPECT_NEAR(expected, block["m" + std::to_string(frequency)].asDouble(), 1e-10 * expected) << frequency;
  }
  const double neighbours = (block["m17500"].asDouble() + block["m18000"].asDouble()) * 0.5;
  EXPECT_EQ(block["m17000"].asDouble() / neighbours, block["r17"].asDouble());
  EXPECT_EQ(block["m19000"].asDouble() / neighbours, block["r19"].asDouble());
}

TEST(ReplayTrace, HasNoRatiosOfDigitalSilence) {
  const auto lines = ReplayLines(MakeRecording("00000"), true);
  EXPECT_EQ(0.0, lines[0]["m17000"].asDouble());
  EXPECT_TRUE(lines[0]["r17"].isNull());
  EXPECT_TRUE(lines[0]["r19"].isNull());
}

TEST(ReplayTrace, TakesAShortLastBlockAsOneThatEndsInSilence) {
  auto whole = MakeRecording(std::string(5, '.') + "7");
  auto silentEnd = whole;
  std::fill(silentEnd.begin() + 5 * kVoiceBlockBytes + 200, silentEnd.end(), std::uint8_t{0});
  whole.resize(5 * kVoiceBlockBytes + 201);  // 100 samples and an odd byte
  const auto lines = ReplayLines(whole, true);
  EXPECT_EQ(ReplayLines(silentEnd, true), lines);
  EXPECT_EQ(6, lines.back()["buffers"].asInt());
  EXPECT_EQ(2, lines.back()["blocks"].asInt());
}

TEST(ReplayLines, FindNoToneInTheHearableMode) {
  const auto lines = ReplayLines(MakeRecording(Ambient() + "..7...9."), false, true);
  EXPECT_THAT(Events(lines), ElementsAre("ambient@35"));
  EXPECT_TRUE(lines.back()["difference_s"].isNull());
}

// Blocks that the remote has lost count as buffers, and the receiver is quickly done with them.
void Lose(std::int32_t blocks, ReceiverRig& rig) {
  for (std::int32_t block = 0; block < blocks; ++block) {
    rig.Lose();
  }
}

TEST(ReplayLines, CountOnWhereTheReceiverBeginsAgain) {
  std::stringstream text;
  ReportLines lines(text, "", false);
  RunRecord run(false);
  ReceiverRig rig({&lines, &run});
  Feed(MakeRecording(Ambient()), rig);
  Lose(99997 - 35, rig);
  Feed(MakeRecording(".7.....9"), rig);
  lines.WriteSummary(rig, run);
  EXPECT_EQ(5, rig.GetReceiver().GetBufferCount());
  EXPECT_THAT(text.str(), testing::HasSubstr("{\"buffer\":99999,\"event\":\"first17\"}\n"));
  EXPECT_THAT(text.str(), testing::HasSubstr("{\"buffer\":100000,\"event\":\"extend\"}\n"));
  EXPECT_THAT(text.str(), testing::HasSubstr("\"event\":\"result\",\"first\":99999,\"second\":100005}\n"));
  EXPECT_THAT(text.str(), testing::HasSubstr("\"buffers\":100005,"));
  ASSERT_TRUE(run.FindRunResult());
  EXPECT_EQ(99999, run.FindRunResult()->first);
  EXPECT_EQ(100005, run.FindRunResult()->buffer);
  EXPECT_EQ(100005, run.GetLastBuffer());

  rig.GetReceiver().StopBTRecoder();
  rig.GetReceiver().StartBTRecoder();
  Feed(MakeRecording("..."), rig);
  EXPECT_EQ(3, rig.GetBufferCount());
}

TEST(ReplayLines, NameTheFileWhenItIsGiven) {
  std::ostringstream text;
  ReportLines lines(text, "a \"b\"", false);
  lines.OnAmbientKnown(35, {});
  EXPECT_EQ("{\"buffer\":35,\"event\":\"ambient\",\"file\":\"a \\\"b\\\"\"}\n", text.str());
}

fine::Reading FineReadingOfFourPairs() {
  fine::Reading reading;
  reading.differenceS = 0.0991;
  reading.intervalS = {0.0990, 0.0992};
  reading.pairs = 4;
  reading.ratePpm = -12.5;
  reading.arrivals[0].emplace();
  reading.arrivals[0]->levelDb = 61.5;
  reading.arrivals[1].emplace();
  reading.arrivals[1]->levelDb = 58.25;
  return reading;
}

Json::Value FineLine(const fine::Reading& reading, const std::string& file = "") {
  std::ostringstream text;
  ReportLines(text, file, false).WriteFine(reading);
  return port::ParseJson(text.str());
}

TEST(ReplayFineLine, HasTheDifferenceWithItsInterval) {
  const Json::Value line = FineLine(FineReadingOfFourPairs());
  EXPECT_THAT(line.getMemberNames(), ElementsAre("difference_s", "event", "interval_s", "level_17_db", "level_19_db",
                                                 "pairs", "rate_ppm", "reason"));
  EXPECT_EQ("fine", line["event"].asString());
  EXPECT_EQ(0.0991, line["difference_s"].asDouble());
  ASSERT_EQ(2u, line["interval_s"].size());
  EXPECT_EQ(0.0990, line["interval_s"][0].asDouble());
  EXPECT_EQ(0.0992, line["interval_s"][1].asDouble());
  EXPECT_EQ(4, line["pairs"].asInt());
  EXPECT_EQ(-12.5, line["rate_ppm"].asDouble());
  EXPECT_EQ(61.5, line["level_17_db"].asDouble());
  EXPECT_EQ(58.25, line["level_19_db"].asDouble());
  EXPECT_TRUE(line["reason"].isNull());
}

TEST(ReplayFineLine, HasAReasonInPlaceOfADifference) {
  fine::Reading reading;
  reading.pairs = 1;
  reading.reason = "only one pair of bursts";
  const Json::Value line = FineLine(reading);
  EXPECT_THAT(line.getMemberNames(), ElementsAre("difference_s", "event", "interval_s", "level_17_db", "level_19_db",
                                                 "pairs", "rate_ppm", "reason"));
  for (const char* const member : {"difference_s", "interval_s", "level_17_db", "level_19_db", "rate_ppm"}) {
    EXPECT_TRUE(line[member].isNull()) << member;
  }
  EXPECT_EQ(1, line["pairs"].asInt());
  EXPECT_EQ("only one pair of bursts", line["reason"].asString());
}

TEST(ReplayFineLine, NamesTheFileWhenItIsGiven) {
  EXPECT_EQ("b.raw", FineLine({}, "b.raw")["file"].asString());
  EXPECT_FALSE(FineLine({}).isMember("file"));
}

}  // namespace
}  // namespace orvex::tools
