// Hundreds of random recordings, heard by the receiver and by a model of it: they have to report the same.
#include <random>

#include "support/detector_model.h"
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;

// The same numbers on every machine.
class Dice {
public:
  explicit Dice(unsigned int seed) : m_Engine(seed) {}
  int Below(int limit) { return static_cast<int>(m_Engine() % static_cast<unsigned int>(limit)); }
  bool OneIn(int chances) { return Below(chances) == 0; }

private:
  std::mt19937 m_Engine;
};

Samples Noise(Dice& dice, int loudest) {
  Samples samples;
  for (int n = 0; n < kVoiceBlockSamples; ++n) {
    samples.push_back(static_cast<std::int16_t>(dice.Below(2 * loudest + 1) - loudest));
  }
  return samples;
}

Samples RandomAmbience(Dice& dice) {
  switch (dice.Below(6)) {
    case 0:
      return Click(4);
    case 1:
      return dice.OneIn(4) ? Samples(kVoiceBlockSamples, 0) : Click(1);
    case 2:
      return Tone17(1.0 + dice.Below(4), 1.0);
    case 3:
      return Tone19(1.0 + dice.Below(4), 1.0);
    default:
      return Noise(dice, 1 + dice.Below(8));
  }
}

// A sound of the time after the ambience: tones of all strengths, clean and noisy, alone and together.
Samples RandomSound(Dice& dice, const Samples& ambience, bool noisyRoom) {
  const double strong = dice.OneIn(3) ? 20.0 + dice.Below(3000) : 800.0 + dice.Below(100);
  const double weak = strong * dice.Below(100) / 100.0;
  const double neighbour = strong * (20 + dice.Below(60)) / 100.0;
  switch (noisyRoom ? 5 + dice.Below(3) : dice.Below(9)) {
    case 0:
      return ambience;
    case 1:
    case 2:
      return Tone17(strong, dice.OneIn(2) ? weak : 0.0);
    case 3:
    case 4:
      return Tone19(strong, dice.OneIn(2) ? weak : 0.0);
    case 5:
      return Block({strong, 0.0, neighbour, weak, 0.0, 0.0});
    case 6:
      return Block({weak, neighbour, 0.0, strong, 0.0, 0.0});
    case 7:
      return Block({strong, 0.0, 0.0, weak, 100.0 * dice.Below(200), 0.0});
    default:
      return dice.OneIn(2) ? Click(static_cast<std::int16_t>(dice.Below(30000))) : Noise(dice, 1 + dice.Below(3000));
  }
}

class RandomRecordings : public ReceiverTest, public testing::WithParamInterface<unsigned int> {
protected:
  RandomRecordings() { receiver.SetObserver(&reported); }

  void Record(Dice& dice);
  void CompareBlock(const VoiceData* record);
  void HearLike(Dice& dice, const Samples& sound);
  void CompareMagnitudes(const VoiceData& record) const;
  void CompareState() const;
  void CompareFiles();

  BlockReports reported;
  DetectorModel model;
  // What the dump has to hold.
  std::string audio;
  std::string results;
  // How often the model took these steps: random recordings that seldom lead to them would test little.
  int pairs = 0;
  int sequenceErrors = 0;
  int abnormal = 0;
};

// Compares within a tolerance, as the last digits depend on the order of the arithmetic.
void RandomRecordings::CompareMagnitudes(const VoiceData& record) const {
  Samples samples;
  for (std::size_t at = 0; at + 1 < record.byteCount && samples.size() < kVoiceBlockSamples; at += 2) {
    const int bits = record.bytes[at] + 256 * record.bytes[at + 1];
    samples.push_back(static_cast<std::int16_t>(bits >= 32768 ? bits - 65536 : bits));
  }
  const Levels levels = LevelsOf(samples);
  const auto isClose = [](long double expected, double measured) {
    return std::fabs(measured - static_cast<double>(expected)) <= 1e-6 + 1e-9 * std::fabs(measured);
  };
  ASSERT_TRUE(isClose(levels.at17000, reported.magnitudes->at17000));
  ASSERT_TRUE(isClose(levels.at17500, reported.magnitudes->at17500));
  ASSERT_TRUE(isClose(levels.at18000, reported.magnitudes->at18000));
  ASSERT_TRUE(isClose(levels.at19000, reported.magnitudes->at19000));
}

void RandomRecordings::CompareState() const {
  ASSERT_EQ(receiver.GetBufferCount(), model.buffer);
  ASSERT_EQ(receiver.GetBlockIndex(), model.analysed);
  ASSERT_EQ(receiver.GetSoundType(), model.progress);
  ASSERT_EQ(receiver.GetDirection(), model.direction);
  ASSERT_EQ(receiver.GetNoiseCount(), model.noisy);
}

void RandomRecordings::CompareBlock(const VoiceData* record) {
  reported.Clear();
  HearRecord(record);
  const bool isAnalysed = model.Count() && record != nullptr;
  ASSERT_EQ(reported.magnitudes.has_value(), isAnalysed);
  if (isAnalysed) {
    ASSERT_NO_FATAL_FAILURE(CompareMagnitudes(*record));
    ASSERT_EQ(BlockReports::ValuesOf(reported.ambient), model.Ambient());
    model.Analyse(*reported.magnitudes);
  }
  ASSERT_EQ(reported.reports, model.Reports());
  ASSERT_NO_FATAL_FAILURE(CompareState());
  if (record != nullptr) {
    audio.append(record->bytes, record->bytes + record->byteCount);
  }
  for (const Report& report : model.Reports()) {
    sequenceErrors += report.step == Step::kSequenceError ? 1 : 0;
    abnormal += report.step == Step::kAbnormalInput ? 1 : 0;
    if (report.step == Step::kPair) {
      ++pairs;
      results += Text("[RESULT] [%d] - [%d] : %0.4f\n", report.number, report.buffer, report.values[0]);
      results += "result_set_value : [main: 0], [spdif: 100]\n";
    }
  }
}

// Most blocks come as they are; some are lost, or arrive short, odd or longer than they should be.
void RandomRecordings::HearLike(Dice& dice, const Samples& sound) {
  if (dice.OneIn(40)) {
    CompareBlock(nullptr);
    return;
  }
  std::vector<std::uint8_t> bytes = LittleEndian(sound);
  if (dice.OneIn(40)) {
    bytes.resize(static_cast<std::size_t>(dice.Below(2000)), 0x55);
  }
  const VoiceData record{static_cast<std::uint16_t>(bytes.size()), bytes.data()};
  CompareBlock(&record);
}

void RandomRecordings::CompareFiles() {
  EXPECT_EQ(receiver.GetAudioTimeDifference(), model.seconds);
  EXPECT_EQ(DumpedResults(), results);
  EXPECT_TRUE(DumpedAudio() == audio);
}

void RandomRecordings::Record(Dice& dice) {
  const bool hearable = dice.OneIn(12);
  model = DetectorModel();
  model.hearable = hearable;
  audio.clear();
  results.clear();
  receiver.SetHearable(hearable);
  Start();
  const Samples ambience = RandomAmbience(dice);
  // A few sounds that come again and again, so that levels are often equal to the last bit.
  const bool noisyRoom = dice.OneIn(5);
  std::vector<Samples> sounds;
  for (int sound = 0; sound < 6; ++sound) {
    sounds.push_back(RandomSound(dice, ambience, noisyRoom));
  }
  const int length = dice.OneIn(10) ? 300 : 80 + dice.Below(60);
  for (int heard = 0, quietFor = 34; heard < length; ++heard, --quietFor) {
    if (dice.OneIn(25)) {
      quietFor = 12 + dice.Below(15);
    }
    if (dice.OneIn(60)) {
      model.finished = dice.OneIn(3);
      receiver.SetFinished(model.finished);
    }
    const Samples& loud = sounds[static_cast<std::size_t>(dice.Below(static_cast<int>(sounds.size())))];
    ASSERT_NO_FATAL_FAILURE(HearLike(dice, quietFor > 0 ? ambience : loud)) << "block " << heard;
  }
  CompareFiles();
  receiver.StopBTRecoder();
}

TEST_P(RandomRecordings, AreHeardAsTheModelHearsThem) {
  constexpr unsigned int kRecordings = 40;
  for (unsigned int recording = 0; recording < kRecordings; ++recording) {
    SCOPED_TRACE("recording " + std::to_string(recording));
    Dice dice(GetParam() * kRecordings + recording);
    ASSERT_NO_FATAL_FAILURE(Record(dice));
  }
  EXPECT_GT(pairs, 25);
  EXPECT_GT(sequenceErrors, 10);
  EXPECT_GT(abnormal, 10);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomRecordings, testing::Range(0U, ORVEX_RANDOM_SEEDS));

}  // namespace
