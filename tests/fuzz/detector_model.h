// What the receiver has to report of each block, given the levels that it measured.
#pragma once

#include <tuple>
#include <vector>

#include "receiver/receiver_rig.h"

namespace orvex::fuzz {

enum class Kind { kExtend, kAmbient, kNoisy, kFirst, kSequence, kResult, kAbnormal };

struct Report {
  Kind kind;
  tools::Tone tone = tools::Tone::k17000Hz;  // of kNoisy and kFirst
  int first = 0;                             // of kResult: buffers; of kNoisy: the count
  int second = 0;
  double seconds = 0.0;
};

inline bool operator==(const Report& a, const Report& b) {
  return std::tie(a.kind, a.tone, a.first, a.second, a.seconds) ==
         std::tie(b.kind, b.tone, b.first, b.second, b.seconds);
}

// One recording.
class DetectorModel {
public:
  // As the receiver's getters.
  int buffer = 0;
  int analysed = 0;
  int direction = 0;
  int noisy = 0;
  int progress = 0;
  double seconds = 0.0;

  // A block begins. True: its samples are analysed.
  bool Count() {
    m_Reports.clear();
    if (buffer > 0 && buffer % 250 == 0) {
      m_Reports.push_back({Kind::kExtend});
    }
    return ++buffer >= 5;
  }
  void Analyse(const tools::BlockLevels& levels, bool hearable, bool finished) {
    if (hearable && (buffer == 15 || buffer == 25)) {
      progress = buffer == 15 ? 1 : 2;
    }
    if (!hearable && analysed > 30) {
      if (m_Mean17 > 0 && levels.at17000 >= 50 * m_Mean17 && levels.at17000 > levels.at19000) {
        Find(tools::Tone::k17000Hz, levels.at17000, levels.at19000, levels.ratio17, finished);
      }
      if (m_Mean19 > 0 && levels.at19000 > 50 * m_Mean19 && levels.at19000 > levels.at17000) {
        Find(tools::Tone::k19000Hz, levels.at19000, levels.at17000, levels.ratio19, finished);
      }
    }
    if (analysed < 30) {
      m_Mean17 += levels.at17000;
      m_Mean19 += levels.at19000;
    } else if (analysed == 30) {
      m_Mean17 /= 30;
      m_Mean19 /= 30;
      progress = 1;
      m_Reports.push_back({Kind::kAmbient});
    }
    ++analysed;
  }
  // Of the last block, in their order.
  const std::vector<Report>& Reports() const { return m_Reports; }

private:
  // `own` is the level of the tone that stands out, `other` that of the other tone.
  void Find(tools::Tone tone, double own, double other, double ratio, bool finished) {
    const int sign = tone == tools::Tone::k17000Hz ? 1 : -1;
    double& floor = sign > 0 ? m_Floor17 : m_Floor19;
    if (ratio < 5) {
      m_Reports.push_back({Kind::kNoisy, tone, ++noisy});
      progress = noisy > 10 ? 0 : progress;
      if (noisy > 10 && sign < 0) {
        m_Reports.push_back({Kind::kAbnormal});
      }
    } else if (direction == 0) {
      Begin(tone, sign, other);
    } else if (direction == sign || finished) {
      return;
    } else if (buffer - m_First > 19 || own < floor) {
      m_Reports.push_back({Kind::kSequence});
      Begin(tone, sign, other);
    } else {
      floor = own;
      seconds = -sign * (buffer - m_First) * 768.0 / 46545.0;
      m_Reports.push_back({Kind::kResult, tools::Tone::k17000Hz, m_First, buffer, seconds});
    }
  }
  void Begin(tools::Tone tone, int sign, double other) {
    m_Reports.push_back({Kind::kFirst, tone});
    m_First = buffer;
    direction = sign;
    progress = 1;
    double& floor = sign > 0 ? m_Floor19 : m_Floor17;
    floor = other > floor ? other : floor;
  }

  double m_Mean17 = 0.0;  // the sum, until there is a mean
  double m_Mean19 = 0.0;
  double m_Floor17 = 0.0;  // that a second tone has to reach
  double m_Floor19 = 0.0;
  int m_First = 0;
  std::vector<Report> m_Reports;
};

}  // namespace orvex::fuzz
