// orvex-tv record: what it writes is what a run would have heard.
#include <algorithm>
#include <cmath>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "options/errors.h"
#include "receiver/receiver_rig.h"
#include "replay/recording.h"
#include "testsound/generator.h"
#include "testsound/wave_file.h"
#include "unit/tools/tv_calls.h"

namespace orvex::tools {
namespace {

using testing::HasSubstr;

class TvRecord : public TvCommandLine {
protected:
  TvOutcome Record(std::vector<const char*> arguments) const {
    arguments.insert(arguments.begin(), "record");
    arguments.push_back(m_Wave.c_str());
    return Call(arguments);
  }
  // What the receiver makes of it; 0: nothing.
  double DifferenceMs() const {
    ReceiverRig rig({});
    Feed(ReadRecording(m_Wave).bytes, rig);
    return rig.GetDifferenceS() * 1e3;
  }

  const std::string m_Wave = m_Folder / "room.wav";
};

TEST_F(TvRecord, RefusesWhatNoRoomHasByTheOptionsName) {
  for (const auto& [option, value, expected] :
       {std::tuple("--lock", "-3", "--lock: \"-3\": expected a number of milliseconds from 0 to 10000\n"),
        std::tuple("--loss", "2", "--loss: \"2\": expected a number from 0 to 1\n"),
        std::tuple("--noise", "3",
                   "--noise: \"3\": expected a number of decibels of full scale from -200 to 0 or \"none\"\n")}) {
    const TvOutcome record = Record({option, value});
    EXPECT_EQ(2, record.exitCode);
    EXPECT_THAT(record.error, HasSubstr(expected));
  }
}

TEST_F(TvRecord, LimitsTheDelayAsARunDoes) {
  const TvOutcome record = Record({"--base-delay", "4294967295", "--optical-latency", "9000"});
  EXPECT_EQ(0, record.exitCode) << record.error;
  EXPECT_THAT(record.out, HasSubstr("optical output +18920.0 ms"));
}

TEST_F(TvRecord, IsWhatTheReceiverUnderstands) {
  const TvOutcome record = Record({"--optical-latency", "80", "--noise", "-60"});
  EXPECT_EQ(0, record.exitCode) << record.error;
  EXPECT_EQ(m_Wave + ": 3.532 s at 46545 Hz, optical output +100.0 ms\n", record.out);
  EXPECT_EQ(1, ReadWaveHeader(m_Wave).channels);
  EXPECT_EQ(46545u, ReadWaveHeader(m_Wave).sampleRate);
  EXPECT_NEAR(100.0, DifferenceMs(), kVoiceBlockMs);
}

TEST_F(TvRecord, HasTheRoomAndTheDelayOfTheTelevision) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "250"});
  m_Folder.Write("tv/room.json", R"({"microphone": {"rate_hz": 48000}})");
  EXPECT_THAT(Record({"--tv", m_Tv.c_str()}).out, HasSubstr(" s at 48000 Hz, optical output +190.0 ms"));
  EXPECT_THAT(Record({"--tv", m_Tv.c_str(), "--base-delay", "60"}).out, HasSubstr("optical output +0.0 ms"));
  EXPECT_EQ("250\n", Call({"get", "--tv", m_Tv.c_str(), "delay"}).out);
}

TEST_F(TvRecord, HearsTheNoiseThatTheRoomNames) {
  std::vector<std::int16_t> tone(48000);
  for (std::size_t n = 0; n < tone.size(); ++n) {
    tone[n] = static_cast<std::int16_t>(std::lround(20000.0 * std::sin(0.1 * static_cast<double>(n))));
  }
  WriteWaveFile(OutputFile(m_Folder / "fan.wav"), tone, {48000, 1});
  const std::string room = m_Folder.Write("room.json", R"({"microphone": {"noise_file": "fan.wav"}})");
  ASSERT_EQ(0, Record({"--room", room.c_str()}).exitCode);
  const std::vector<std::int16_t> heard = SamplesOf(ReadRecording(m_Wave));
  EXPECT_GT(*std::max_element(heard.begin(), heard.begin() + 4000), 15000);
}

TEST_F(TvRecord, PlaysAnotherSoundOnRequest) {
  const std::string silence = m_Folder / "silence.wav";
  WriteWaveFile(OutputFile(silence), std::vector<std::int16_t>(2 * 48000, 0));
  ASSERT_EQ(0, Record({"--sound", silence.c_str()}).exitCode);
  EXPECT_EQ(0.0, DifferenceMs());
  WriteWaveFile(OutputFile(silence), std::vector<std::int16_t>(48000, 0), {46545, 1});
  const TvOutcome refused = Record({"--sound", silence.c_str()});
  EXPECT_EQ(2, refused.exitCode);
  EXPECT_EQ(2, Record({"--sound", "-", "--room", "-"}).exitCode);
  EXPECT_THAT(refused.error, HasSubstr("46545 Hz, 1 channels, expected 48000 Hz, 2 channels"));
}

}  // namespace
}  // namespace orvex::tools
