// The detector once more, in other arithmetic and another shape: what the journal has to show of each delivered block.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "orvex/platform/remote_voice.h"
#include "unit/service/receiver_sound_support.h"

namespace orvex::test {

class DetectorModel {
public:
  // As the receiver's getters.
  int buffer = 0;
  int analysed = 0;
  int progress = 0;
  int direction = 0;
  int noisy = 0;
  double seconds = 0.0;
  // Set from outside.
  bool hearable = false;
  bool finished = false;
  // What the two dump files hold.
  std::string audio;
  std::string results;

  std::vector<std::string> Hear(const VoiceData* record) {
    m_Journal = {"I0 m_ReceiveBTAudioDataCB"};
    if (buffer > 0 && buffer % 250 == 0) {
      Say("> bt_hid_send_rc_command(null, 03 10, 2) = 0");
      Say("I0 [Recorder] Extend bt audio recorder");
    }
    Say(Text("I0 buffer: %d", ++buffer));
    if (record == nullptr) {
      Say("E2 voice_data is null.");
      return m_Journal;
    }
    if (buffer >= 5) {
      Analyse(LevelsOf(SamplesOf(*record)));
      ++analysed;
    }
    audio.append(record->bytes, record->bytes + record->byteCount);
    return m_Journal;
  }

private:
  enum Pitch { kLow, kHigh };  // 17 kHz, 19 kHz

  void Say(const std::string& line) { m_Journal.push_back(line); }

  static Samples SamplesOf(const VoiceData& record) {
    Samples samples;
    for (int at = 0; at + 1 < record.byteCount && samples.size() < kVoiceBlockSamples; at += 2) {
      const int bits = record.bytes[at] + 256 * record.bytes[at + 1];
      samples.push_back(static_cast<std::int16_t>(bits >= 32768 ? bits - 65536 : bits));
    }
    return samples;
  }

  void Analyse(const Levels& levels) {
    Say(Text("I0 %d / %Lf %Lf %Lf %Lf / %Lf %Lf / %Lf %Lf %Lf %Lf", analysed, levels.at17000, levels.at19000,
             levels.at17500, levels.at18000, levels.Ratio17(), levels.Ratio19(), m_Ambience.at17000, m_Ambience.at19000,
             m_Ambience.at17500, m_Ambience.at18000));
    if (hearable && (buffer == 15 || buffer == 25)) {
      progress = buffer == 15 ? 1 : 2;
      Say(Text("I0 (ruvo) Hearable Set - m_SoundType %d", progress));
    }
    if (!hearable && analysed >= 31) {
      Seek(kLow, levels);
      Seek(kHigh, levels);
    }
    if (analysed < 30) {
      m_Heard.push_back(levels);
    }
    m_Ambience = Ambience();
    if (analysed == 30) {
      progress = 1;
      Say("E0 completed ambient noise");
      Say("> end of ambient noise");
    }
  }

  // The sum of what was heard so far; from block 30 on the mean.
  Levels Ambience() const {
    Levels sum;
    for (const Levels& heard : m_Heard) {
      sum = {sum.at17000 + heard.at17000, sum.at17500 + heard.at17500, sum.at18000 + heard.at18000,
             sum.at19000 + heard.at19000};
    }
    const long double share = analysed >= 30 ? 30.0L : 1.0L;
    return {sum.at17000 / share, sum.at17500 / share, sum.at18000 / share, sum.at19000 / share};
  }

  bool StandsOut(Pitch pitch, const Levels& levels) const {
    if (pitch == kLow) {
      return m_Ambience.at17000 > 0 && levels.at17000 >= 50 * m_Ambience.at17000 && levels.at17000 > levels.at19000;
    }
    return m_Ambience.at19000 > 0 && levels.at19000 > 50 * m_Ambience.at19000 && levels.at19000 > levels.at17000;
  }

  void Seek(Pitch pitch, const Levels& levels) {
    if (!StandsOut(pitch, levels)) {
      return;
    }
    const char* mark = pitch == kLow ? "" : "(ruvo_19k)";
    Say(Text("I0 %s[%d] %0.4f s %.1Lf, %.1Lf\n", mark, buffer, BufferSeconds(buffer), levels.at17000, levels.at19000));
    const int own = pitch == kLow ? 1 : -1;
    if ((pitch == kLow ? levels.Ratio17() : levels.Ratio19()) < 5) {
      Reject(pitch, levels);
    } else if (direction == 0) {
      BeginPair(pitch, levels);
    } else if (direction == -own && !finished) {
      EndPair(pitch, levels);
    }
  }

  void Reject(Pitch pitch, const Levels& levels) {
    ++noisy;
    Say("I0 " + std::string(51, '#'));
    Say(Text("I0 %s %Lf / %d", pitch == kLow ? "noise is high /" : "noise value is too high/", levels.Ratio17(),
             noisy));
    if (noisy >= 11 && pitch == kHigh) {
      Say("E2 ERROR occured. Exit service");
      Say("E2 by abnormal input");
      Say("> abnormal status");
    }
    progress = noisy >= 11 ? 0 : progress;
  }

  void BeginPair(Pitch pitch, const Levels& levels) {
    Say(pitch == kLow ? "I0   ====> @ g_first index \n" : "I0 @ g_first index (reverse)\n");
    direction = pitch == kLow ? 1 : -1;
    progress = 1;
    m_FirstBuffer = buffer;
    // What there is of the other tone already is the least that its own block has to bring.
    long double& floor = m_Floor[pitch == kLow ? kHigh : kLow];
    floor = std::max(floor, pitch == kLow ? levels.at19000 : levels.at17000);
  }

  void EndPair(Pitch pitch, const Levels& levels) {
    const long double level = pitch == kLow ? levels.at17000 : levels.at19000;
    if (buffer - m_FirstBuffer >= 20 || level < m_Floor[pitch]) {
      Say("I0 syquence error -> recheck \n");
      BeginPair(pitch, levels);
      return;
    }
    m_Floor[pitch] = level;
    const int low = pitch == kLow ? buffer : m_FirstBuffer;
    const int high = pitch == kLow ? m_FirstBuffer : buffer;
    seconds = (high - low) * (768 / 46545.0);
    Say(Text("I0 %s@ [RESULT] [%d] - [%d] : %0.4f s\n", pitch == kLow ? "(ruvo)   ====> " : "", low, high, seconds));
    Say("E0 completed calculation of delay");
    results += Text("[RESULT] [%d] - [%d] : %0.4f\n", m_FirstBuffer, buffer, seconds);
    results += "result_set_value : [main: 0], [spdif: 100]\n";
    Say("> end of calculation");
  }

  std::vector<std::string> m_Journal;  // of the block under way
  std::vector<Levels> m_Heard;         // ambient blocks
  Levels m_Ambience;
  int m_FirstBuffer = 0;
  std::array<long double, 2> m_Floor{};  // by pitch
};

// The sign of 0 / 0 is the machine's.
inline std::string WithoutSignOfNan(std::string line) {
  for (std::size_t at = line.find("-nan"); at != std::string::npos; at = line.find("-nan")) {
    line.erase(at, 1);
  }
  return line;
}

// True when two lines are the same but for the last digits of the fractions in them, which the order of the arithmetic
// decides.
inline bool SameLine(const std::string& expected, const std::string& seen) {
  static const std::regex kFraction("-?[0-9]+\\.[0-9]+");
  const std::string one = WithoutSignOfNan(expected);
  const std::string other = WithoutSignOfNan(seen);
  if (std::regex_replace(one, kFraction, "x") != std::regex_replace(other, kFraction, "x")) {
    return false;
  }
  std::sregex_iterator got(other.begin(), other.end(), kFraction);
  for (std::sregex_iterator wanted(one.begin(), one.end(), kFraction); wanted != std::sregex_iterator(); ++wanted) {
    const std::string left = wanted->str();
    const std::string right = (got++)->str();
    const std::size_t places = left.size() - left.find('.') - 1;
    const double value = std::stod(left);
    const double tolerance = 1.01 * std::pow(0.1, places) + 1e-9 * std::fabs(value);
    if (places != right.size() - right.find('.') - 1 || !(std::fabs(std::stod(right) - value) <= tolerance)) {
      return false;
    }
  }
  return true;
}

}  // namespace orvex::test
