// The axes' table, and how their values are read and drawn.
#include "sweep/axes.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "options/suggestion.h"
#include "orvex/sim/room_config.h"
#include "sweep/disturbance.h"
#include "testsound/sound_design.h"

namespace orvex::tools {
namespace {

constexpr double kLongMs = 10000.0;

// `part`: of `text`, which cannot be read.
[[noreturn]] void Refuse(const AxisKind& kind, const std::string& part, const std::string& text) {
  std::ostringstream message;
  message << "--" << kind.name << " \"" << text << "\", expected ";
  if (kind.names.empty()) {
    message << "V, A,B,C, A:B or +-A:B with numbers from " << kind.low << " to " << kind.high;
  } else {
    for (const std::string& name : kind.names) {
      message << (name == kind.names.front() ? "" : ", ") << name;
    }
    message << " or several of them with commas between" << DidYouMean(part, kind.names);
  }
  throw std::invalid_argument(message.str());
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

double ReadNumber(const AxisKind& kind, const std::string& part, const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(part.c_str(), &end);
  if (part.empty() || *end != '\0' || !(value >= kind.low && value <= kind.high)) {
    Refuse(kind, part, text);
  }
  return value;
}

double ReadValue(const AxisKind& kind, const std::string& part, const std::string& text) {
  if (kind.names.empty()) {
    return ReadNumber(kind, part, text);
  }
  const auto found = std::find(kind.names.begin(), kind.names.end(), part);
  if (found == kind.names.end()) {
    Refuse(kind, part, text);
  }
  return static_cast<double>(found - kind.names.begin());
}

// As a person would write it.
std::string Text(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

}  // namespace

const std::array<AxisKind, axis::kCount>& AxisKinds() {
  const SoundDesign design;
  static const std::array<AxisKind, axis::kCount> kinds = {{
      {"difference-ms", "true difference: arrival of the optical output minus that of the speaker", "+-30:280", -2000,
       2000},
      {"tone-db", "a block full of a -6 dBFS tone, heard directly at gain 0, above the ambient mean", "46", 0, 100},
      {"drr-db", "energy of the direct sound over that of the reverberation", "6", -60, 100},
      {"rt60-s", "reverberation time", "0.15:0.4", 0, 10},
      {"tv-gain-db", "gain of the speaker's way", "0", -60, 20},
      {"optical-gain-db", "gain of the optical output's way", "0", -60, 20},
      {"rate-ppm", "the remote samples faster than nominal by", "0", -100000, 100000},
      {"jitter-ms", "each block is late by up to this", "0", 0, 1000},
      {"loss-percent", "blocks lost on the way", "0", 0, 100},
      {"way-ms", "from the device to the microphone, the faster way", "50:150", 0, kLongMs},
      {"voice-latency-ms", "from a block's last sample to its delivery", "30", 0, kLongMs},
      {"start-ms", "from the end of the ambient phase to the sound's first frame", "5:25", 0, kLongMs},
      {"lock-ms", "what the optical receiver loses at the start of the sound", "0", 0, kLongMs},
      {"burst-ms", "test sound: length of a burst, ramps included", Text(design.burstMs), 0.1, 1000},
      {"ramp-ms", "test sound: rise, and fall, of a burst", Text(design.rampMs), 0, 500},
      {"skew-ms", "test sound: how much later the 19 kHz bursts start", Text(design.skewMs), 0, 50},
      {"pairs", "test sound: number of pairs", Text(design.pairs), 1, 50},
      {"spacing-ms", "test sound: from the start of a pair to the next", Text(design.spacingMs), 1, 5000},
      {"lead-in-ms", "test sound: silence before the first pair", Text(design.leadInMs), 0, 5000},
      {"tail-ms", "test sound: silence after the last pair", Text(design.tailMs), 0, 5000},
      {"level-dbfs", "test sound: peak of each channel", Text(design.levelDbfs), -60, 0},
      {"missed-tone", "test sound: N: pair N lacks its 17 kHz burst, -N: its 19 kHz burst, 0: none lacks", "0", -50,
       50},
      {"silent", "whether the test sound is not heard: every result is false then", "no", 0, 1, {"no", "yes"}},
      {"disturbance", "a sound that is not ours", "none", 0, 0, kDisturbanceNames},
      {"disturbance-dbfs", "its peak", "-20", -100, 0},
      {"disturbance-blocks", "length of a hiss in blocks", "1:60", 1, 1000},
      {"late-ms", "the main loop acts on each event so much later than it comes", "0", 0, kLongMs},
      {"finished-mark", "whether the first result stands, as in the service", "yes", 0, 1, {"no", "yes"}},
      {"reflections", "early reflections of each way", "2", 0, sim::kMaxReflections},
      {"reflection-ms", "how much later than the direct sound a reflection comes; from a range each draws its own",
       "4:11", 0, 1000},
      {"reflection-db", "level of a reflection over the direct sound; from a range each draws its own", "-15:-12", -100,
       20},
      {"lost-blocks", "with --fine: blocks that the recording lacks, each at a random place", "0", 0, 100, {}, true},
      {"cut-ms",
       "with --fine: the recording ends so much after the later tone's first burst begins; 0: after the sound",
       "0",
       0,
       kLongMs,
       {},
       true},
  }};
  return kinds;
}

AxisValues::AxisValues(const AxisKind& kind, const std::string& text) {
  m_EitherSign = kind.names.empty() && text.compare(0, 2, "+-") == 0;
  const std::string numbers = m_EitherSign ? text.substr(2) : text;
  const std::vector<std::string> ends = Split(numbers, ':');
  if (kind.names.empty() && ends.size() == 2) {
    m_Values = {ReadNumber(kind, ends[0], text)};
    m_Width = ReadNumber(kind, ends[1], text) - m_Values[0];
    m_Texts = {text};
    if (m_Width < 0.0) {
      Refuse(kind, text, text);
    }
    return;
  }
  if (m_EitherSign) {
    Refuse(kind, text, text);
  }
  m_Texts = Split(text, ',');
  for (const std::string& part : m_Texts) {
    m_Values.push_back(ReadValue(kind, part, text));
  }
}

double AxisValues::Draw(std::size_t row, std::mt19937_64& random) const {
  std::uniform_real_distribution<double> even(0.0, 1.0);
  const double place = even(random);
  const bool negative = even(random) < 0.5 && m_EitherSign;
  const double value = m_Values[row] + place * m_Width;
  return negative ? -value : value;
}

}  // namespace orvex::tools
