// A comb: for each beginning of the sound, what is heard where its bursts must be.
#include "fine/burst_search.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "orvex/platform/remote_voice.h"

namespace orvex::fine {
namespace {

// A block is a whole number of these steps.
constexpr std::int64_t kStep = 12;
constexpr std::int64_t kStepsPerBlock = kVoiceBlockSamples / kStep;
static_assert(kStepsPerBlock * kStep == kVoiceBlockSamples);
// Lost between two bursts of a tone at most.
constexpr std::int64_t kLostBlocks = 4;
// How far a burst may be from its place: 1 ms, the remote's rate and rounding.
constexpr std::int64_t kTolerance = 4;
// A burst has this many times the power of the noise, or it is not heard.
constexpr double kHeard = 4.0;
// A place within the recording at which no burst is heard counts against the sound.
constexpr double kMissing = -2.0;
// Tones that are further apart than a run can measure are paired when more than so much more is heard of them then:
// that is one burst, which would lack otherwise, while one that is not heard costs less.
constexpr double kFurther = 3.0;
constexpr double kFurthestMs = 900.0;
// Places for the beginning that are looked at with each of the other tone.
constexpr std::size_t kCandidates = 64;
constexpr double kRoundingPower = 1.0 / 12.0;

constexpr double kTones[] = {tools::kLeftToneHz, tools::kRightToneHz};

std::int64_t StepsOf(double ms) {
  return std::llround(ms * 1e-3 * kVoiceRateHz / static_cast<double>(kStep));
}

// The base band of the whole recording, in as many pieces as the sound has pairs.
std::vector<std::complex<double>> ValuesOf(const Samples& samples, double toneHz, int pieces,
                                           const std::function<void()>& onStep) {
  const BaseBand band(toneHz);
  const std::size_t count = samples.count / kStep;
  std::vector<std::complex<double>> values;
  values.reserve(count);
  for (int piece = 1; piece <= pieces; ++piece) {
    const std::size_t left = count - values.size();
    const std::size_t length = left / static_cast<std::size_t>(pieces - piece + 1);
    const auto first = static_cast<std::int64_t>(values.size()) * kStep;
    const std::vector<std::complex<double>> next = band.Values(samples, first, length, kStep);
    values.insert(values.end(), next.begin(), next.end());
    onStep();
  }
  return values;
}

// How much of a tone is heard in the recording.
class HeardTone {
public:
  // Has a step for each piece of the recording and for each pair of the sound.
  HeardTone(const Samples& samples, double toneHz, const tools::SoundDesign& sound, const std::function<void()>& onStep)
      : m_Spacing(StepsOf(sound.spacingMs)), m_Length(StepsOf(sound.burstMs - 2.0 * sound.rampMs)) {
    const std::vector<std::complex<double>> values = ValuesOf(samples, toneHz, sound.pairs, onStep);
    MeasureNoise(values);
    SumPower(values);
    Comb(sound.pairs, onStep);
  }

  struct Candidate {
    std::int64_t place = 0;
    double score = 0.0;
  };
  // Places at which the sound may begin, the best first.
  std::vector<Candidate> Candidates() const {
    std::vector<Candidate> found;
    const std::vector<double>& scores = m_Scores.front();
    const auto count = static_cast<std::ptrdiff_t>(scores.size());
    const auto length = static_cast<std::ptrdiff_t>(m_Length);
    for (std::ptrdiff_t place = 0; place < count; ++place) {
      const double score = scores[static_cast<std::size_t>(place)];
      const auto begin = scores.begin() + std::max<std::ptrdiff_t>(0, place - length);
      const auto end = scores.begin() + std::min(count, place + length + 1);
      if (score > 0.0 && std::max_element(begin, end) == scores.begin() + place) {
        found.push_back({place, score});
      }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Candidate& a, const Candidate& b) { return a.score > b.score; });
    found.resize(std::min(found.size(), kCandidates));
    return found;
  }
  // The bursts of the sound that begins there.
  ToneBursts Follow(std::int64_t place) const {
    ToneBursts bursts;
    bursts.noisePower = m_NoisePower;
    for (std::size_t pair = 0; pair < m_Scores.size(); ++pair) {
      const std::int64_t best = BestNear(place);
      bursts.positions.push_back(Heard(best) > 0.0 ? std::optional<std::int64_t>(BeginningOf(best) * kStep)
                                                   : std::nullopt);
      if (pair + 1 < m_Scores.size()) {
        place = NextPlace(pair + 1, place);
      }
    }
    return bursts;
  }
  double NoisePower() const { return m_NoisePower; }

private:
  // Of the quieter quarter of the recording: bursts and what reverberates take up less than the rest.
  void MeasureNoise(const std::vector<std::complex<double>>& values) {
    const std::size_t length = static_cast<std::size_t>(kStepsPerBlock);
    std::vector<double> powers;
    for (std::size_t begin = 0; begin + length <= values.size(); begin += length) {
      double power = 0.0;
      for (std::size_t n = begin; n < begin + length; ++n) {
        power += std::norm(values[n]);
      }
      powers.push_back(power / static_cast<double>(length));
    }
    double quiet = 0.0;
    if (!powers.empty()) {
      const auto quarter = powers.begin() + static_cast<std::ptrdiff_t>(powers.size() / 4);
      std::nth_element(powers.begin(), quarter, powers.end());
      quiet = *quarter;
    }
    m_NoisePower = std::max(quiet, kRoundingPower * FilteredNoisePower());
  }
  // The power within a burst's plateau that begins at each step. Beyond the end there is none.
  void SumPower(const std::vector<std::complex<double>>& values) {
    const auto count = static_cast<std::int64_t>(values.size());
    m_Power.resize(values.size());
    double sum = 0.0;
    for (std::int64_t place = count - 1; place >= 0; --place) {
      sum += std::norm(values[static_cast<std::size_t>(place)]);
      if (place + m_Length < count) {
        sum -= std::norm(values[static_cast<std::size_t>(place + m_Length)]);
      }
      m_Power[static_cast<std::size_t>(place)] = std::max(0.0, sum) / static_cast<double>(m_Length);
    }
  }
  bool IsInside(std::int64_t place) const { return place >= 0 && place < static_cast<std::int64_t>(m_Power.size()); }
  double Heard(std::int64_t place) const {
    if (!IsInside(place)) {
      return 0.0;
    }
    return std::max(kMissing, std::log(m_Power[static_cast<std::size_t>(place)] / (kHeard * m_NoisePower) + 1e-9));
  }
  std::int64_t BestNear(std::int64_t place) const {
    std::int64_t best = place;
    for (std::int64_t near = place - kTolerance; near <= place + kTolerance; ++near) {
      best = Heard(near) > Heard(best) ? near : best;
    }
    return best;
  }
  // The loudest part of a burst may lie later, where its reflections join it, and is long where the recording ends
  // within the burst: then it begins at the last step at which next to nothing is missing.
  std::int64_t BeginningOf(std::int64_t place) const {
    constexpr double kNextToAll = 0.9;
    std::int64_t last = place;
    while (IsInside(last + 1) &&
           m_Power[static_cast<std::size_t>(last + 1)] >= kNextToAll * m_Power[static_cast<std::size_t>(place)]) {
      ++last;
    }
    return last;
  }
  // m_Scores[pair][place]: of the bursts from this pair on, when it is at the place.
  void Comb(int pairs, const std::function<void()>& onStep) {
    const auto count = static_cast<std::int64_t>(m_Power.size());
    m_Scores.assign(static_cast<std::size_t>(pairs), std::vector<double>(m_Power.size()));
    for (std::size_t pair = m_Scores.size(); pair-- > 0;) {
      for (std::int64_t place = 0; place < count; ++place) {
        const double rest = pair + 1 < m_Scores.size() ? ScoreAt(pair + 1, NextPlace(pair + 1, place)) : 0.0;
        m_Scores[pair][static_cast<std::size_t>(place)] = Heard(place) + rest;
      }
      onStep();
    }
  }
  double ScoreAt(std::size_t pair, std::int64_t place) const {
    return IsInside(place) ? m_Scores[pair][static_cast<std::size_t>(place)] : 0.0;
  }
  std::int64_t NextPlace(std::size_t pair, std::int64_t place) const {
    std::int64_t best = place + m_Spacing;
    for (std::int64_t lost = 0; lost <= kLostBlocks; ++lost) {
      for (std::int64_t off = -kTolerance; off <= kTolerance; off += 2) {
        const std::int64_t next = place + m_Spacing - lost * kStepsPerBlock + off;
        best = ScoreAt(pair, next) > ScoreAt(pair, best) ? next : best;
      }
    }
    return best;
  }

  const std::int64_t m_Spacing;
  const std::int64_t m_Length;
  double m_NoisePower = 0.0;
  std::vector<double> m_Power;
  std::vector<std::vector<double>> m_Scores;
};

}  // namespace

std::size_t SearchSteps(const tools::SoundDesign& sound) {
  constexpr std::size_t kOfEachPair = 2;  // a piece of the base band, and the pair's part of the comb
  return std::size(kTones) * kOfEachPair * static_cast<std::size_t>(sound.pairs);
}

std::array<ToneBursts, 2> FindBursts(const std::array<Samples, 2>& ofTones, const tools::SoundDesign& sound,
                                     const std::function<void()>& onStep) {
  const std::array<HeardTone, 2> tones = {HeardTone(ofTones[0], kTones[0], sound, onStep),
                                          HeardTone(ofTones[1], kTones[1], sound, onStep)};
  const std::int64_t near = StepsOf(tools::kPairingSpanMs);
  const std::int64_t furthest = StepsOf(kFurthestMs);
  const auto first = tones[0].Candidates();
  const auto second = tones[1].Candidates();
  std::array<ToneBursts, 2> bursts;
  for (std::size_t n = 0; n < tones.size(); ++n) {
    bursts[n].noisePower = tones[n].NoisePower();
  }
  double best = 0.0;
  const auto take = [&](std::size_t n, const std::vector<HeardTone::Candidate>& candidates) {
    if (!candidates.empty()) {
      bursts[n] = tones[n].Follow(candidates.front().place);
    }
  };
  for (const auto& one : first) {
    for (const auto& other : second) {
      const std::int64_t distance = std::abs(one.place - other.place);
      const double score = one.score + other.score - (distance > near ? kFurther : 0.0);
      if (distance <= furthest && score > best) {
        best = score;
        bursts = {tones[0].Follow(one.place), tones[1].Follow(other.place)};
      }
    }
  }
  if (best == 0.0 && (first.empty() || second.empty())) {
    take(0, first);
    take(1, second);
  }
  return bursts;
}

}  // namespace orvex::fine
