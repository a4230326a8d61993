// Names the part of the recording, the highest values in it, and the pairs or events that lie there.
#include "replay/chart_descriptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "replay/findings.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

using DecibelsIn = std::function<double(const ToneMagnitudes&)>;

std::string DescribeView(const View& view) {
  return fmt::format("{}: buffers {:.0f} to {:.0f}, {:.2f} to {:.2f} s.", view.title,
                     std::max(1.0, std::ceil(view.buffers.low)), std::floor(view.buffers.high),
                     view.buffers.low * detector::kBufferS, view.buffers.high * detector::kBufferS);
}

// " 17 kHz is highest in buffer 58 (0.957 s): -24.1 dBFS."
std::string DescribePeak(const RunRecord& run, const View& view, const std::string& name, const DecibelsIn& decibels,
                         const char* unit) {
  const RecordedBlock* highest = nullptr;
  double peak = 0.0;
  for (const RecordedBlock& block : run.GetBlocks()) {
    const double value = decibels(block.levels);
    if (view.buffers.Holds(block.buffer) && std::isfinite(value) && (highest == nullptr || value > peak)) {
      highest = &block;
      peak = value;
    }
  }
  return highest == nullptr
             ? fmt::format(" {} is not there.", name)
             : fmt::format(" {} is highest in {}: {:.1f} {}.", name, BufferText(highest->buffer), peak, unit);
}

std::string DescribeThreshold(const RunRecord& run, Tone tone) {
  const double ambient = run.GetAmbient() ? run.GetAmbient()->At(tone) : 0.0;
  return ambient > 0.0 ? fmt::format(" The threshold of {} is {:.1f} dBFS.", NameOf(tone),
                                     LevelDbfs(detector::kToneThreshold * ambient))
                       : fmt::format(" {} has no threshold.", NameOf(tone));
}

std::string DescribePair(const RunRecord& run) {
  const auto pair = run.FindRunResult();
  return pair ? fmt::format(" The pair is in buffers {} and {}: {:+.1f} ms.", pair->first, pair->buffer,
                            pair->differenceS * 1e3)
              : " There is no pair.";
}

std::string CountClean(const RunRecord& run, const View& view, Tone tone) {
  const auto& blocks = run.GetBlocks();
  const auto clean = std::count_if(blocks.begin(), blocks.end(), [&](const RecordedBlock& block) {
    return view.buffers.Holds(block.buffer) && Judge(run, block, tone) == Verdict::kClean;
  });
  return fmt::format(" {} is in {}.", NameOf(tone), Counted(clean, "block"));
}

std::string DescribeBothTones(const RunRecord& run, const View& view,
                              const std::function<std::string(const RunRecord&, const View&, Tone)>& describe) {
  return describe(run, view, Tone::k17000Hz) + describe(run, view, Tone::k19000Hz);
}

}  // namespace

std::string DescribeTones(const RunRecord& run, const View& view) {
  return DescribeView(view) +
         DescribeBothTones(run, view,
                           [](const auto& of, const auto& within, Tone tone) {
                             return DescribePeak(
                                        of, within, NameOf(tone),
                                        [=](const ToneMagnitudes& levels) { return LevelDbfs(levels.At(tone)); },
                                        "dBFS") +
                                    DescribeThreshold(of, tone);
                           }) +
         DescribePair(run);
}

std::string DescribeRatios(const RunRecord& run, const View& view) {
  return DescribeView(view) +
         DescribeBothTones(run, view,
                           [](const auto& of, const auto& within, Tone tone) {
                             return DescribePeak(
                                 of, within, fmt::format("{} over its neighbours", NameOf(tone)),
                                 [=](const ToneMagnitudes& levels) { return Decibels(levels.Ratio(tone)); }, "dB");
                           }) +
         fmt::format(" The threshold is {:.1f} dB.", Decibels(detector::kNeighbourThreshold));
}

std::string DescribeNeighbours(const RunRecord& run, const View& view) {
  return DescribeView(view) +
         DescribePeak(
             run, view, "17.5 kHz", [](const ToneMagnitudes& levels) { return LevelDbfs(levels.at17500); }, "dBFS") +
         DescribePeak(
             run, view, "18 kHz", [](const ToneMagnitudes& levels) { return LevelDbfs(levels.at18000); }, "dBFS");
}

std::string DescribeEvents(const RunRecord& run, const View& view) {
  const auto count = [&](EventKind one, EventKind other) {
    const auto& events = run.GetEvents();
    return std::count_if(events.begin(), events.end(), [&](const RecordedEvent& event) {
      return view.buffers.Holds(event.buffer) && (event.kind == one || event.kind == other);
    });
  };
  return DescribeView(view) + DescribeBothTones(run, view, CountClean) +
         fmt::format(" {}, {}.", Counted(count(EventKind::kNoisy17, EventKind::kNoisy19), "noisy tone"),
                     Counted(count(EventKind::kSequence, EventKind::kSequence), "sequence error")) +
         DescribePair(run);
}

std::string DescribeSpectrogram(const RunRecord& run, const View& view) {
  return DescribeView(view) + " Levels from 15 to 21 kHz over time: the louder, the further from the page's colour." +
         DescribeBothTones(run, view, CountClean) + DescribeThreshold(run, Tone::k17000Hz) +
         DescribeThreshold(run, Tone::k19000Hz) + DescribePair(run);
}

}  // namespace orvex::tools
