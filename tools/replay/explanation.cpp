// Puts the receiver's decision into words.
#include "replay/explanation.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "replay/findings.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr std::size_t kErrorsToTell = 3;

std::string Described(Tone tone) {
  return Text("%s (%s)", NameOf(tone), OriginOf(tone));
}

std::string Margins(const RunRecord& run, std::int32_t buffer, Tone tone) {
  const auto block = std::find_if(run.GetBlocks().begin(), run.GetBlocks().end(),
                                  [&](const RecordedBlock& one) { return one.buffer == buffer; });
  return Text(
      "%s stood %.1f dB above its ambient mean, where %.1f dB are needed, and %.1f dB above its neighbours, where "
      "%.1f dB are needed.",
      NameOf(tone), Decibels(block->levels.At(tone) / run.GetAmbient()->At(tone)), Decibels(detector::kToneThreshold),
      Decibels(block->levels.Ratio(tone)), Decibels(detector::kNeighbourThreshold));
}

// What a tone came to in a recording without a difference.
std::string Fate(const RunRecord& run, Tone tone) {
  const ToneFindings found = FindTone(run, tone);
  const double ambient = run.GetAmbient()->At(tone);
  if (ambient == 0.0) {
    return Text("%s cannot be found: its ambient mean is exactly 0, which is digital silence.",
                Described(tone).c_str());
  }
  if (found.clean > 0) {
    return Text("%s was found in %s, first in %s.", Described(tone).c_str(), Counted(found.clean, "block").c_str(),
                BufferText(found.firstClean).c_str());
  }
  if (found.noisy > 0) {
    return Text(
        "%s reached its threshold in %s, but %s drowned by its neighbours 17.5 and 18 kHz: at best it stood "
        "%.1f dB above them, where %.1f dB are needed.",
        Described(tone).c_str(), Counted(found.reaching, "block").c_str(),
        found.noisy == found.reaching ? "was" : Text("in %d of them was", found.noisy).c_str(),
        Decibels(found.bestNoisyRatio), Decibels(detector::kNeighbourThreshold));
  }
  if (found.covered > 0) {
    return Text("%s reached its threshold in %s, but %s was the stronger one there.", Described(tone).c_str(),
                Counted(found.covered, "block").c_str(), NameOf(Other(tone)));
  }
  if (!found.strongest) {
    return Text("%s: the recording ends before tones are looked for.", Described(tone).c_str());
  }
  const bool isOtherThere = Judge(run, *found.strongest, Other(tone)) == Verdict::kClean;
  const std::string beside = isOtherThere ? Text(" while %s sounded", NameOf(Other(tone))) : "";
  const double reached = Decibels(found.strongest->levels.At(tone) / ambient);
  return Text(
      "%s never reached its threshold: its strongest block, %s, stood %.1f dB above the ambient mean%s, %.1f dB "
      "short of the %.1f dB that are needed.",
      Described(tone).c_str(), BufferText(found.strongest->buffer).c_str(), reached, beside.c_str(),
      Decibels(detector::kToneThreshold) - reached, Decibels(detector::kToneThreshold));
}

std::string DescribeError(const SequenceError& error) {
  const std::string what = error.IsTooLate()
                               ? Text("came %d buffers after %s, where at most %d are allowed",
                                      error.buffer - error.first, NameOf(Other(error.tone)), detector::kPairingSpan)
                               : Text("was %.1f dB weaker than in the block of the first tone or of the last pair",
                                      Decibels(error.needed / error.level));
  return Text("Sequence error in %s: %s %s, and was taken as a new first tone.", BufferText(error.buffer).c_str(),
              NameOf(error.tone), what.c_str());
}

void AddDisturbances(const RunRecord& run, std::int32_t untilBuffer, std::vector<std::string>& reasons) {
  const auto isNoisy = [&](const RecordedEvent& event) {
    return event.buffer <= untilBuffer && (event.kind == EventKind::kNoisy17 || event.kind == EventKind::kNoisy19);
  };
  const auto noisy = std::count_if(run.GetEvents().begin(), run.GetEvents().end(), isNoisy);
  if (noisy > 0) {
    reasons.push_back(Text("%s rejected as noisy; from number %d on, one of 19 kHz ends the run.",
                           (Counted(noisy, "tone") + (noisy == 1 ? " was" : " were")).c_str(),
                           detector::kNoiseLimit + 1));
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

Explanation ExplainFound(const RunRecord& run, const RecordedEvent& result) {
  const double differenceMs = result.differenceS * 1e3;
  const Tone first = differenceMs > 0.0 ? Tone::k17000Hz : Tone::k19000Hz;
  Explanation found;
  found.outcome = Outcome::kFound;
  found.headline =
      Text("The optical output is %.1f ms %s", std::abs(differenceMs), differenceMs > 0.0 ? "late" : "early");
  found.reasons = {
      Text("%s came first, in %s; %s followed in %s: %s of %.2f ms.", Described(first).c_str(),
           BufferText(result.first).c_str(), Described(Other(first)).c_str(), BufferText(result.buffer).c_str(),
           Counted(result.buffer - result.first, "buffer").c_str(), detector::kBufferS * 1e3),
      Text("The difference is %+.1f ms: a television %s the delay of its optical output by it. It is known to within "
           "one buffer, ±%.1f ms.",
           differenceMs, differenceMs > 0.0 ? "shortens" : "lengthens", detector::kBufferS * 1e3),
      Margins(run, result.first, first), Margins(run, result.buffer, Other(first))};
  AddDisturbances(run, result.buffer, found.reasons);
  if (HasLateToneBefore(run, result.buffer)) {
    found.outcome = Outcome::kDoubtful;
    found.headline += ", but that is doubtful";
    found.reasons.push_back(
        "A tone came too late before the pair. When one is missing, or the true difference is larger than can be "
        "measured, tones of two different bursts make a pair, and the difference is false.");
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
    found.reasons.push_back(Text(
        "The recording goes on, and so did the receiver: %s followed, the last one %+.1f ms in %s. A run goes by the "
        "first; what comes after it changes nothing there.",
        Counted(results - 1, "further result").c_str(), last->differenceS * 1e3, BufferText(last->buffer).c_str()));
  }
  return found;
}

Explanation ExplainAbnormal(const RunRecord& run, const RecordedEvent& abnormal) {
  Explanation given;
  given.outcome = Outcome::kAbnormal;
  given.headline = "Given up: abnormal input";
  given.reasons = {Text("The %s tone in %s was one noisy tone too many: %d are put up with.", NameOf(Tone::k19000Hz),
                        BufferText(abnormal.buffer).c_str(), detector::kNoiseLimit)};
  for (const Tone tone : kTones) {
    given.reasons.push_back(Fate(run, tone));
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
  return Text("No difference: %s was not found", Described(is17 ? Tone::k19000Hz : Tone::k17000Hz).c_str());
}

Explanation ExplainNotFound(const RunRecord& run) {
  Explanation none;
  if (!run.GetAmbient()) {
    none.headline = "No difference: the recording is too short";
    none.reasons = {Text("It ends before %s, with which the ambient level is known. Tones are looked for from then on.",
                         BufferText(detector::kAmbientBuffer).c_str())};
    return none;
  }
  if (run.IsHearable()) {
    none.headline = "No difference: no tone was looked for";
    none.reasons = {"The receiver was in the hearable mode, which learns the ambient level and nothing more."};
    return none;
  }
  none.headline = HeadlineWithoutDifference(run);
  for (const Tone tone : kTones) {
    none.reasons.push_back(Fate(run, tone));
  }
  AddDisturbances(run, run.GetLastBuffer(), none.reasons);
  return none;
}

}  // namespace

Explanation Explain(const RunRecord& run) {
  if (const auto result = run.FindRunResult()) {
    return ExplainFound(run, *result);
  }
  const auto abnormal = run.FindFirst(EventKind::kAbnormal);
  return abnormal ? ExplainAbnormal(run, *abnormal) : ExplainNotFound(run);
}

}  // namespace orvex::tools
