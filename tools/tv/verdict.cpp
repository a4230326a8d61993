// Compares the misalignment that remains with the one before and with what a delay can do.
#include "tv/verdict.h"

#include <cmath>
#include <cstdint>

#include <fmt/core.h>

#include "orvex/sim/room.h"

namespace orvex::tools {
namespace {

// Misalignments are sums of fractions.
constexpr double kRoundingMs = 1e-6;

std::string Signed(double milliseconds) {
  return fmt::format("{:+.1f} ms", milliseconds);
}

bool EndedInOrder(const ServiceEnding& ending) {
  return ending.exitCode == 0 && !ending.limitReached;
}

bool IsMoreThanBefore(const RunSummary& run) {
  return run.misalignmentBeforeMs &&
         std::abs(*run.misalignmentAfterMs) > std::abs(*run.misalignmentBeforeMs) + kRoundingMs;
}

// An output that is late needs a shorter delay, one that is early a longer one.
bool CannotBeCorrected(std::int64_t delayMs, double misalignmentMs) {
  return misalignmentMs > 0.0 ? delayMs == 0 : static_cast<double>(delayMs) >= sim::Room::kMaxSpdifDelayMs;
}

std::string WhyFailed(const RunSummary& run) {
  if (!run.ending.exitCode) {
    return "the service was not started";
  }
  return EndedInOrder(run.ending) ? EndInWords(run.report.terminate) : "the service did not end in order";
}

std::string WhyWorse(const RunSummary& run) {
  return IsMoreThanBefore(run) ? "there were " + Signed(*run.misalignmentBeforeMs) + " before"
                               : "another delay would leave less";
}

std::string WhyClamped(const RunSummary& run) {
  return "the delay is " + std::to_string(*run.delayAfterMs) +
         (*run.delayAfterMs == 0 ? " and cannot become less" : " ms and cannot become more");
}

std::string ReasonOf(Verdict verdict, const RunSummary& run) {
  switch (verdict) {
    case Verdict::kFailed:
      return WhyFailed(run);
    case Verdict::kNoDifference:
      return EndInWords(run.report.terminate);
    case Verdict::kNotApplied:
      return DelayInWords(run.report.wantedMs, run.delayAfterMs);
    case Verdict::kWorse:
      return WhyWorse(run);
    case Verdict::kClamped:
      return WhyClamped(run);
    case Verdict::kAligned:
      break;
  }
  return "";
}

}  // namespace

Verdict VerdictOf(const RunSummary& run) {
  const bool foundNothing = run.report.terminate == kFoundNothing;
  if (!EndedInOrder(run.ending) || (!foundNothing && run.report.terminate != kFoundDifference)) {
    return Verdict::kFailed;
  }
  if (foundNothing) {
    return Verdict::kNoDifference;
  }
  if (!IsInForce(run.report.wantedMs, run.delayAfterMs) || !run.misalignmentAfterMs) {
    return Verdict::kNotApplied;
  }
  if (std::abs(*run.misalignmentAfterMs) <= kAlignedMs + kRoundingMs) {
    return Verdict::kAligned;
  }
  const bool isClamped = !IsMoreThanBefore(run) && CannotBeCorrected(*run.delayAfterMs, *run.misalignmentAfterMs);
  return isClamped ? Verdict::kClamped : Verdict::kWorse;
}

bool IsGood(Verdict verdict) {
  return verdict == Verdict::kAligned || verdict == Verdict::kClamped;
}

const char* NameOf(Verdict verdict) {
  static constexpr const char* kNames[] = {"failed", "no_difference", "not_applied", "aligned", "worse", "clamped"};
  return kNames[static_cast<std::size_t>(verdict)];
}

std::string VerdictInWords(const RunSummary& run) {
  const Verdict verdict = VerdictOf(run);
  std::string text = ReasonOf(verdict, run);
  if (run.misalignmentAfterMs) {
    text += (text.empty() ? "" : "; ") + Signed(*run.misalignmentAfterMs) + " remain";
  }
  return std::string(NameOf(verdict)) + ": " + text;
}

}  // namespace orvex::tools
