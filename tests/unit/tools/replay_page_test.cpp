// The report as a page: what it holds, and what a browser shows of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "orvex/sim/room.h"
#include "orvex/sim/voice_channel.h"
#include "replay/recording.h"
#include "replay/report_page.h"
#include "testsound/generator.h"
#include "unit/tools/browser.h"
#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr int kSeconds = 4;

// What the remote records of the test sound, which begins 0.7 s after the recording.
std::vector<std::uint8_t> RecordInRoom(const sim::RoomConfig& config) {
  sim::Room room(config);
  const std::vector<std::int16_t> sound = GenerateSound({});
  room.Play(std::chrono::milliseconds(700), sound.data(), sound.size() / 2);
  sim::VoiceChannel voice(room);
  voice.Start(sim::Time(0));
  std::vector<std::uint8_t> bytes;
  while (static_cast<double>(bytes.size() / sizeof(std::int16_t)) < kSeconds * kVoiceRateHz) {
    sim::VoiceChannel::Block block;
    if (voice.TakeBlock(block)) {
      for (const std::int16_t sample : block) {
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(sample) & 0xFFU));
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(sample) >> 8U));
      }
    }
  }
  return bytes;
}

fine::Reading ReadFinely(const std::vector<std::uint8_t>& bytes) {
  const std::vector<std::int16_t> samples = SamplesOf({bytes, ""});
  const fine::FineReader reader;
  std::size_t steps = 0;
  fine::Reading reading =
      reader.Read({samples.data(), samples.size()}, [&](std::size_t done) { EXPECT_EQ(++steps, done); });
  EXPECT_EQ(reader.Steps(), steps);
  return reading;
}

// What holds for every page.
void ExpectReadablePage(const Json::Value& seen) {
  for (const char* const flaw : {"errors", "overlaps", "cut", "faint", "small", "unreached"}) {
    EXPECT_EQ(Json::Value(Json::arrayValue), seen[flaw]) << flaw;
  }
  EXPECT_EQ(0, seen["resources"].asInt());
  EXPECT_EQ(0, seen["shownReadouts"].asInt());
  EXPECT_LE(seen["overflow"].asInt(), 0);
}

// What holds for the page of every recording.
void ExpectFlawlessPage(const Json::Value& seen) {
  ExpectReadablePage(seen);
  for (const auto& [name, labels] : std::map<std::string, std::vector<std::string>>{
           {"tones", {"17 kHz", "19 kHz"}}, {"ratios", {"17 kHz", "19 kHz"}}, {"neighbours", {"17.5 kHz", "18 kHz"}}}) {
    const Json::Value& curves = seen["charts"]["whole-" + name]["curves"];
    ASSERT_EQ(2u, curves.size()) << name;
    EXPECT_EQ(labels[0], curves[0]["label"].asString());
    EXPECT_EQ(labels[1], curves[1]["label"].asString());
    EXPECT_NE(curves[0]["colour"], curves[1]["colour"]) << name;
  }
}

std::vector<double> Numbers(const Json::Value& array) {
  std::vector<double> numbers;
  std::transform(array.begin(), array.end(), std::back_inserter(numbers),
                 [](const auto& value) { return value.asDouble(); });
  return numbers;
}

auto Near(double buffer) {
  return testing::DoubleNear(buffer, 0.15);
}

class ReplayPageInABrowser : public testing::Test {
protected:
  void SetUp() override {
    if (!HasBrowser()) {
      GTEST_SKIP() << "chromium is not installed, so the page is not shown; the Debian package chromium has it";
    }
  }
  const TemporaryFolder m_Folder;
};

// The service stops its recording with the second tone.
TEST_F(ReplayPageInABrowser, ShowsTheDumpOfAGoodRunWithoutOverlaps) {
  sim::RoomConfig room;
  room.optical.latencyMs = room.tv.latencyMs + 100.0;
  auto bytes = RecordInRoom(room);
  const auto result = ReplayRecord(bytes).FindFirst(EventKind::kResult);
  ASSERT_TRUE(result);
  constexpr std::size_t kBufferBytes = 768 * sizeof(std::int16_t);
  bytes.resize((static_cast<std::size_t>(result->buffer) + 1) * kBufferBytes);
  const Json::Value seen = LookAt(PageOf(bytes), {1280}, m_Folder);
  ExpectFlawlessPage(seen);
  EXPECT_EQ("+99.0 ms", seen["facts"]["difference"].asString());
}

TEST_F(ReplayPageInABrowser, ShowsThePairOfAGoodRun) {
  sim::RoomConfig room;
  room.optical.latencyMs = room.tv.latencyMs + 100.0;
  const auto bytes = RecordInRoom(room);
  const RunRecord run = ReplayRecord(bytes);
  const auto result = run.FindFirst(EventKind::kResult);
  ASSERT_TRUE(result);
  const Json::Value seen = LookAt(PageOf(bytes), {1280}, m_Folder);
  ExpectFlawlessPage(seen);
  EXPECT_EQ("The optical output is 99.0 ms late", seen["headline"].asString());
  EXPECT_EQ("+99.0 ms", seen["facts"]["difference"].asString());
  for (const char* const chart : {"whole-tones", "whole-ratios", "whole-neighbours"}) {
    for (const Json::Value& curve : seen["charts"][chart]["curves"]) {
      EXPECT_EQ(run.GetBlocks().size(), curve["points"].asUInt()) << chart;
      EXPECT_TRUE(curve["isInside"].asBool()) << chart;
    }
  }
  for (const char* const chart :
       {"whole-events", "whole-tones", "whole-ratios", "close-events", "close-tones", "close-spectrogram"}) {
    const Json::Value& pairs = seen["charts"][chart]["pairs"];
    ASSERT_EQ(1u, pairs.size()) << chart;
    EXPECT_THAT(pairs[0]["first"].asDouble(), testing::DoubleNear(result->first, 0.6)) << chart;
    EXPECT_THAT(pairs[0]["second"].asDouble(), testing::DoubleNear(result->buffer, 0.6)) << chart;
  }
  const auto points = seen["charts"]["close-tones"]["curves"][0]["points"].asUInt();
  EXPECT_EQ(20u, points);
  EXPECT_EQ(2, seen["charts"]["whole-tones"]["thresholds"].asInt());
  EXPECT_THAT(Numbers(seen["charts"]["close-events"]["marks"]["start f17"]), Contains(Near(result->first)));
  ASSERT_EQ(points, seen["readouts"].size());
  const auto& first = run.GetBlocks()[static_cast<std::size_t>(result->first - 5)];
  const std::string readout = seen["readouts"][6].asString();
  EXPECT_THAT(readout, StartsWith("buffer " + std::to_string(result->first) + " "));
  double level = 0.0;
  ASSERT_EQ(1, std::sscanf(readout.c_str() + readout.find("17 kHz "), "17 kHz %lf dBFS", &level));
  EXPECT_NEAR(20.0 * std::log10(first.levels.at17000 / 32768 / 384), level, 0.1);
}

TEST_F(ReplayPageInABrowser, ShowsWhyASilentOutputGaveNoDifference) {
  sim::RoomConfig room;
  room.opticalMuted = true;
  const auto bytes = RecordInRoom(room);
  const RunRecord run = ReplayRecord(bytes);
  const Json::Value seen = LookAt(PageOf(bytes), {1000}, m_Folder);
  ExpectFlawlessPage(seen);
  EXPECT_EQ("No difference: 19 kHz (optical output) was not found", seen["headline"].asString());
  EXPECT_THAT(seen["reasons"][1].asString(), HasSubstr("19 kHz (optical output) never reached its threshold"));
  const Json::Value& tones = seen["charts"]["whole-tones"];
  EXPECT_EQ(0u, tones["pairs"].size());
  EXPECT_EQ(run.GetBlocks().size(), tones["curves"][0]["points"].asUInt());
  const auto peak = std::max_element(
      run.GetBlocks().begin(), run.GetBlocks().end(),
      [](const RecordedBlock& a, const RecordedBlock& b) { return a.levels.at17000 < b.levels.at17000; });
  EXPECT_NEAR(peak->buffer, tones["curves"][0]["peak"].asDouble(), 0.6);
  EXPECT_EQ(0u, seen["charts"]["whole-events"]["marks"]["clean f19"].size());
}

TEST_F(ReplayPageInABrowser, ShowsNoisyTonesSequenceErrorsAndAbnormalInput) {
  const std::string far(19, '.');
  const auto bytes = MakeRecording(Ambient() + "7" + far + "9.x.." + std::string(10, 'y') + "....");
  const Json::Value seen = LookAt(PageOf(bytes), {1600}, m_Folder);
  ExpectFlawlessPage(seen);
  EXPECT_EQ("Given up: abnormal input", seen["headline"].asString());
  EXPECT_EQ("11", seen["facts"]["noisy tones"].asString());
  EXPECT_EQ("1", seen["facts"]["sequence errors"].asString());
  const Json::Value& marks = seen["charts"]["whole-events"]["marks"];
  EXPECT_THAT(Numbers(marks["sequence"]), ElementsAre(Near(56)));
  EXPECT_THAT(Numbers(marks["noisy f17"]), ElementsAre(Near(58)));
  EXPECT_EQ(10u, marks["noisy f19"].size());
  EXPECT_THAT(Numbers(marks["abnormal"]), ElementsAre(Near(70)));
  EXPECT_THAT(Numbers(marks["start f17"]), ElementsAre(Near(36)));
  EXPECT_THAT(Numbers(marks["start f19"]), ElementsAre(Near(56)));
}

TEST_F(ReplayPageInABrowser, ShowsANoisyRoom) {
  sim::RoomConfig room;
  room.noiseDbfs = -25.0;
  const auto bytes = RecordInRoom(room);
  const Json::Value seen = LookAt(PageOf(bytes), {1280}, m_Folder);
  ExpectFlawlessPage(seen);
  EXPECT_EQ("No difference: neither tone was found", seen["headline"].asString());
  EXPECT_THAT(seen["reasons"][0].asString(), HasSubstr("17 kHz (television's speaker) never reached its threshold"));
  EXPECT_EQ(2, seen["charts"]["whole-tones"]["thresholds"].asInt());
  EXPECT_EQ(0u, seen["charts"]["whole-events"]["marks"]["clean f17"].size());
}

TEST_F(ReplayPageInABrowser, StaysSmallForALongRecordingAndKeepsItsPeak) {
  const auto bytes = MakeRecording(Ambient() + std::string(2000, '.') + "7" + std::string(1964, '.'));  // 66 s
  const std::string page = PageOf(bytes);
  EXPECT_LT(page.size(), 250000u);
  const Json::Value seen = LookAt(page, {1280}, m_Folder);
  ExpectFlawlessPage(seen);
  const Json::Value& curve = seen["charts"]["whole-tones"]["curves"][0];
  EXPECT_LE(curve["points"].asUInt(), 2000u);
  EXPECT_GE(curve["points"].asUInt(), 1000u);
  EXPECT_NEAR(2036, curve["peak"].asDouble(), 4.0);
  EXPECT_NEAR(2036, seen["charts"]["close-tones"]["curves"][0]["peak"].asDouble(), 0.15);
}

TEST_F(ReplayPageInABrowser, ShowsTheFineReadingToScale) {
  sim::RoomConfig room;
  room.optical.latencyMs = room.tv.latencyMs + 103.0;
  const auto bytes = RecordInRoom(room);
  const fine::Reading reading = ReadFinely(bytes);
  ASSERT_TRUE(reading.differenceS) << reading.reason;
  const Json::Value seen = LookAt(PageOf(bytes, "dump", reading), {1280}, m_Folder);
  ExpectFlawlessPage(seen);
  EXPECT_NEAR(1e3 * *reading.differenceS, std::stod(seen["facts"]["fine difference"].asString()), 0.0051);
  EXPECT_EQ("4", seen["facts"]["pairs that agree"].asString());

  const Json::Value& grid = seen["charts"]["fine-grid"]["intervals"];
  ASSERT_EQ(2u, grid.size());
  EXPECT_NEAR(ReplayRecord(bytes).FindRunResult()->differenceS / detector::kBufferS, grid[0]["dot"].asDouble(), 0.01);
  EXPECT_NEAR(*reading.differenceS / detector::kBufferS, grid[1]["dot"].asDouble(), 0.01);
  const Json::Value& strip = seen["charts"]["fine-interval"];
  const double lowMs = 1e3 * reading.intervalS.low;
  const double highMs = 1e3 * reading.intervalS.high;
  const auto near = [&](double ms) { return testing::DoubleNear(ms, 0.02 * (highMs - lowMs)); };
  EXPECT_THAT(Numbers(strip["uprights"]), ElementsAre(near(lowMs), near(1e3 * *reading.differenceS), near(highMs)));
  EXPECT_THAT(strip["intervals"][0]["from"].asDouble(), near(lowMs));
  EXPECT_THAT(strip["intervals"][0]["to"].asDouble(), near(highMs));
  for (std::size_t n = 0; n < 2; ++n) {
    const Json::Value& chart = seen["charts"][n == 0 ? "fine-17" : "fine-19"];
    ASSERT_EQ(2u, chart["curves"].size());
    EXPECT_EQ("measured", chart["curves"][0]["label"].asString());
    EXPECT_EQ(reading.arrivals[n]->envelope.size(), chart["curves"][0]["points"].asUInt());
    EXPECT_EQ("fitted", chart["curves"][1]["label"].asString());
    EXPECT_TRUE(chart["curves"][0]["isInside"].asBool());
    EXPECT_TRUE(chart["curves"][1]["isInside"].asBool());
    EXPECT_THAT(Numbers(chart["uprights"]), ElementsAre(testing::DoubleNear(0.0, 0.02)));
  }
}

// With every kind of part.
TEST_F(ReplayPageInABrowser, ShowsSeveralRecordingsOnADarkPhoneAndALightDesk) {
  const auto pair = RecordInRoom({});
  sim::RoomConfig muted;
  muted.opticalMuted = true;
  const auto missing = RecordInRoom(muted);
  const auto cut = MakeRecording("....");
  ReportPage page(4);
  page.Add(ReplayRecord(pair), SubjectOf(pair, "a/name/that/is/too/long/for/a/narrow/window.raw"), ReadFinely(pair));
  page.AddUnreadable("gone", "gone: cannot be read: No such file or directory");
  page.Add(ReplayRecord(missing), SubjectOf(missing));
  page.Add(ReplayRecord(cut), SubjectOf(cut));
  const std::string html = page.Finish();
  EXPECT_LT(html.size(), 600000u);
  const Json::Value phone = LookAt(html, {400, true}, m_Folder);
  const Json::Value desk = LookAt(html, {1400}, m_Folder);
  EXPECT_NE(phone["paper"], desk["paper"]);
  for (const Json::Value& seen : {phone, desk}) {
    ExpectReadablePage(seen);
    EXPECT_EQ("Replay of 4 recordings", seen["title"].asString());
    EXPECT_TRUE(seen["charts"].isMember("recording-1-fine-grid"));
    EXPECT_TRUE(seen["charts"].isMember("recording-4-close-spectrogram"));
  }
}

// A recording in which the receiver and the fine reading find nothing of the test sound.
std::string PageWith(const fine::Reading& reading) {
  return PageOf(MakeRecording(Ambient() + "..."), "dump", reading);
}

TEST(ReplayPageFine, TellsWhyThereIsNoDifference) {
  fine::Reading reading;
  reading.reason = "a tone is < 3 & > 2";
  const std::string page = PageWith(reading);
  EXPECT_THAT(page, HasSubstr("<p>The fine reading</p><p class='value'>none</p>"));
  EXPECT_THAT(page, HasSubstr("<p class='warning'>There is no fine difference: a tone is &lt; 3 &amp; &gt; 2.</p>"));
  EXPECT_THAT(page, HasSubstr("<dt>fine difference</dt><dd>none</dd>"));
  EXPECT_THAT(page, HasSubstr("<dt>95 % interval</dt><dd>none</dd>"));
  EXPECT_THAT(page, HasSubstr("<dt>error of the remote's rate</dt><dd>not known</dd>"));
  EXPECT_THAT(page, Not(HasSubstr("id='fine-")));
}

TEST(ReplayPageFine, ShowsTheOnsetsOfARefusedReading) {
  fine::Reading reading;
  reading.reason = "the onset of 17 kHz is not clear";
  for (auto& arrival : reading.arrivals) {
    arrival = fine::Arrival{46545.0, 1e-3, 20.0, 50.0, {{-1e-3, 0.0}, {0.0, 5.0}, {1e-3, 100.0}}};
  }
  reading.arrivals[1]->envelope.pop_back();
  const std::string page = PageWith(reading);
  EXPECT_THAT(page, HasSubstr("id='fine-17'"));
  EXPECT_THAT(page, HasSubstr("id='fine-19'"));
  EXPECT_THAT(page, HasSubstr("<b>17 kHz, television's speaker: begins at 1.00000 s</b>"));
  EXPECT_THAT(page, HasSubstr(">Onset of 17 kHz, television&#39;s speaker</title>"));
  EXPECT_THAT(page, HasSubstr("The measured envelope reaches 200 % of the direct sound.</desc>"));
  EXPECT_THAT(page, HasSubstr("The measured envelope reaches 10 % of the direct sound.</desc>"));
  EXPECT_THAT(page, HasSubstr("onset ± 1.000 ms"));
  EXPECT_THAT(page, Not(HasSubstr("id='fine-grid'")));
  EXPECT_THAT(page, Not(HasSubstr("id='fine-interval'")));
}

TEST(ReplayPageFine, IsShownWithoutADifferenceOfTheReceiver) {
  fine::Reading reading;
  reading.differenceS = -0.01;
  reading.intervalS = {-0.0101, -0.0099};
  reading.ratePpm = -0.2;
  const std::string page = PageWith(reading);
  EXPECT_THAT(page, HasSubstr("<p>The fine reading</p><p class='value'>-10.00 ms</p>"));
  EXPECT_THAT(page, HasSubstr("<p>The service found no difference.</p>"));
  EXPECT_THAT(page, HasSubstr("<dt>error of the remote's rate</dt><dd>+0 ppm</dd>"));
  EXPECT_THAT(page, HasSubstr("<dt>95 % interval</dt><dd>-10.10 to -9.90 ms</dd>"));
  EXPECT_THAT(page, HasSubstr(">service: none</text>"));
  EXPECT_THAT(page, HasSubstr("<title>fine reading: -10.00 ms, -10.10 to -9.90 ms</title>"));
}

TEST(ReplayPageFine, IsNotMentionedWhenThereIsNone) {
  const std::string page = PageOf(MakeRecording(Ambient() + "7..9"));
  EXPECT_THAT(page, Not(HasSubstr("class='fine'")));
  EXPECT_THAT(page, Not(HasSubstr("fine reading")));
}

TEST(ReplayPage, EscapesTheNameOfTheFile) {
  const std::string page = PageOf(MakeRecording(Ambient()), "<b>&\"'.raw");
  EXPECT_THAT(page, HasSubstr("<code>&lt;b&gt;&amp;&quot;&#39;.raw</code>"));
  EXPECT_THAT(page, Not(HasSubstr("<b>&")));
}

TEST(ReplayPage, CanBeMadeOfAnyRecording) {
  for (const auto& bytes : {std::vector<std::uint8_t>{}, std::vector<std::uint8_t>(7), MakeRecording("0000000"),
                            MakeRecording(std::string(34, '.')), MakeRecording(std::string(200, '0')),
                            MakeRecording(std::string(35, '0') + "7..9")}) {
    const std::string page = PageOf(bytes);
    EXPECT_THAT(page, HasSubstr("</html>"));
    EXPECT_THAT(page, Not(HasSubstr("nan")));
    EXPECT_THAT(page, Not(HasSubstr("inf")));
  }
}

TEST(ReplayPage, ShowsTheWarningAboutARecording) {
  const auto bytes = MakeRecording(Ambient());
  EXPECT_THAT(MakeReportPage(ReplayRecord(bytes), {"a.wav", "a.wav: 48000 Hz", SamplesOf({bytes, ""})}),
              HasSubstr("<p class='warning'>a.wav: 48000 Hz</p>"));
}

TEST(ReplayPage, ShowsFurtherResultsAsSuch) {
  const std::string page = PageOf(MakeRecording(Ambient() + "7..6.9"));
  EXPECT_THAT(page, HasSubstr("<h2>The optical output is 49.5 ms late</h2>"));
  EXPECT_THAT(page, HasSubstr("<dt>difference</dt><dd>+49.5 ms</dd>"));
  EXPECT_THAT(page, HasSubstr("pair of buffers 36 and 39, difference +49.5 ms</td>"));
  EXPECT_THAT(page, HasSubstr("pair of buffers 36 and 41, difference +82.5 ms; after the end of a run, where it "
                              "changes nothing</td>"));
  EXPECT_THAT(page, HasSubstr("<g class='pair' data-first='36' data-second='39'>"));
  EXPECT_THAT(page, HasSubstr("<g class='pair further' data-first='36' data-second='41'>"));
}

TEST(ReplayPage, ShowsNoDifferenceOfARunThatAbnormalInputHasEnded) {
  const std::string page = PageOf(MakeRecording(Ambient() + std::string(11, 'y') + "7.9"));
  EXPECT_THAT(page, HasSubstr("<dt>difference</dt><dd>none</dd>"));
  EXPECT_THAT(page, Not(HasSubstr("<g class='pair' ")));
  EXPECT_THAT(page, HasSubstr("<g class='pair further' data-first='47' data-second='49'>"));
}

TEST(ReplayPage, ListsTheFirstEventsOfVeryMany) {
  const std::string page = PageOf(MakeRecording(Ambient() + std::string(300, 'x')));
  EXPECT_THAT(page, HasSubstr("17 kHz is noisy, number 199</td>"));
  EXPECT_THAT(page, Not(HasSubstr("17 kHz is noisy, number 200</td>")));
  EXPECT_THAT(page, HasSubstr("<p>102 more;"));
}

}  // namespace
}  // namespace orvex::tools
