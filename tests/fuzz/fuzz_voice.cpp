// Delivers voice blocks to the shipped receiver, and checks that its magnitudes are those of the samples and that its
// reports follow from the magnitudes.
//
// An input is a list of commands: a letter and its arguments, one byte each. At most 400 blocks are delivered.
//   a N        N % 64 + 1 blocks of the same faint click
//   o N        N % 64 + 1 lost blocks
//   l A, h A   a block of 17 kHz, of 19 kHz; amplitudes are 64 A
//   m A B      a block of 17 kHz and 19 kHz
//   n A B      a block of 17 kHz beside 18 kHz
//   y A B      a block of 19 kHz beside 17.5 kHz
//   c A        a click of 128 A
//   r N ...    a block of 8 N bytes, its beginning from the input
//   s N ...    a block of the N bytes that follow, or of those that are left
//   g, t       start, stop
//   e, f       switch the audible setting, the finished mark
#include <array>
#include <cmath>

#include "fuzz/byte_reader.h"
#include "fuzz/require.h"
#include "receiver/receiver_rig.h"
#include "support/detector_model.h"

namespace {

using namespace orvex::fuzz;
using orvex::detector::ToneMagnitudes;
using orvex::test::BlockReports;
using orvex::test::DetectorModel;
using orvex::tools::ReceiverRig;

constexpr int kMostBlocks = 400;
using Samples = std::array<double, kVoiceBlockSamples>;
using Bytes = std::vector<std::uint8_t>;

struct Wave {
  explicit Wave(double hz) {
    for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
      const double turns = static_cast<double>(n) * hz / kVoiceRateHz;
      cosine[n] = std::cos(2.0 * M_PI * (turns - std::floor(turns)));
      sine[n] = std::sin(2.0 * M_PI * (turns - std::floor(turns)));
    }
  }
  Samples cosine{};
  Samples sine{};
};

const Wave k17000(17000);
const Wave k17500(17500);
const Wave k18000(18000);
const Wave k19000(19000);

Bytes LittleEndian(const Samples& samples) {
  Bytes bytes;
  for (const double sample : samples) {
    const auto bits = static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(sample)));
    bytes.push_back(static_cast<std::uint8_t>(bits & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(bits >> 8U));
  }
  return bytes;
}

Bytes Mix(const Wave& one, int amplitudeOfOne, const Wave& other, int amplitudeOfOther) {
  Samples samples{};
  for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
    samples[n] = 64.0 * (one.cosine[n] * amplitudeOfOne + other.cosine[n] * amplitudeOfOther);
  }
  return LittleEndian(samples);
}

Bytes Click(int amplitude) {
  Samples samples{};
  samples[0] = amplitude;
  return LittleEndian(samples);
}

double Magnitude(const Wave& wave, const Bytes& bytes) {
  double re = 0.0;
  double im = 0.0;
  for (std::size_t n = 0; n < kVoiceBlockSamples && 2 * n + 1 < bytes.size(); ++n) {
    const auto sample = static_cast<std::int16_t>(bytes[2 * n] | bytes[2 * n + 1] << 8);
    re += sample * wave.cosine[n];
    im += sample * wave.sine[n];
  }
  return std::hypot(re, im);
}

// Checks the magnitudes of blocks; computes those of a block that repeats the one before only once.
class Levels {
public:
  void RequireOf(const ToneMagnitudes& measured, const Bytes& bytes) {
    if (bytes != m_Bytes) {
      m_Bytes = bytes;
      m_Expected = {Magnitude(k17000, bytes), Magnitude(k17500, bytes), Magnitude(k18000, bytes),
                    Magnitude(k19000, bytes)};
    }
    const std::array<double, 4> levels = {measured.at17000, measured.at17500, measured.at18000, measured.at19000};
    for (std::size_t i = 0; i < levels.size(); ++i) {
      Require(std::fabs(levels[i] - m_Expected[i]) < 1e-3, "the magnitudes are those of the samples");
    }
  }

private:
  Bytes m_Bytes;
  std::array<double, 4> m_Expected{};
};

class Recording {
public:
  bool IsFull() const { return m_Blocks >= kMostBlocks; }

  void Hear(const Bytes& bytes) {
    ++m_Blocks;
    m_Reported.Clear();
    m_Rig.Deliver(bytes.data(), static_cast<std::uint16_t>(bytes.size()));
    if (!m_Rig.GetReceiver().IsRecording()) {
      Require(!m_Reported.magnitudes, "a block outside a recording is ignored");
      return;
    }
    const bool isAnalysed = m_Model.Count();
    Require(m_Reported.magnitudes.has_value() == isAnalysed, "blocks are analysed from the fifth on");
    if (isAnalysed) {
      m_Levels.RequireOf(*m_Reported.magnitudes, bytes);
      Require(BlockReports::ValuesOf(m_Reported.ambient) == m_Model.Ambient(),
              "the ambience is learnt from the levels");
      m_Model.Analyse(*m_Reported.magnitudes);
    }
    Require(m_Reported.reports == m_Model.Reports(), "the reports follow from the levels");
    RequireState();
  }
  void Lose() {
    ++m_Blocks;
    m_Reported.Clear();
    m_Rig.Lose();
    if (m_Rig.GetReceiver().IsRecording()) {
      static_cast<void>(m_Model.Count());
      Require(m_Reported.reports == m_Model.Reports(), "a lost block is only counted");
    }
    RequireState();
  }
  void Start() {
    if (!m_Rig.GetReceiver().IsRecording()) {
      m_Model = DetectorModel();
      m_Model.hearable = m_Hearable;
    }
    m_Rig.GetReceiver().StartBTRecoder();
    Require(m_Rig.GetReceiver().IsRecording(), "a start begins a recording");
    RequireState();
  }
  void Stop() {
    m_Rig.GetReceiver().StopBTRecoder();
    Require(!m_Rig.GetReceiver().IsRecording(), "a stop ends the recording");
    RequireState();
  }
  void SwitchHearable() {
    m_Hearable = !m_Hearable;
    m_Model.hearable = m_Hearable;
    m_Rig.GetReceiver().SetHearable(m_Hearable);
  }
  void SwitchFinished() {
    m_Model.finished = !m_Model.finished;
    m_Rig.GetReceiver().SetFinished(m_Model.finished);
  }

private:
  void RequireState() {
    const OrvexReceiver& receiver = m_Rig.GetReceiver();
    Require(receiver.GetBufferCount() == m_Model.buffer, "every block counts");
    Require(receiver.GetBlockIndex() == m_Model.analysed, "analysed blocks count");
    Require(receiver.GetDirection() == m_Model.direction, "direction");
    Require(receiver.GetNoiseCount() == m_Model.noisy, "noisy detections count");
    Require(receiver.GetSoundType() == m_Model.progress, "progress");
    Require(m_Rig.GetDifferenceS() == m_Model.seconds, "the difference is the last result's");
  }

  BlockReports m_Reported;
  ReceiverRig m_Rig{{&m_Reported}};
  DetectorModel m_Model;
  Levels m_Levels;
  int m_Blocks = 0;
  bool m_Hearable = false;
};

// The frequency that a command adds to its tone.
const Wave& AddedWave(char command) {
  switch (command) {
    case 'n':
      return k18000;
    case 'y':
      return k17500;
    default:
      return k19000;
  }
}

void HearTones(char command, ByteReader& input, Recording& recording) {
  const int one = input.Byte();
  const int other = command == 'l' || command == 'h' ? 0 : input.Byte();
  const Wave& wave = command == 'h' || command == 'y' ? k19000 : k17000;
  recording.Hear(Mix(wave, one, AddedWave(command), other));
}

void ApplyCommand(char command, ByteReader& input, Recording& recording) {
  switch (command) {
    case 'a':
    case 'o': {
      const Bytes ambience = Click(4);
      for (int left = input.Below(64) + 1; left > 0 && !recording.IsFull(); --left) {
        command == 'a' ? recording.Hear(ambience) : recording.Lose();
      }
      break;
    }
    case 'l':
    case 'h':
    case 'm':
    case 'n':
    case 'y':
      HearTones(command, input, recording);
      break;
    case 'c':
      recording.Hear(Click(128 * input.Byte()));
      break;
    case 'r': {
      const auto size = static_cast<std::size_t>(8 * input.Byte());
      Bytes bytes = input.Bytes(size);
      bytes.resize(size);
      recording.Hear(bytes);
      break;
    }
    case 's':
      recording.Hear(input.Bytes(static_cast<std::size_t>(input.Byte())));
      break;
    case 'g':
      recording.Start();
      break;
    case 't':
      recording.Stop();
      break;
    case 'e':
      recording.SwitchHearable();
      break;
    case 'f':
      recording.SwitchFinished();
      break;
    default:
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ByteReader input(data, size);
  Recording recording;
  while (!input.IsAtEnd() && !recording.IsFull()) {
    const char command = input.Letter();
    ApplyCommand(command, input, recording);
  }
  return 0;
}
