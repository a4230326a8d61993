// Looks for the buffers that tell most about the decision.
#include "replay/view.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "replay/findings.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr double kShortestWholeBuffers = 40.0;
constexpr double kShareBehindTheEnd = 0.02;  // of the whole recording
// What a close-up shows before and behind what it is about, and half a buffer more, so that no block lies on the frame.
// The beginning lies in the half that a narrow window shows.
constexpr double kBefore = 6.5;
constexpr double kBehind = 6.5;
constexpr double kShortestCloseUp = 20.0;
constexpr std::int32_t kLongestCloseUp = 40;

// What a close-up is about.
struct Scene {
  std::int32_t first;
  std::int32_t last;
  std::string title;
};

Scene At(std::int32_t buffer, const std::string& title) {
  return {buffer, buffer, title};
}

// The block that came closest to a tone.
std::optional<Scene> FindNearestToATone(const RunRecord& run) {
  std::optional<Scene> scene;
  double nearest = 0.0;
  for (const Tone tone : kTones) {
    const ToneFindings found = FindTone(run, tone);
    const double ambient = run.GetAmbient() ? run.GetAmbient()->At(tone) : 0.0;
    if (found.strongest && ambient > 0.0 && found.strongest->levels.At(tone) / ambient > nearest) {
      nearest = found.strongest->levels.At(tone) / ambient;
      scene = At(found.strongest->buffer, fmt::format("the strongest {}", NameOf(tone)));
    }
  }
  return scene;
}

Scene AwaitingTheOther(const RecordedEvent& first, Tone tone) {
  return {first.buffer, first.buffer + detector::kPairingSpan,
          fmt::format("{}, and where {} was awaited", NameOf(tone), NameOf(Other(tone)))};
}

Scene FindScene(const RunRecord& run) {
  if (const auto result = run.FindRunResult()) {
    return {result->first, result->buffer, "the pair"};
  }
  if (const auto abnormal = run.FindFirst(EventKind::kAbnormal)) {
    return {abnormal->buffer - detector::kNoiseLimit, abnormal->buffer, "where the run was given up"};
  }
  if (!run.GetSequenceErrors().empty()) {
    const SequenceError& error = run.GetSequenceErrors().front();
    return {std::max(error.first, error.buffer - kLongestCloseUp), error.buffer, "the first sequence error"};
  }
  if (const auto first = run.FindFirst(EventKind::kFirst17)) {
    return AwaitingTheOther(*first, Tone::k17000Hz);
  }
  if (const auto first = run.FindFirst(EventKind::kFirst19)) {
    return AwaitingTheOther(*first, Tone::k19000Hz);
  }
  for (const auto& [kind, title] : {std::pair{EventKind::kNoisy19, "the first noisy 19 kHz"},
                                    std::pair{EventKind::kNoisy17, "the first noisy 17 kHz"}}) {
    if (const auto noisy = run.FindFirst(kind)) {
      return At(noisy->buffer, title);
    }
  }
  return FindNearestToATone(run).value_or(At(run.GetLastBuffer(), "the end of the recording"));
}

}  // namespace

View WholeRecording(const RunRecord& run) {
  const double last = run.GetLastBuffer();
  return {"whole", "The whole recording", {0.0, std::max(last * (1.0 + kShareBehindTheEnd), kShortestWholeBuffers)}};
}

View CloseUp(const RunRecord& run) {
  const Scene scene = FindScene(run);
  const double low = std::max(0.0, scene.first - kBefore);
  return {"close", "Close-up: " + scene.title, {low, std::max(scene.last + kBehind, low + kShortestCloseUp)}};
}

}  // namespace orvex::tools
