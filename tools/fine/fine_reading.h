// The time between the two tones of the test sound in a recording, to hundredths of a millisecond, and how sure that
// is.
//
// The detector of the service measures in whole blocks of 16.5 ms, because it decides while it listens. Here the whole
// recording is known: all bursts of a tone are laid over one another (burst_alignment.h), and their onset is what a
// model of direct sound, reflection, reverberation and noise makes of their first 5 ms (onset_model.h).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "fine/base_band.h"
#include "fine/burst_search.h"
#include "fine/burst_shape.h"
#include "fine/onset_model.h"
#include "testsound/sound_design.h"

namespace orvex::fine {

struct Interval {
  double low = 0.0;
  double high = 0.0;
};

// Of the base band (base_band.h), in the unit of the recording's samples: a tone of amplitude A has A / 2.
struct EnvelopePoint {
  double s = 0.0;  // from the onset
  double magnitude = 0.0;
};

// One tone's first burst in use.
struct Arrival {
  double sample = 0.0;      // of the recording, at which the direct sound begins
  double deviationS = 0.0;  // of that
  double levelDb = 0.0;     // of the direct sound: the magnitude of a block that it fills, against that of the noise
  double amplitude = 0.0;   // of the direct sound, as that of the envelope
  // Of the mean of the bursts in use, from 3 ms before the onset to 6 ms after it, or to the recording's end.
  std::vector<EnvelopePoint> envelope;
};

// All times are those of the remote's clock, corrected for the rate that the distances of the bursts show.
struct Reading {
  std::optional<double> differenceS;  // optical output minus speaker; positive: the optical output is late
  Interval intervalS;                 // holds the true difference in 95 of 100 rooms; only with a difference
  int pairs = 0;                      // pairs of bursts that agree
  // By how much the remote samples faster than kVoiceRateHz; none: it is not known.
  std::optional<double> ratePpm;
  // 17 kHz and 19 kHz; none: not heard, or not fitted.
  std::array<std::optional<Arrival>, 2> arrivals;
  // Bursts of 17 kHz and 19 kHz were found.
  std::array<bool, 2> isHeard{};
  std::string reason;  // why there is no difference; empty with one
};

// Reads recordings of one sound. Threads may share one object.
class FineReader {
public:
  explicit FineReader(const tools::SoundDesign& sound = {});

  // Of any length: the sound is searched for. The recording may end after at least 2 ms of the second burst, as the
  // service's own dump does. Calls `progress` with the number of steps that are done: the search takes nearly all of
  // the time.
  Reading Read(
      const Samples& samples, const std::function<void(std::size_t)>& progress = [](std::size_t) {}) const;
  // The same, with a recording for each of 17 kHz and 19 kHz: one recording in two versions whose times agree, such as
  // one in which a change of the delay in front of the optical output has been undone.
  Reading ReadTones(
      const std::array<Samples, 2>& ofTones,
      const std::function<void(std::size_t)>& progress = [](std::size_t) {}) const;
  // How many there are. They take about equally long.
  std::size_t Steps() const { return SearchSteps(m_Sound); }

private:
  const tools::SoundDesign m_Sound;
  const FilteredBurst m_Shape;
  const std::array<BaseBand, 2> m_Bands;
  const OnsetModel m_Model;
};

}  // namespace orvex::fine
