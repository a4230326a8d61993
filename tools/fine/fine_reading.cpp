// The steps of a reading, and the reasons for which it ends without a difference.
#include "fine/fine_reading.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "fine/burst_alignment.h"
#include "fine/tone.h"

namespace orvex::fine {
namespace {

constexpr std::array<double, 2> kTonesHz = {tools::kLeftToneHz, tools::kRightToneHz};

// Before the first burst the noise is measured: so long, so long at least, and so long before the onset. More than so
// many times the noise of the quieter part of the recording is a disturbance.
constexpr double kNoiseS = 0.5;
constexpr double kLeastNoiseS = 0.1;
constexpr double kBeforeSoundS = 5e-3;
constexpr double kDisturbed = 2.0;

// Below these there is no reading.
constexpr double kLeastPeakToNoise = 10.0;
constexpr double kLeastLikeness = 0.5;
constexpr double kLeastOnsetS = 2e-3;
constexpr double kLargestDeviationS = 5e-4;
// What sounds within a burst is its tone when it is this close to its frequency, as a share of it; the remote's rate is
// much closer, and reverberation moves it less. Two values so many samples apart tell frequencies up to 1.9 kHz off.
constexpr double kLargestTurn = 0.015;
constexpr std::size_t kTurnSamples = 12;
// The product of the tones' steadinesses. Where reverberation is 10 dB above the direct sound that of one tone can be
// small; clicks and noise have little in both bands, the ramps of one tone alone nearly none in the other's.
constexpr double kLeastSteadiness = 0.12;
// A burst of which a larger share of the samples is at full scale has lost its shape.
constexpr double kLargestClipped = 0.65;
// Onsets further from the middle of what the model searches are searched again around the place found, but not more
// often.
constexpr double kNearTheMiddleS = 5e-4;
constexpr int kLargestMoves = 4;

// The interval against the distribution of the onsets, and the least deviation of it. In most rooms that distribution
// is wider than the error: it allows for a reflection within a millisecond, which few rooms have. Where there is one,
// that distribution is too narrow, because the reflection lies between those that are tried.
constexpr double kIntervalWidth = 0.75;
constexpr double kReflectedWidth = 1.25;
constexpr double kFloorS = 1e-5;
constexpr double kDeviationsOf95Percent = 1.96;

// The deviation of a rate that was read off a single burst.
constexpr double kRateDeviationOfOne = 3e-4;

// What is told of the envelope around an onset.
constexpr double kEnvelopeBeforeS = 3e-3;
constexpr double kEnvelopeAfterS = 6e-3;
constexpr std::int64_t kEnvelopeStep = 3;  // samples

// The magnitude of a block that a tone of amplitude A fills is A / 2 per sample, the mean magnitude of white noise of
// deviation s is s sqrt(pi / 4) per root of samples.
double LevelDb(double amplitude, double noisePower) {
  const double noise = std::sqrt(noisePower / FilteredNoisePower());
  const double block = static_cast<double>(kVoiceBlockSamples);
  return 20.0 * std::log10(amplitude * std::sqrt(block) / (noise * std::sqrt(tools::kPi) / 2.0));
}

// The first position at which the base band misses samples.
std::int64_t UsableEnd(const Samples& samples) {
  return static_cast<std::int64_t>(samples.count) - kFilterHalf;
}

class OneReading {
public:
  OneReading(const std::array<Samples, 2>& ofTones, const tools::SoundDesign& sound, const OnsetModel& model)
      : m_Samples(ofTones), m_Sound(sound), m_Model(model) {}

  Reading Read(const FilteredBurst& shape, const std::array<BaseBand, 2>& bands,
               const std::function<void(std::size_t)>& progress) {
    std::size_t done = 0;
    const std::array<ToneBursts, 2> found = FindBursts(m_Samples, m_Sound, [&] { progress(++done); });
    for (std::size_t n = 0; n < m_Tones.size(); ++n) {
      m_Tones[n] = {kTonesHz[n], &bands[n], m_Samples[n], found[n],
                    Align(m_Samples[n], bands[n], shape, found[n], UsableEnd(m_Samples[n]))};
    }
    MeasureNoise();
    m_Reading.reason = Measure();
    return m_Reading;
  }

private:
  // Returns why there is no difference.
  std::string Measure() {
    const bool first = m_Tones[0].aligned.bursts.empty();
    const bool second = m_Tones[1].aligned.bursts.empty();
    m_Reading.isHeard = {!first, !second};
    if (first && second) {
      return "nothing of the test sound is heard";
    }
    if (first || second) {
      return "no burst of " + m_Tones[first ? 0 : 1].Name() + " is heard";
    }
    for (const Tone& tone : m_Tones) {
      if (std::string reason = WhyNotAlike(tone); !reason.empty()) {
        return reason;
      }
    }
    if (std::string reason = WhyNotSteady(); !reason.empty()) {
      return reason;
    }
    for (const Tone& tone : m_Tones) {
      if (std::string reason = WhyNoTone(tone); !reason.empty()) {
        return reason;
      }
    }
    const std::vector<std::size_t> pairs = AgreeingPairs(m_Tones, m_Sound.pairs);
    m_Reading.pairs = static_cast<int>(pairs.size());
    if (pairs.empty()) {
      return "no pair has both of its bursts";
    }
    if (pairs.size() == 1 && !EndsBefore(pairs.front() + 1)) {
      return "only one pair of bursts, or none that agrees with it";
    }
    const std::optional<double> rateError = RateError(m_Tones, m_Sound);
    if (rateError && std::abs(*rateError) > kLargestRateError) {
      return fmt::format("the bursts are not as far apart as in the sound, {:+.0f} ppm", *rateError * 1e6);
    }
    FitOnsets(rateError);
    return Conclude(pairs, rateError.has_value());
  }

  std::string WhyNotAlike(const Tone& tone) const {
    if (tone.aligned.peakToNoise < kLeastPeakToNoise) {
      return fmt::format("the bursts of {} are too weak, {:.1f} times the noise, expected {:.0f}", tone.Name(),
                         tone.aligned.peakToNoise, kLeastPeakToNoise);
    }
    return tone.aligned.likeness < kLeastLikeness ? "the bursts of " + tone.Name() + " are not alike" : "";
  }

  std::string WhyNotSteady() const {
    const double first = Steadiness(m_Samples[0], m_Tones[0], m_Sound).value_or(1.0);
    const double second = Steadiness(m_Samples[1], m_Tones[1], m_Sound).value_or(1.0);
    return first * second < kLeastSteadiness
               ? "what is heard near " + m_Tones[first < second ? 0 : 1].Name() + " is no steady tone"
               : "";
  }

  std::string WhyNoTone(const Tone& tone) const {
    const Span plateau = PlateauOf(tone.samples, tone, m_Sound);
    if (plateau.begin < plateau.end) {
      const double hz = tone.hz * FrequencyError(tone.samples, tone, plateau, kTurnSamples);
      if (std::abs(hz) > kLargestTurn * tone.hz) {
        return fmt::format("the bursts near {} have another frequency, {:+.0f} Hz", tone.Name(), hz);
      }
      if (ClippedShare(tone.samples, plateau) > kLargestClipped) {
        return fmt::format("the bursts of {} are clipped, {:.0f} % of their samples", tone.Name(),
                           100.0 * ClippedShare(tone.samples, plateau));
      }
    }
    return "";
  }

  static double ClippedShare(const Samples& samples, const Span& span) {
    const auto clipped = std::count_if(samples.data + span.begin, samples.data + span.end,
                                       [](std::int16_t sample) { return sample == INT16_MAX || sample <= -INT16_MAX; });
    return static_cast<double>(clipped) / static_cast<double>(span.end - span.begin);
  }

  // What was heard before the sound is noise and nothing else.
  void MeasureNoise() {
    double begin = static_cast<double>(std::min(m_Samples[0].count, m_Samples[1].count));
    for (const Tone& tone : m_Tones) {
      if (!tone.aligned.bursts.empty()) {
        begin = std::min(begin, tone.aligned.bursts.front().position);
      }
    }
    const auto end = static_cast<std::int64_t>(begin - kBeforeSoundS * kVoiceRateHz) - kFilterHalf;
    const std::int64_t from =
        std::max<std::int64_t>(kFilterHalf, end - static_cast<std::int64_t>(kNoiseS * kVoiceRateHz));
    const std::int64_t count = (end - from) / kFilterHalf;
    if (static_cast<double>(count * kFilterHalf) < kLeastNoiseS * kVoiceRateHz) {
      return;
    }
    for (Tone& tone : m_Tones) {
      double power = 0.0;
      for (const std::complex<double>& value :
           tone.band->Values(tone.samples, from, static_cast<std::size_t>(count), kFilterHalf)) {
        power += std::norm(value) / static_cast<double>(count);
      }
      if (power > tone.found.noisePower && power < kDisturbed * tone.found.noisePower) {
        tone.found.noisePower = power;
      }
    }
  }

  // Whether the recording ends before this pair.
  bool EndsBefore(std::size_t pair) const {
    double latest = 0.0;
    for (const Tone& tone : m_Tones) {
      const AlignedBurst& last = tone.aligned.bursts.back();
      latest = std::max(latest, last.position + (static_cast<double>(pair) - static_cast<double>(last.pair)) *
                                                    m_Sound.spacingMs * 1e-3 * kVoiceRateHz);
    }
    return latest > static_cast<double>(std::min(UsableEnd(m_Samples[0]), UsableEnd(m_Samples[1])));
  }

  void FitOnsets(const std::optional<double>& rateError) {
    m_RateError = rateError ? *rateError : RateErrorOfOne(Longer().samples, Longer(), m_Sound);
    m_Reading.ratePpm = m_RateError * 1e6;
    for (std::size_t n = 0; n < m_Tones.size(); ++n) {
      const Tone& tone = m_Tones[n];
      std::int64_t position = std::llround(tone.aligned.onset);
      m_Onsets[n] = FitAt(tone, position);
      // What is near the edge of what the model searches may lie beyond it.
      for (int again = 0; again < kLargestMoves && std::abs(m_Onsets[n].s) > kNearTheMiddleS; ++again) {
        position += std::llround(m_Onsets[n].s * kVoiceRateHz);
        m_Onsets[n] = FitAt(tone, position);
      }
      m_Corrections[n] =
          static_cast<double>(position) + m_Onsets[n].s * kVoiceRateHz - RoundingOf(tone.aligned) - tone.aligned.onset;
      const double amplitude = m_Onsets[n].amplitude * std::sqrt(NoisePowerOf(tone));
      m_Reading.arrivals[n] =
          Arrival{tone.aligned.bursts.front().position + m_Corrections[n], m_Onsets[n].deviationS,
                  LevelDb(amplitude, tone.found.noisePower), amplitude, EnvelopeOf(tone, position, m_Onsets[n].s)};
    }
  }

  // Of the mean at a position, around its onset, which is `onsetS` later.
  std::vector<EnvelopePoint> EnvelopeOf(const Tone& tone, std::int64_t position, double onsetS) const {
    const std::int64_t last = std::min(UsableEnd(tone.samples) - 1 - position,
                                       static_cast<std::int64_t>((onsetS + kEnvelopeAfterS) * kVoiceRateHz));
    std::vector<std::int64_t> offsets;
    for (auto offset = static_cast<std::int64_t>((onsetS - kEnvelopeBeforeS) * kVoiceRateHz); offset <= last;
         offset += kEnvelopeStep) {
      offsets.push_back(offset);
    }
    const std::vector<std::complex<double>> values =
        MeanOf(tone.samples, *tone.band, tone.aligned, position, offsets, 0.0);
    std::vector<EnvelopePoint> envelope;
    for (std::size_t n = 0; n < offsets.size(); ++n) {
      envelope.push_back({static_cast<double>(offsets[n]) / kVoiceRateHz - onsetS, std::abs(values[n])});
    }
    return envelope;
  }

  // Of the mean of the bursts.
  static double NoisePowerOf(const Tone& tone) {
    return tone.found.noisePower / static_cast<double>(tone.aligned.bursts.size());
  }

  Onset FitAt(const Tone& tone, std::int64_t position) const {
    const double turn = -2.0 * tools::kPi * tone.hz / kVoiceRateHz * m_RateError;
    std::vector<std::complex<double>> values =
        MeanOf(tone.samples, *tone.band, tone.aligned, position, m_Model.Offsets(), turn);
    for (std::complex<double>& value : values) {
      value /= std::sqrt(NoisePowerOf(tone));
    }
    std::size_t usable = values.size();
    while (usable > 1 && position + m_Model.Offsets()[usable - 1] >= UsableEnd(tone.samples)) {
      --usable;
    }
    return m_Model.Fit(values, usable);
  }

  std::string Conclude(const std::vector<std::size_t>& pairs, bool isRateOfMany) {
    for (std::size_t n = 0; n < m_Tones.size(); ++n) {
      // By the onset that was fitted: the rough one is up to a millisecond early where the recording ends in the rise.
      if (m_Tones[n].aligned.isCut &&
          static_cast<double>(m_Samples[n].count) - m_Reading.arrivals[n]->sample < kLeastOnsetS * kVoiceRateHz) {
        return fmt::format("the recording ends within {:.0f} ms of the burst of {}", kLeastOnsetS * 1e3,
                           m_Tones[n].Name());
      }
      if (m_Onsets[n].deviationS > kLargestDeviationS) {
        return fmt::format("the onset of {} is not clear, {:.2f} ms to either side", m_Tones[n].Name(),
                           kDeviationsOf95Percent * m_Onsets[n].deviationS * 1e3);
      }
    }
    double distance = 0.0;
    for (const std::size_t pair : pairs) {
      distance += m_Tones[1].Burst(pair)->position - m_Tones[0].Burst(pair)->position;
    }
    distance = distance / static_cast<double>(pairs.size()) + m_Corrections[1] - m_Corrections[0];
    const double difference = distance / (kVoiceRateHz * (1.0 + m_RateError)) - m_Sound.skewMs * 1e-3;
    const double rate = isRateOfMany ? 0.0 : difference * kRateDeviationOfOne;
    double variance = rate * rate + kFloorS * kFloorS;
    for (const Onset& onset : m_Onsets) {
      const double width = kIntervalWidth + onset.reflection * (kReflectedWidth - kIntervalWidth);
      variance += width * width * onset.deviationS * onset.deviationS;
    }
    const double deviation = std::sqrt(variance);
    m_Reading.differenceS = difference;
    m_Reading.intervalS = {difference - kDeviationsOf95Percent * deviation,
                           difference + kDeviationsOf95Percent * deviation};
    return "";
  }

  // The tone of which more of the burst is in the recording.
  const Tone& Longer() const { return m_Tones[m_Tones[0].aligned.isCut ? 1 : 0]; }

  const std::array<Samples, 2>& m_Samples;
  const tools::SoundDesign& m_Sound;
  const OnsetModel& m_Model;
  std::array<Tone, 2> m_Tones;
  double m_RateError = 0.0;
  std::array<Onset, 2> m_Onsets;
  std::array<double, 2> m_Corrections{};
  Reading m_Reading;
};

}  // namespace

FineReader::FineReader(const tools::SoundDesign& sound)
    : m_Sound(sound),
      m_Shape(sound),
      m_Bands{BaseBand(tools::kLeftToneHz), BaseBand(tools::kRightToneHz)},
      m_Model(sound) {}

Reading FineReader::Read(const Samples& samples, const std::function<void(std::size_t)>& progress) const {
  return ReadTones({samples, samples}, progress);
}

Reading FineReader::ReadTones(const std::array<Samples, 2>& ofTones,
                              const std::function<void(std::size_t)>& progress) const {
  return OneReading(ofTones, m_Sound, m_Model).Read(m_Shape, m_Bands, progress);
}

}  // namespace orvex::fine
