// For each onset and power of reverberation, the inverse Cholesky factor of the covariance makes noise of any value
// white. It is lower triangular, so that the first values are whitened by themselves.
#include "fine/onset_model.h"

#include <Eigen/Dense>

#include <algorithm>
#include <array>
#include <cmath>

#include "fine/base_band.h"
#include "fine/burst_shape.h"

namespace orvex::fine {
namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// Of the values: the low-pass leaves nothing that this step could not show.
constexpr std::int64_t kStepSamples = 12;
constexpr double kBeforeS = 3e-3;
constexpr double kAfterS = 5e-3;
// Onsets that are tried.
constexpr double kSpanS = 1.2e-3;
constexpr double kResolutionS = 12.5e-6;
// Power of the reverberation, in dB against the power of the noise behind the low-pass, per second.
constexpr double kLowestDb = 12.0;
constexpr double kHighestDb = 84.0;
constexpr double kStepDb = 6.0;
// An RT60 of 0.28 s. Little depends on it within the few milliseconds that are looked at.
constexpr double kDecayPerS = 50.0;
constexpr double kReverberationStepS = 2e-4;
// What is expected of it against the square of the direct sound's amplitude, per second: a direct-to-reverberant ratio
// of 5 dB at that RT60, more or less. None at all counts as one that is hardly there.
constexpr double kExpectedDb = 13.0;
constexpr double kDeviationDb = 7.0;
constexpr double kNoneDb = -5.0;
// Reflections within a millisecond, as from a table that the remote lies on.
constexpr std::array<double, 5> kReflectionsS = {1e-4, 3e-4, 5e-4, 7e-4, 9e-4};
constexpr std::array<double, 3> kReflectionsDb = {-3.0, -6.0, -10.0};
constexpr int kPhases = 8;
constexpr double kReflectionShare = 0.3;
// Of the noise's covariance, for rounding.
constexpr double kDiagonal = 1e-3;

double ToDb(double power) {
  return 10.0 * std::log10(power);
}

double FromDb(double db) {
  return std::pow(10.0, db / 10.0);
}

// The correlation of the noise behind the low-pass at values `step` samples apart.
double NoiseCorrelation(std::size_t distance) {
  const std::vector<double>& filter = LowPass();
  double sum = 0.0;
  for (std::size_t n = distance; n < filter.size(); ++n) {
    sum += filter[n] * filter[n - distance];
  }
  return sum / FilteredNoisePower();
}

std::vector<std::int64_t> MakeOffsets() {
  std::vector<std::int64_t> offsets;
  const auto last = static_cast<std::int64_t>(kAfterS * kVoiceRateHz);
  for (auto offset = -static_cast<std::int64_t>(kBeforeS * kVoiceRateHz); offset <= last; offset += kStepSamples) {
    offsets.push_back(offset);
  }
  return offsets;
}

std::vector<double> MakePowers() {
  std::vector<double> powers{0.0};
  for (double db = kLowestDb; db <= kHighestDb; db += kStepDb) {
    powers.push_back(FromDb(db));
  }
  return powers;
}

std::vector<double> MakeOnsets() {
  std::vector<double> onsets;
  const int half = static_cast<int>(std::lround(kSpanS / kResolutionS));
  for (int n = -half; n <= half; ++n) {
    onsets.push_back(n * kResolutionS);
  }
  return onsets;
}

std::vector<std::complex<double>> MakeReflections() {
  std::vector<std::complex<double>> gains;
  for (const double db : kReflectionsDb) {
    for (int phase = 0; phase < kPhases; ++phase) {
      gains.push_back(std::polar(std::sqrt(FromDb(db)), 2.0 * tools::kPi * phase / kPhases));
    }
  }
  return gains;
}

}  // namespace

class OnsetModel::Tables {
public:
  explicit Tables(const tools::SoundDesign& sound) : m_Burst(sound) {
    const auto count = static_cast<Index>(offsets.size());
    MatrixXd noise(count, count);
    for (Index row = 0; row < count; ++row) {
      for (Index column = 0; column < count; ++column) {
        noise(row, column) = NoiseCorrelation(static_cast<std::size_t>(std::abs(row - column) * kStepSamples));
      }
    }
    noise.diagonal().array() += kDiagonal;
    for (const double onset : onsets) {
      const MatrixXd reverberation = Reverberation(onset);
      const MatrixXd shapes = Shapes(onset);
      for (const double power : powers) {
        AddCase(noise + power * reverberation, shapes);
      }
    }
  }

  // What belongs to one onset and one power, in the order of both.
  struct Case {
    MatrixXd whitening;
    MatrixXd shapes;           // the whitened burst, and the whitened bursts of the reflections
    VectorXd logDeterminants;  // of the first n values: of the whitening's diagonal, summed
  };

  const std::vector<std::int64_t> offsets = MakeOffsets();
  const std::vector<double> onsets = MakeOnsets();
  const std::vector<double> powers = MakePowers();
  const std::vector<std::complex<double>> reflections = MakeReflections();
  std::vector<Case> cases;

private:
  double TimeOf(std::size_t value) const { return static_cast<double>(offsets[value]) / kVoiceRateHz; }
  VectorXd Shape(double onset) const {
    VectorXd shape(static_cast<Index>(offsets.size()));
    for (std::size_t n = 0; n < offsets.size(); ++n) {
      shape(static_cast<Index>(n)) = m_Burst(TimeOf(n) - onset);
    }
    return shape;
  }
  MatrixXd Shapes(double onset) const {
    MatrixXd shapes(static_cast<Index>(offsets.size()), static_cast<Index>(1 + kReflectionsS.size()));
    shapes.col(0) = Shape(onset);
    for (std::size_t n = 0; n < kReflectionsS.size(); ++n) {
      shapes.col(static_cast<Index>(n + 1)) = Shape(onset + kReflectionsS[n]);
    }
    return shapes;
  }
  // Reflections at all times after the onset, each with a phase of its own.
  MatrixXd Reverberation(double onset) const {
    const auto count = static_cast<Index>(offsets.size());
    MatrixXd sum = MatrixXd::Zero(count, count);
    const double lastS = TimeOf(offsets.size() - 1) - onset + kBeforeS;
    for (double after = kReverberationStepS / 2.0; after < lastS; after += kReverberationStepS) {
      const VectorXd shape = Shape(onset + after);
      sum += kReverberationStepS * std::exp(-kDecayPerS * after) * shape * shape.transpose();
    }
    return sum;
  }
  void AddCase(const MatrixXd& covariance, const MatrixXd& shapes) {
    const Eigen::LLT<MatrixXd> factor(covariance);
    Case made;
    made.whitening = factor.matrixL().solve(MatrixXd::Identity(covariance.rows(), covariance.cols()));
    made.shapes = made.whitening * shapes;
    made.logDeterminants = made.whitening.diagonal().array().log();
    for (Index n = 1; n < made.logDeterminants.size(); ++n) {
      made.logDeterminants(n) += made.logDeterminants(n - 1);
    }
    cases.push_back(std::move(made));
  }

  const FilteredBurst m_Burst;
};

OnsetModel::OnsetModel(const tools::SoundDesign& sound) : m_Tables(std::make_unique<const Tables>(sound)) {}

OnsetModel::~OnsetModel() = default;

const std::vector<std::int64_t>& OnsetModel::Offsets() const {
  return m_Tables->offsets;
}

namespace {

// The logarithms of what the hypotheses weigh are kept against the largest so far.
class WeightedSums {
public:
  void Add(double logWeight, double onset, double amplitude, bool isReflected) {
    if (logWeight > m_Largest) {
      const double less = std::exp(m_Largest - logWeight);
      for (double* const sum : {&weight, &onsetSum, &squareSum, &amplitudeSum, &reflectedSum}) {
        *sum *= less;
      }
      m_Largest = logWeight;
    }
    const double share = std::exp(logWeight - m_Largest);
    weight += share;
    onsetSum += share * onset;
    squareSum += share * onset * onset;
    amplitudeSum += share * amplitude;
    reflectedSum += isReflected ? share : 0.0;
  }
  bool IsNegligible(double logWeight) const { return logWeight < m_Largest - kNegligible; }

  double weight = 0.0;
  double onsetSum = 0.0;
  double squareSum = 0.0;
  double amplitudeSum = 0.0;
  double reflectedSum = 0.0;

private:
  static constexpr double kNegligible = 25.0;
  double m_Largest = -1e300;
};

double ReverberationDb(double power, double amplitude) {
  return power > 0.0 ? ToDb(power / (amplitude * amplitude + 1e-12)) : kNoneDb;
}

double LogPrior(double reverberationDb) {
  const double deviations = (reverberationDb - kExpectedDb) / kDeviationDb;
  return -0.5 * deviations * deviations;
}

}  // namespace

Onset OnsetModel::Fit(const std::vector<std::complex<double>>& values, std::size_t usable) const {
  const Tables& tables = *m_Tables;
  const auto count = static_cast<Index>(std::min(usable, values.size()));
  MatrixXd parts(count, 2);
  for (Index n = 0; n < count; ++n) {
    parts(n, 0) = values[static_cast<std::size_t>(n)].real();
    parts(n, 1) = values[static_cast<std::size_t>(n)].imag();
  }
  const std::size_t hypotheses = kReflectionsS.size() * tables.reflections.size();
  const double logNone = std::log(1.0 - kReflectionShare);
  const double logEach = std::log(kReflectionShare / static_cast<double>(hypotheses));
  WeightedSums sums;
  std::size_t number = 0;
  for (const double onset : tables.onsets) {
    for (const double power : tables.powers) {
      const Tables::Case& made = tables.cases[number++];
      const MatrixXd white = made.whitening.topLeftCorner(count, count).triangularView<Eigen::Lower>() * parts;
      const auto shapes = made.shapes.topRows(count);
      const MatrixXd products = shapes.transpose() * white;
      const MatrixXd norms = shapes.transpose() * shapes;
      const double base = -white.squaredNorm() + 2.0 * made.logDeterminants(count - 1);
      const auto add = [&](std::complex<double> product, double norm, double logShare, bool isReflected) {
        const double logLikelihood = base + std::norm(product) / norm - std::log(norm) + logShare;
        if (!sums.IsNegligible(logLikelihood)) {
          const double amplitude = std::abs(product) / norm;
          sums.Add(logLikelihood + LogPrior(ReverberationDb(power, amplitude)), onset, amplitude, isReflected);
        }
      };
      const std::complex<double> direct(products(0, 0), products(0, 1));
      const double directNorm = norms(0, 0) + 1e-12;
      add(direct, directNorm, logNone, false);
      for (Index n = 1; n < products.rows(); ++n) {
        const std::complex<double> reflected(products(n, 0), products(n, 1));
        for (const std::complex<double>& gain : tables.reflections) {
          add(direct + std::conj(gain) * reflected,
              directNorm + std::norm(gain) * norms(n, n) + 2.0 * gain.real() * norms(0, n), logEach, true);
        }
      }
    }
  }
  Onset result;
  result.s = sums.onsetSum / sums.weight;
  result.deviationS = std::sqrt(std::max(0.0, sums.squareSum / sums.weight - result.s * result.s));
  result.amplitude = sums.amplitudeSum / sums.weight;
  result.reflection = sums.reflectedSum / sums.weight;
  return result;
}

}  // namespace orvex::fine
