// Takes the reasons from the recorded events and from the levels of the blocks that decided.
#include "replay/explanation.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "replay/findings.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr std::size_t kErrorsToTell = 3;

std::string Described(Tone tone) {
  return fmt::format("{} ({})", NameOf(tone), OriginOf(tone));
}

std::string Margins(const RunRecord& run, std::int32_t buffer, Tone tone) {
  const auto block = std::find_if(run.GetBlocks().begin(), run.GetBlocks().end(),
                                  [&](const RecordedBlock& one) { return one.buffer == buffer; });
  return fmt::format(
      "{} stood {:.1f} dB above its ambient mean, where {:.1f} dB are needed, and {:.1f} dB above its neighbours, "
      "where {:.1f} dB are needed.",
      NameOf(tone), Decibels(block->levels.At(tone) / run.GetAmbient()->At(tone)), Decibels(detector::kToneThreshold),
      Decibels(block->levels.Ratio(tone)), Decibels(detector::kNeighbourThreshold));
}

// Says whether a tone was found in a recording that gave no difference, or else how close it came.
std::string DescribeTone(const RunRecord& run, Tone tone) {
  const ToneFindings found = FindTone(run, tone);
  const double ambient = run.GetAmbient()->At(tone);
  if (ambient == 0.0) {
    return fmt::format("{} cannot be found: its ambient mean is exactly 0, which is digital silence.", Described(tone));
  }
  if (found.clean > 0) {
    return fmt::format("{} was found in {}, first in {}.", Described(tone), Counted(found.clean, "block"),
                       BufferText(found.firstClean));
  }
  if (found.noisy > 0) {
    return fmt::format(
        "{} reached its threshold in {}, but {} drowned by its neighbours 17.5 and 18 kHz: at best it stood "
        "{:.1f} dB above them, where {:.1f} dB are needed.",
        Described(tone), Counted(found.reaching, "block"),
        found.noisy == found.reaching ? "was" : fmt::format("in {} of them was", found.noisy),
        Decibels(found.bestNoisyRatio), Decibels(detector::kNeighbourThreshold));
  }
  if (found.covered > 0) {
    return fmt::format("{} reached its threshold in {}, but {} was the stronger one there.", Described(tone),
                       Counted(found.covered, "block"), NameOf(Other(tone)));
  }
  if (!found.strongest) {
    return fmt::format("{}: the recording ends before tones are looked for.", Described(tone));
  }
  const bool isOtherThere = Judge(run, *found.strongest, Other(tone)) == Verdict::kClean;
  const std::string beside = isOtherThere ? fmt::format(" while {} sounded", NameOf(Other(tone))) : "";
  const double reached = Decibels(found.strongest->levels.At(tone) / ambient);
  return fmt::format(
      "{} never reached its threshold: its strongest block, {}, stood {:.1f} dB above the ambient mean{}, {:.1f} dB "
      "short of the {:.1f} dB that are needed.",
      Described(tone), BufferText(found.strongest->buffer), reached, beside,
      Decibels(detector::kToneThreshold) - reached, Decibels(detector::kToneThreshold));
}

std::string DescribeError(const SequenceError& error) {
  const std::string what =
      error.IsTooLate() ? fmt::format("came {} buffers after {}, where at most {} are allowed",
                                      error.buffer - error.first, NameOf(Other(error.tone)), detector::kPairingSpan)
                        : fmt::format("was {:.1f} dB weaker than in the block of the first tone or of the last pair",
                                      Decibels(error.needed / error.level));
  return fmt::format("Sequence error in {}: {} {}, and was taken as a new first tone.", BufferText(error.buffer),
                     NameOf(error.tone), what);
}

void AddDisturbances(const RunRecord& run, std::int32_t untilBuffer, std::vector<std::string>& reasons) {
  const auto isNoisy = [&](const RecordedEvent& event) {
    return event.buffer <= untilBuffer && (event.kind == EventKind::kNoisy17 || event.kind == EventKind::kNoisy19);
  };
  const auto noisy = std::count_if(run.GetEvents().begin(), run.GetEvents().end(), isNoisy);
  if (noisy > 0) {
    reasons.push_back(fmt::format("{} {} rejected as noisy; from number {} on, one of 19 kHz ends the run.",
                                  Counted(noisy, "tone"), noisy == 1 ? "was" : "were", detector::kNoiseLimit + 1));
  }
  std::vector<SequenceError> errors = run.GetSequenceErrors();
  errors.erase(std::remove_if(errors.begin(), errors.end(),
                              [=](const SequenceError& error) { return error.buffer > untilBuffer; }),
               errors.end());
  const std::size_t told = std::min(errors.size(), kErrorsToTell);
  std::transform(errors.begin(), errors.begin() + static_cast<std::ptrdiff_t>(told), std::back_inserter(reasons),
                 DescribeError);
  if (errors.size() > told) {
    reasons.push_back(Counted(static_cast<std::int64_t>(errors.size() - told), "further sequence error") + ".");
  }
}

bool HasLateToneBefore(const RunRecord& run, std::int32_t buffer) {
  const std::vector<SequenceError>& errors = run.GetSequenceErrors();
  return std::any_of(errors.begin(), errors.end(),
                     [=](const SequenceError& error) { return error.buffer < buffer && error.IsTooLate(); });
}

void MakeDoubtful(Explanation& found, const std::string& reason) {
  if (found.outcome != Outcome::kDoubtful) {
    found.headline += ", but that is doubtful";
  }
  found.outcome = Outcome::kDoubtful;
  found.reasons.push_back(reason);
}

void AddContradiction(const fine::Reading& fine, Explanation& found) {
  MakeDoubtful(found, fmt::format("The fine reading contradicts it: {:+.2f} ms. The two tones belong to different "
                                  "bursts then, or one of them was heard as an echo only.",
                                  *fine.differenceS * 1e3));
}

Explanation ExplainFound(const RunRecord& run, const RecordedEvent& result) {
  const double differenceMs = result.differenceS * 1e3;
  const Tone first = differenceMs > 0.0 ? Tone::k17000Hz : Tone::k19000Hz;
  Explanation found;
  found.outcome = Outcome::kFound;
  found.headline =
      fmt::format("The optical output is {:.1f} ms {}", std::abs(differenceMs), differenceMs > 0.0 ? "late" : "early");
  found.reasons = {
      fmt::format("{} came first, in {}; {} followed in {}: {} of {:.2f} ms.", Described(first),
                  BufferText(result.first), Described(Other(first)), BufferText(result.buffer),
                  Counted(result.buffer - result.first, "buffer"), detector::kBufferS * 1e3),
      fmt::format(
          "The difference is {:+.1f} ms: a television {} the delay of its optical output by it. It is known to within "
          "one buffer, ±{:.1f} ms.",
          differenceMs, differenceMs > 0.0 ? "shortens" : "lengthens", detector::kBufferS * 1e3),
      Margins(run, result.first, first), Margins(run, result.buffer, Other(first))};
  AddDisturbances(run, result.buffer, found.reasons);
  if (HasLateToneBefore(run, result.buffer)) {
    MakeDoubtful(found,
                 "A tone came too late before the pair. When one is missing, or the true difference is larger than can "
                 "be measured, tones of two different bursts make a pair, and the difference is false.");
  }
  const RecordedEvent* last = nullptr;
  std::int64_t results = 0;
  for (const RecordedEvent& event : run.GetEvents()) {
    if (event.kind == EventKind::kResult) {
      last = &event;
      ++results;
    }
  }
  if (results > 1) {
    found.reasons.push_back(fmt::format(
        "The recording goes on, and so did the receiver: {} followed, the last one {:+.1f} ms in {}. A run goes by the "
        "first; what comes after it changes nothing there.",
        Counted(results - 1, "further result"), last->differenceS * 1e3, BufferText(last->buffer)));
  }
  return found;
}

Explanation ExplainAbnormal(const RunRecord& run, const RecordedEvent& abnormal) {
  Explanation given;
  given.outcome = Outcome::kAbnormal;
  given.headline = "Given up: abnormal input";
  given.reasons = {fmt::format("The {} tone in {} was one noisy tone too many: a run tolerates {}.",
                               NameOf(Tone::k19000Hz), BufferText(abnormal.buffer), detector::kNoiseLimit)};
  for (const Tone tone : kTones) {
    given.reasons.push_back(DescribeTone(run, tone));
  }
  AddDisturbances(run, abnormal.buffer, given.reasons);
  return given;
}

std::string HeadlineWithoutDifference(const RunRecord& run) {
  const bool is17 = FindTone(run, Tone::k17000Hz).clean > 0;
  const bool is19 = FindTone(run, Tone::k19000Hz).clean > 0;
  if (is17 && is19) {
    return "No difference: both tones were found, but never as a pair";
  }
  if (!is17 && !is19) {
    return "No difference: neither tone was found";
  }
  return fmt::format("No difference: {} was not found", Described(is17 ? Tone::k19000Hz : Tone::k17000Hz));
}

Explanation ExplainNotFound(const RunRecord& run) {
  Explanation none;
  if (!run.GetAmbient()) {
    none.headline = "No difference: the recording is too short";
    none.reasons = {
        fmt::format("It ends before {}, with which the ambient level is known. Tones are looked for from then on.",
                    BufferText(detector::kAmbientBuffer))};
    return none;
  }
  if (run.IsHearable()) {
    none.headline = "No difference: no tone was looked for";
    none.reasons = {"The receiver was in the hearable mode, which learns the ambient level and nothing more."};
    return none;
  }
  none.headline = HeadlineWithoutDifference(run);
  for (const Tone tone : kTones) {
    none.reasons.push_back(DescribeTone(run, tone));
  }
  AddDisturbances(run, run.GetLastBuffer(), none.reasons);
  return none;
}

}  // namespace

bool DoContradict(const RunRecord& run, const fine::Reading& fine) {
  const auto result = run.FindRunResult();
  return result && fine.differenceS &&
         (result->differenceS < fine.intervalS.low - detector::kBufferS ||
          result->differenceS > fine.intervalS.high + detector::kBufferS);
}

Explanation Explain(const RunRecord& run, const std::optional<fine::Reading>& fine) {
  if (const auto result = run.FindRunResult()) {
    Explanation found = ExplainFound(run, *result);
    if (fine && DoContradict(run, *fine)) {
      AddContradiction(*fine, found);
    }
    return found;
  }
  const auto abnormal = run.FindFirst(EventKind::kAbnormal);
  return abnormal ? ExplainAbnormal(run, *abnormal) : ExplainNotFound(run);
}

std::string InBrief(const RunRecord& run, Tone tone) {
  const ToneFindings found = FindTone(run, tone);
  if (!found.strongest) {
    return "not looked for";
  }
  const double ambient = run.GetAmbient()->At(tone);
  if (ambient == 0.0) {
    return "no threshold, as its ambient mean is 0";
  }
  if (found.clean > 0) {
    return fmt::format("found in {}", Counted(found.clean, "block"));
  }
  if (found.noisy > 0) {
    return "drowned by its neighbours";
  }
  if (found.covered > 0) {
    return fmt::format("covered by {}", NameOf(Other(tone)));
  }
  const double level = found.strongest->levels.At(tone);
  return level == 0.0
             ? "silent"
             : fmt::format("{:.1f} dB short of its threshold", Decibels(detector::kToneThreshold * ambient / level));
}

}  // namespace orvex::tools
