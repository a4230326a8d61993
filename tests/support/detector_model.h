// A second implementation of the detector, for comparison: what the receiver has to report about each block, given the
// block's magnitudes.
#pragma once

#include <optional>
#include <ostream>
#include <tuple>
#include <utility>
#include <vector>

#include "Application/OrvexReceiverObserver.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::test {

enum class Step { kAmbientKnown, kFirstTone, kSequenceError, kNoisyTone, kPair, kAbnormalInput, kExtend };

// One step of the receiver, as its observer is told of it.
struct Report {
  Step step = Step::kAmbientKnown;
  int buffer = 0;
  detector::Tone tone = detector::Tone::k17000Hz;
  int number = 0;              // first buffer of a pair or of a sequence error, count of a noisy tone
  std::vector<double> values;  // ambient means, needed magnitude, or difference in seconds
};

inline bool operator==(const Report& a, const Report& b) {
  return std::tie(a.step, a.buffer, a.tone, a.number, a.values) ==
         std::tie(b.step, b.buffer, b.tone, b.number, b.values);
}

inline std::ostream& operator<<(std::ostream& out, const Report& report) {
  static const char* const kNames[] = {"ambient known", "first tone",     "sequence error", "noisy tone",
                                       "pair",          "abnormal input", "extend"};
  out << kNames[static_cast<int>(report.step)] << " in buffer " << report.buffer << ", "
      << (report.tone == detector::Tone::k17000Hz ? "17 kHz, " : "19 kHz, ") << report.number;
  for (const double value : report.values) {
    out << ", " << value;
  }
  return out;
}

// Collects what the receiver reports about one block.
class BlockReports : public OrvexReceiverObserver {
public:
  void Clear() {
    magnitudes.reset();
    reports.clear();
  }

  void OnBlock(std::int32_t /*buffer*/, const ToneMagnitudes& measured, const Levels& ambientBefore) override {
    magnitudes = measured;
    ambient = ambientBefore;
  }
  void OnAmbientKnown(std::int32_t buffer, const Levels& means) override {
    reports.push_back({Step::kAmbientKnown, buffer, {}, 0, ValuesOf(means)});
  }
  void OnFirstTone(std::int32_t buffer, Tone tone, double needed) override {
    reports.push_back({Step::kFirstTone, buffer, tone, 0, {needed}});
  }
  void OnSequenceError(std::int32_t buffer, Tone tone, std::int32_t first, double needed) override {
    reports.push_back({Step::kSequenceError, buffer, tone, first, {needed}});
  }
  void OnNoisyTone(std::int32_t buffer, Tone tone, std::int32_t count) override {
    reports.push_back({Step::kNoisyTone, buffer, tone, count, {}});
  }
  void OnPair(std::int32_t buffer, Tone tone, std::int32_t first, double differenceS) override {
    reports.push_back({Step::kPair, buffer, tone, first, {differenceS}});
  }
  void OnAbnormalInput(std::int32_t buffer) override { reports.push_back({Step::kAbnormalInput, buffer, {}, 0, {}}); }
  void OnExtend(std::int32_t buffer) override { reports.push_back({Step::kExtend, buffer, {}, 0, {}}); }

  static std::vector<double> ValuesOf(const Levels& levels) {
    return {levels.at17000, levels.at17500, levels.at18000, levels.at19000};
  }

  std::optional<ToneMagnitudes> magnitudes;  // none: the block was not analysed
  Levels ambient;                            // sums or means before this block
  std::vector<Report> reports;
};

// The state of a receiver during one recording.
class DetectorModel {
public:
  // What the receiver's getters have to answer.
  int buffer = 0;
  int analysed = 0;
  int direction = 0;
  int noisy = 0;
  int progress = 0;
  double seconds = 0.0;
  // Set from outside.
  bool hearable = false;
  bool finished = false;

  // Counts a block, which may be a lost one. Returns whether its samples, if it has any, are analysed.
  bool Count() {
    m_Reports.clear();
    if (buffer > 0 && buffer % 250 == 0) {
      AddReport(Step::kExtend);
    }
    return ++buffer >= 5;
  }
  void Analyse(const detector::ToneMagnitudes& block) {
    if (hearable && (buffer == 15 || buffer == 25)) {
      progress = buffer == 15 ? 1 : 2;
    }
    if (!hearable && analysed > 30) {
      if (m_Ambient[k17000] > 0 && block.at17000 >= 50 * m_Ambient[k17000] && block.at17000 > block.at19000) {
        HandleTone(detector::Tone::k17000Hz, block.at17000, block.at19000, block.ratio17);
      }
      if (m_Ambient[k19000] > 0 && block.at19000 > 50 * m_Ambient[k19000] && block.at19000 > block.at17000) {
        HandleTone(detector::Tone::k19000Hz, block.at19000, block.at17000, block.ratio19);
      }
    }
    LearnAmbient(BlockReports::ValuesOf(block));
    ++analysed;
  }
  // What the receiver has to report about the last block, in order.
  const std::vector<Report>& Reports() const { return m_Reports; }
  // Levels at 17000, 17500, 18000 and 19000 Hz: the sums so far, and from block 30 on the means.
  const std::vector<double>& Ambient() const { return m_Ambient; }

private:
  enum Place { k17000 = 0, k19000 = 3 };

  void AddReport(Step step, detector::Tone tone = {}, int number = 0, std::vector<double> values = {}) {
    m_Reports.push_back({step, buffer, tone, number, std::move(values)});
  }

  void LearnAmbient(const std::vector<double>& block) {
    for (std::size_t i = 0; i < block.size(); ++i) {
      if (analysed < 30) {
        m_Ambient[i] += block[i];
      } else if (analysed == 30) {
        m_Ambient[i] /= 30;
      }
    }
    if (analysed == 30) {
      progress = 1;
      AddReport(Step::kAmbientKnown, {}, 0, m_Ambient);
    }
  }

  // `own` is the magnitude of the tone that stands out, `other` that of the other tone.
  void HandleTone(detector::Tone tone, double own, double other, double ratio) {
    const int sign = tone == detector::Tone::k17000Hz ? 1 : -1;
    double& floor = sign > 0 ? m_Floor17 : m_Floor19;
    if (ratio < 5) {
      AddReport(Step::kNoisyTone, tone, ++noisy);
      progress = noisy > 10 ? 0 : progress;
      if (noisy > 10 && sign < 0) {
        AddReport(Step::kAbnormalInput);
      }
    } else if (direction == 0) {
      TakeFirstTone(tone, sign, other);
    } else if (direction == sign || finished) {
      return;
    } else if (buffer - m_First > 19 || own < floor) {
      AddReport(Step::kSequenceError, tone, m_First, {floor});
      TakeFirstTone(tone, sign, other);
    } else {
      floor = own;
      seconds = -sign * (buffer - m_First) * kVoiceBlockSamples / kVoiceRateHz;
      AddReport(Step::kPair, tone, m_First, {seconds});
    }
  }
  // The other tone must later be at least as strong as it is within this block already.
  void TakeFirstTone(detector::Tone tone, int sign, double other) {
    m_First = buffer;
    direction = sign;
    progress = 1;
    double& floor = sign > 0 ? m_Floor19 : m_Floor17;
    floor = other > floor ? other : floor;
    AddReport(Step::kFirstTone, tone, 0, {floor});
  }

  std::vector<double> m_Ambient = std::vector<double>(4, 0.0);
  double m_Floor17 = 0.0;  // magnitudes that a second tone has to reach
  double m_Floor19 = 0.0;
  int m_First = 0;
  std::vector<Report> m_Reports;
};

}  // namespace orvex::test
