// What the model of the onset finds in bursts of which everything is known.
#include "fine/onset_model.h"

#include <gtest/gtest.h>

#include <random>

#include "fine/burst_shape.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::fine {
namespace {

using Values = std::vector<std::complex<double>>;

class FineOnsetModel : public ::testing::Test {
protected:
  static const OnsetModel& Model() {
    static const OnsetModel model({});
    return model;
  }
  // Without noise, in the unit of what there would be.
  static Values Burst(double onsetS, std::complex<double> amplitude) {
    static const FilteredBurst burst({});
    Values values;
    for (const std::int64_t offset : Model().Offsets()) {
      values.push_back(amplitude * burst(static_cast<double>(offset) / kVoiceRateHz - onsetS));
    }
    return values;
  }
  static Onset FitAll(const Values& values) { return Model().Fit(values, values.size()); }
};

TEST_F(FineOnsetModel, ValuesReachFrom3MsBeforeTo5MsAfterThePlace) {
  const std::vector<std::int64_t>& offsets = Model().Offsets();
  EXPECT_NEAR(-3e-3, static_cast<double>(offsets.front()) / kVoiceRateHz, 3e-5);
  EXPECT_NEAR(5e-3, static_cast<double>(offsets.back()) / kVoiceRateHz, 3e-4);
}

TEST_F(FineOnsetModel, FindsTheOnsetOfANoiselessBurst) {
  for (const double onsetS : {-0.9e-3, -0.4e-3, -13e-6, 0.0, 7e-6, 0.31e-3, 0.9e-3}) {
    for (const double amplitude : {50.0, 100.0}) {
      const Onset onset = FitAll(Burst(onsetS, std::polar(amplitude, 2.0)));
      EXPECT_NEAR(onsetS, onset.s, 2e-6) << amplitude;
      EXPECT_NEAR(amplitude, onset.amplitude, 0.03 * amplitude) << onsetS;
    }
  }
}

TEST_F(FineOnsetModel, IsTheLessSureTheWeakerTheBurst) {
  double before = 0.0;
  for (const double amplitude : {200.0, 100.0, 50.0, 25.0}) {
    const Onset onset = FitAll(Burst(0.2e-3, amplitude));
    EXPECT_GT(onset.deviationS, 1.3 * before) << amplitude;
    before = onset.deviationS;
  }
  EXPECT_LT(before, 0.3e-3);
}

TEST_F(FineOnsetModel, FindsTheOnsetInTheFirstPartOfTheValues) {
  constexpr double kOnsetS = 0.1e-3;
  const Values values = Burst(kOnsetS, 100.0);
  const Onset all = FitAll(values);
  Values first = values;
  std::size_t usable = first.size();
  while (static_cast<double>(Model().Offsets()[usable - 1]) / kVoiceRateHz > kOnsetS + 1.5e-3) {
    first[--usable] = 1e6;
  }
  const Onset cut = Model().Fit(first, usable);
  EXPECT_NEAR(kOnsetS, cut.s, 50e-6);
  EXPECT_GT(cut.deviationS, all.deviationS);
}

TEST_F(FineOnsetModel, NoticesAReflectionWithinAMillisecond) {
  const Values direct = Burst(0.0, 200.0);
  const Values reflected = Burst(0.5e-3, std::polar(100.0, 2.5));
  Values both;
  for (std::size_t n = 0; n < direct.size(); ++n) {
    both.push_back(direct[n] + reflected[n]);
  }
  const Onset clean = FitAll(direct);
  const Onset onset = FitAll(both);
  EXPECT_LT(clean.reflection, 0.05);
  EXPECT_GT(onset.reflection, 0.5);
  EXPECT_NEAR(0.0, onset.s, 50e-6);
}

TEST_F(FineOnsetModel, IsLessSureInReverberation) {
  Values values = Burst(0.0, 200.0);
  const Onset clean = FitAll(values);
  // Reflections of any phase, 0.1 ms apart. Their power per second is 144 times that of the direct sound.
  std::mt19937 random(1);
  std::uniform_real_distribution<double> phase(0.0, 2.0 * tools::kPi);
  for (int n = 1; n < 50; ++n) {
    const Values late = Burst(n * 1e-4, std::polar(24.0, phase(random)));
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] += late[i];
    }
  }
  const Onset onset = FitAll(values);
  EXPECT_GT(onset.deviationS, 2.0 * clean.deviationS);
  EXPECT_NEAR(0.0, onset.s, 0.15e-3);
}

}  // namespace
}  // namespace orvex::fine
