// Voice blocks through the shipped receiver: its magnitudes are those of the samples, and what it reports follows from
// them.
//
// An input is a list of orders, a letter and its arguments, one byte each; 400 blocks are the most.
//   a N     N % 64 + 1 blocks of the same faint click
//   o N     N % 64 + 1 lost blocks
//   l A     17 kHz, h A: 19 kHz, m A B: both, n A B: 17 kHz beside 18 kHz, y A B: 19 kHz beside 17.5 kHz; amplitude 64
//   A c A     a click of 128 A r N ... a block of 8 N bytes, its beginning from the input s N ... a block of the N
//   bytes that follow, or of those that are left g t     start, stop; e f: the audible setting, the finished mark
#include <array>
#include <cmath>

#include "fuzz/byte_reader.h"
#include "fuzz/detector_model.h"
#include "fuzz/require.h"

namespace {

using namespace orvex::fuzz;
using orvex::tools::BlockLevels;
using orvex::tools::ReceiverListener;
using orvex::tools::ReceiverRig;
using orvex::tools::Tone;

constexpr std::size_t kBlockSamples = OrvexReceiver::kBlockSamples;
constexpr int kMostBlocks = 400;
using Samples = std::array<double, kBlockSamples>;
using Bytes = std::vector<std::uint8_t>;

struct Wave {
  explicit Wave(double hz) {
    for (std::size_t n = 0; n < kBlockSamples; ++n) {
      const double turns = static_cast<double>(n) * hz / OrvexReceiver::kSampleRateHz;
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
  for (std::size_t n = 0; n < kBlockSamples; ++n) {
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
  for (std::size_t n = 0; n < kBlockSamples && 2 * n + 1 < bytes.size(); ++n) {
    const auto sample = static_cast<std::int16_t>(bytes[2 * n] | bytes[2 * n + 1] << 8);
    re += sample * wave.cosine[n];
    im += sample * wave.sine[n];
  }
  return std::hypot(re, im);
}

// The magnitudes of one block; those of blocks that come again and again are known.
class Levels {
public:
  void RequireOf(const BlockLevels& measured, const Bytes& bytes) {
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

// Keeps what the receiver says of one block.
class Listener : public ReceiverListener {
public:
  void OnBlock(std::int32_t, const BlockLevels& measured) override {
    levels = measured;
    isAnalysed = true;
  }
  void OnAmbient(std::int32_t) override { reports.push_back({Kind::kAmbient}); }
  void OnFirst(std::int32_t, Tone tone) override { reports.push_back({Kind::kFirst, tone}); }
  void OnSequence(std::int32_t) override { reports.push_back({Kind::kSequence}); }
  void OnNoisy(std::int32_t, Tone tone, std::int32_t count) override { reports.push_back({Kind::kNoisy, tone, count}); }
  void OnResult(std::int32_t, std::int32_t first, std::int32_t second, double seconds) override {
    reports.push_back({Kind::kResult, Tone::k17000Hz, first, second, seconds});
  }
  void OnAbnormal(std::int32_t) override { reports.push_back({Kind::kAbnormal}); }
  void OnExtend(std::int32_t) override { reports.push_back({Kind::kExtend}); }

  bool isAnalysed = false;
  BlockLevels levels;
  std::vector<Report> reports;
};

class Recording {
public:
  bool IsFull() const { return m_Blocks >= kMostBlocks; }

  void Hear(const Bytes& bytes) {
    ++m_Blocks;
    m_Listener.isAnalysed = false;
    m_Listener.reports.clear();
    m_Rig.Deliver(bytes.data(), static_cast<std::uint16_t>(bytes.size()));
    if (!m_Rig.GetReceiver().IsRecording()) {
      Require(!m_Listener.isAnalysed, "a block outside a recording is ignored");
      return;
    }
    const bool isAnalysed = m_Model.Count();
    Require(m_Listener.isAnalysed == isAnalysed, "blocks are analysed from the fifth on");
    if (isAnalysed) {
      m_Levels.RequireOf(m_Listener.levels, bytes);
      m_Model.Analyse(m_Listener.levels, m_Hearable, m_Finished);
    }
    Require(m_Listener.reports == m_Model.Reports(), "the reports follow from the levels");
    RequireState();
  }
  void Lose() {
    ++m_Blocks;
    OrvexReceiver::m_ReceiveBTAudioDataCB(nullptr, &m_Rig.GetReceiver());
    if (m_Rig.GetReceiver().IsRecording()) {
      static_cast<void>(m_Model.Count());
    }
    RequireState();
  }
  void Start() {
    if (!m_Rig.GetReceiver().IsRecording()) {
      m_Model = DetectorModel();
      m_Finished = false;
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
    m_Rig.GetReceiver().SetHearable(m_Hearable);
  }
  void SwitchFinished() {
    m_Finished = !m_Finished;
    m_Rig.GetReceiver().SetFinished(m_Finished);
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

  Listener m_Listener;
  ReceiverRig m_Rig{m_Listener};
  DetectorModel m_Model;
  Levels m_Levels;
  int m_Blocks = 0;
  bool m_Hearable = false;
  bool m_Finished = false;
};

void HearTones(char order, ByteReader& input, Recording& recording) {
  const int one = input.Byte();
  const int other = order == 'l' || order == 'h' ? 0 : input.Byte();
  recording.Hear(order == 'l'   ? Mix(k17000, one, k19000, other)
                 : order == 'h' ? Mix(k19000, one, k17000, other)
                 : order == 'm' ? Mix(k17000, one, k19000, other)
                 : order == 'n' ? Mix(k17000, one, k18000, other)
                                : Mix(k19000, one, k17500, other));
}

void Obey(char order, ByteReader& input, Recording& recording) {
  switch (order) {
    case 'a':
    case 'o': {
      const Bytes ambience = Click(4);
      for (int left = input.Below(64) + 1; left > 0 && !recording.IsFull(); --left) {
        order == 'a' ? recording.Hear(ambience) : recording.Lose();
      }
      break;
    }
    case 'l':
    case 'h':
    case 'm':
    case 'n':
    case 'y':
      HearTones(order, input, recording);
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
    const char order = input.Letter();
    Obey(order, input, recording);
  }
  return 0;
}
