// What a sweep varies: one axis per property of the room, the remote and the test sound.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace orvex::tools {

// In the order of the table; the earlier ones turn slowest. Each is drawn in this order: a new one goes to the end, and
// the rooms that there were stay as they are.
namespace axis {
enum Axis : std::size_t {
  kDifferenceMs,
  kToneDb,
  kDirectToReverberantDb,
  kRt60S,
  kTvGainDb,
  kOpticalGainDb,
  kRateErrorPpm,
  kJitterMs,
  kLossPercent,
  kWayMs,
  kVoiceLatencyMs,
  kStartMs,
  kLockMs,
  kBurstMs,
  kRampMs,
  kSkewMs,
  kPairs,
  kSpacingMs,
  kLeadInMs,
  kTailMs,
  kLevelDbfs,
  kMissedTone,
  kSilent,
  kDisturbance,
  kDisturbanceDbfs,
  kDisturbanceBlocks,
  kLateMs,
  kFinishedMark,
  kReflections,
  kReflectionMs,
  kReflectionDb,
  kLostBlocks,
  kCutMs,
  kCount
};
}  // namespace axis
using axis::Axis;

struct AxisKind {
  const char* name;       // of the option and of the column
  const char* text;       // for --help
  std::string byDefault;  // in the form that AxisValues reads
  double low;
  double high;
  std::vector<std::string> names = {};  // of the values 0, 1, … of an axis that has no numbers
  bool isOfFineReading = false;         // changes nothing in a run of the receiver
};

const std::array<AxisKind, axis::kCount>& AxisKinds();

// The values of one axis: a single one, a list with one table row for each, or a range from which each room draws.
class AxisValues {
public:
  // Reads "V", "A,B,C", "A:B" or "+-A:B" (either sign). Throws std::invalid_argument, naming axis, text and what was
  // expected.
  AxisValues(const AxisKind& kind, const std::string& text);

  std::size_t Rows() const { return m_Values.size(); }
  // `row` of 0 to Rows() - 1. Draws always, so that other axes' draws do not depend on this one.
  double Draw(std::size_t row, std::mt19937_64& random) const;
  // As it was given; a name, where the axis has names.
  const std::string& Text(std::size_t row) const { return m_Texts[row]; }

private:
  std::vector<double> m_Values;  // or the lower end of the range
  std::vector<std::string> m_Texts;
  double m_Width = 0.0;
  bool m_EitherSign = false;
};

}  // namespace orvex::tools
