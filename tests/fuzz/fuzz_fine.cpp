// Reads recordings to hundredths of a millisecond, and checks what holds of every reading.
//
// An input is a list of at most 24 commands, done in turn: a letter and its arguments, one byte each. The recording
// has 2.5 s, silent at first. A time T F is 10 T ms and F / 256 of 10 ms.
//   l T F A, h T F A   a burst of 17 kHz, of 19 kHz; its amplitude is 64 A
//   s T F D A          the whole test sound, the optical output 2 (D - 128) ms late
//   n A                white noise with a deviation of A
//   z T N              silence, 10 N ms of it
//   o T F              a block that is lost
//   r T F N ...        N samples, of the bytes that follow
//   c A                clips at 128 A
//   e T F              cuts the recording off
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "fine/fine_reading.h"
#include "fuzz/byte_reader.h"
#include "fuzz/require.h"

namespace {

using namespace orvex::fuzz;
using orvex::fine::Reading;
namespace tools = orvex::tools;

constexpr int kMostCommands = 24;
constexpr double kLengthS = 2.5;
// The first bursts lie within the pairing span, to a block.
constexpr double kLargestDifferenceS = (tools::kPairingSpanMs + 17.0) * 1e-3;

class RecordingMaker {
public:
  void Apply(ByteReader& input) {
    switch (input.Letter()) {
      case 'l':
        AddBurst(tools::kLeftToneHz, Time(input), Amplitude(input));
        break;
      case 'h':
        AddBurst(tools::kRightToneHz, Time(input), Amplitude(input));
        break;
      case 's':
        AddSound(input);
        break;
      case 'n':
        AddNoise(input.Byte());
        break;
      case 'z':
        Silence(input);
        break;
      case 'o':
        LoseBlock(Position(input));
        break;
      case 'r':
        AddRaw(input);
        break;
      case 'c':
        Clip(128.0 * input.Byte());
        break;
      case 'e':
        m_Values.resize(Position(input));
        break;
      default:
        break;
    }
  }
  std::vector<std::int16_t> Recording() const {
    // No larger than needed, so that the address sanitizer sees what is read beyond the end.
    std::vector<std::int16_t> recording(m_Values.size());
    std::transform(m_Values.begin(), m_Values.end(), recording.begin(), [](double value) {
      return static_cast<std::int16_t>(std::lround(std::clamp(value, -32768.0, 32767.0)));
    });
    return recording;
  }

private:
  static double Time(ByteReader& input) {
    const int coarse = input.Byte();
    return 1e-2 * (coarse + input.Byte() / 256.0);
  }
  static double Amplitude(ByteReader& input) { return 64.0 * input.Byte(); }
  std::size_t Position(ByteReader& input) const {
    return std::min(m_Values.size(), static_cast<std::size_t>(Time(input) * kVoiceRateHz));
  }

  void AddBurst(double hz, double beginS, double amplitude) {
    const tools::SoundDesign sound;
    for (auto n = static_cast<std::size_t>(std::max(0.0, beginS * kVoiceRateHz)); n < m_Values.size(); ++n) {
      const double s = static_cast<double>(n) / kVoiceRateHz - beginS;
      if (s * 1e3 > sound.burstMs) {
        return;
      }
      m_Values[n] += amplitude * orvex::fine::BurstEnvelope(s, sound) * std::sin(2.0 * tools::kPi * hz * s);
    }
  }
  void AddSound(ByteReader& input) {
    const tools::SoundDesign sound;
    const double beginS = Time(input);
    const double differenceS = 2e-3 * (input.Byte() - 128);
    const double amplitude = Amplitude(input);
    for (int pair = 0; pair < sound.pairs; ++pair) {
      const double s = beginS + pair * sound.spacingMs * 1e-3;
      AddBurst(tools::kLeftToneHz, s, amplitude);
      AddBurst(tools::kRightToneHz, s + differenceS + sound.skewMs * 1e-3, amplitude);
    }
  }
  // The sum of four uniform numbers: close enough to normal, and quick.
  void AddNoise(int deviation) {
    for (double& value : m_Values) {
      double sum = -2.0;
      for (int n = 0; n < 4; ++n) {
        m_Random = m_Random * 1664525U + 1013904223U;
        sum += m_Random * 0x1p-32;
      }
      value += deviation * std::sqrt(3.0) * sum;
    }
  }
  void Silence(ByteReader& input) {
    const std::size_t begin = Position(input);
    const auto count = static_cast<std::size_t>(1e-2 * input.Byte() * kVoiceRateHz);
    std::fill_n(m_Values.begin() + static_cast<std::ptrdiff_t>(begin), std::min(count, m_Values.size() - begin), 0.0);
  }
  void LoseBlock(std::size_t begin) {
    const std::size_t end = std::min(m_Values.size(), begin + kVoiceBlockSamples);
    m_Values.erase(m_Values.begin() + static_cast<std::ptrdiff_t>(begin),
                   m_Values.begin() + static_cast<std::ptrdiff_t>(end));
  }
  void AddRaw(ByteReader& input) {
    std::size_t position = Position(input);
    const std::vector<std::uint8_t> bytes = input.Bytes(2 * static_cast<std::size_t>(input.Byte()));
    for (std::size_t n = 0; n + 1 < bytes.size() && position < m_Values.size(); n += 2) {
      m_Values[position++] = static_cast<std::int16_t>(bytes[n] | bytes[n + 1] << 8);
    }
  }
  void Clip(double limit) {
    for (double& value : m_Values) {
      value = std::clamp(value, -limit, limit);
    }
  }

  std::vector<double> m_Values = std::vector<double>(static_cast<std::size_t>(kLengthS * kVoiceRateHz));
  std::uint32_t m_Random = 1;
};

void RequireSound(const Reading& reading) {
  Require(reading.differenceS.has_value() == reading.reason.empty(), "a difference, or a reason why there is none");
  Require(reading.pairs >= 0 && reading.pairs <= tools::SoundDesign{}.pairs, "pairs are those of the sound");
  Require(!reading.ratePpm || std::isfinite(*reading.ratePpm), "the rate is a number");
  for (const auto& arrival : reading.arrivals) {
    Require(!arrival || (std::isfinite(arrival->sample) && std::isfinite(arrival->deviationS) &&
                         std::isfinite(arrival->levelDb) && arrival->deviationS >= 0.0),
            "arrivals are numbers");
  }
  if (reading.differenceS) {
    const double difference = *reading.differenceS;
    Require(std::isfinite(difference) && std::isfinite(reading.intervalS.low) && std::isfinite(reading.intervalS.high),
            "the difference is a number");
    Require(reading.intervalS.low <= difference && difference <= reading.intervalS.high, "it lies in its interval");
    Require(std::abs(difference) <= kLargestDifferenceS, "the tones pair up");
    Require(reading.pairs >= 1, "it comes from a pair");
    Require(reading.arrivals[0] && reading.arrivals[1], "both tones have arrived");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const orvex::fine::FineReader reader;
  ByteReader input(data, size);
  RecordingMaker maker;
  for (int n = 0; n < kMostCommands && !input.IsAtEnd(); ++n) {
    maker.Apply(input);
  }
  const std::vector<std::int16_t> recording = maker.Recording();
  RequireSound(reader.Read({recording.data(), recording.size()}));
  return 0;
}
