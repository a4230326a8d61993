// Chooses the range of each axis and what each chart shows.
#include "replay/report_charts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "replay/chart_descriptions.h"
#include "replay/findings.h"
#include "replay/page_parts.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr double kShortestAxisDb = 40.0;
constexpr double kBelowAmbientDb = 20.0;  // an axis goes no further below the ambient mean: deeper dips mean nothing

MarkShape ShapeOf(Tone tone) {
  return tone == Tone::k17000Hz ? MarkShape::kDot : MarkShape::kDiamond;
}

using Value = std::function<double(const RecordedBlock&)>;

std::vector<CurvePoint> MakeCurve(const RunRecord& run, const View& view, const Value& decibels) {
  std::vector<CurvePoint> curve;
  for (const RecordedBlock& block : run.GetBlocks()) {
    const double buffer = block.buffer;
    if (buffer >= view.buffers.low && buffer <= view.buffers.high) {
      curve.push_back({buffer, decibels(block)});
    }
  }
  return curve;
}

// The range of an axis that shows all finite values that it was given.
class DecibelRange {
public:
  void Take(double decibels) {
    if (std::isfinite(decibels)) {
      m_Low = std::min(m_Low, decibels);
      m_High = std::max(m_High, decibels);
    }
  }
  void Take(const std::vector<CurvePoint>& curve) {
    std::for_each(curve.begin(), curve.end(), [this](const CurvePoint& point) { Take(point.decibels); });
  }
  // The range, widened to whole tens. Values below `lowest` do not widen it.
  Span Round(double lowest) const {
    if (m_Low > m_High) {
      return {-120.0, -80.0};
    }
    const double low = std::floor((std::max(m_Low, lowest) - 1.0) / 10.0) * 10.0;
    return {low, std::max(std::ceil((m_High + 1.0) / 10.0) * 10.0, low + kShortestAxisDb)};
  }

private:
  double m_Low = std::numeric_limits<double>::infinity();
  double m_High = -std::numeric_limits<double>::infinity();
};

// The lowest level that a chart of two frequencies shows.
double LowestLevel(const RunRecord& run, double Levels::*one, double Levels::*other) {
  const auto& ambient = run.GetAmbient();
  return ambient ? LevelDbfs(std::min((*ambient).*one, (*ambient).*other)) - kBelowAmbientDb : -INFINITY;
}

// Draws the pairs in reverse order, so that the run's own pair, the first, lies above the others.
void AddPairs(Chart& chart, const RunRecord& run, const View& view) {
  const std::vector<RecordedEvent> pairs = PairsWithin(run, view);
  std::for_each(pairs.rbegin(), pairs.rend(),
                [&](const RecordedEvent& pair) { chart.AddPair(pair.first, pair.buffer, PairLabel(run, pair)); });
}

std::vector<double> BuffersOf(const RunRecord& run, EventKind kind) {
  std::vector<double> buffers;
  for (const RecordedEvent& event : run.GetEvents()) {
    if (event.kind == kind) {
      buffers.push_back(event.buffer);
    }
  }
  return buffers;
}

std::vector<double> CleanBlocks(const RunRecord& run, Tone tone) {
  std::vector<double> buffers;
  for (const RecordedBlock& block : run.GetBlocks()) {
    if (Judge(run, block, tone) == Verdict::kClean) {
      buffers.push_back(block.buffer);
    }
  }
  return buffers;
}

std::vector<double> Within(const View& view, std::vector<double> buffers) {
  buffers.erase(std::remove_if(buffers.begin(), buffers.end(),
                               [&](double buffer) { return buffer < view.buffers.low || buffer > view.buffers.high; }),
                buffers.end());
  return buffers;
}

std::string ReadoutLevel(double decibels) {
  return std::isfinite(decibels) ? fmt::format("{:.1f}", decibels) : "no";
}

void AddToneReadouts(Chart& chart, const RunRecord& run, const View& view) {
  std::vector<Chart::Readout> readouts;
  for (const RecordedBlock& block : run.GetBlocks()) {
    if (view.buffers.Holds(block.buffer)) {
      std::string text = BufferText(block.buffer);
      for (const Tone tone : kTones) {
        text += fmt::format(" · {} {} dBFS, {} dB over neighbours", NameOf(tone),
                            ReadoutLevel(LevelDbfs(block.levels.At(tone))),
                            ReadoutLevel(Decibels(block.levels.Ratio(tone))));
      }
      readouts.push_back({static_cast<double>(block.buffer), text});
    }
  }
  chart.AddReadouts(readouts);
}

ChartText TextOf(const View& view, const char* name, const char* title, std::string description) {
  return {view.name + name, title, std::move(description)};
}

}  // namespace

const char* StyleOf(Tone tone) {
  return tone == Tone::k17000Hz ? "f17" : "f19";
}

void AddPhases(Chart& chart, const RunRecord& run, const View& view) {
  const std::int32_t last = run.GetLastBuffer();
  chart.AddBand(0, std::min(last, detector::kIgnoredBuffers), "ignored", "ignored");
  chart.AddBand(detector::kIgnoredBuffers, std::min(last, detector::kAmbientBuffer - 1), "phase", "ambient phase");
  chart.AddBand(last, view.buffers.high, "ignored", "the recording has ended");
}

std::vector<RecordedEvent> PairsWithin(const RunRecord& run, const View& view) {
  std::vector<RecordedEvent> pairs;
  std::copy_if(
      run.GetEvents().begin(), run.GetEvents().end(), std::back_inserter(pairs), [&](const RecordedEvent& event) {
        return event.kind == EventKind::kResult && event.first >= view.buffers.low && event.buffer <= view.buffers.high;
      });
  return pairs;
}

std::string PairLabel(const RunRecord& run, const RecordedEvent& pair) {
  return run.IsRunResult(pair) ? fmt::format("{:+.1f} ms", pair.differenceS * 1e3) : "";
}

std::string DrawEvents(const RunRecord& run, const View& view) {
  enum Lane : std::size_t { k17, k19, kNoisy, kSequence, kExtend };
  constexpr int kLanes = kExtend + 1;
  Chart chart(TextOf(view, "-events", kEventsTitle, DescribeEvents(run, view)), view.buffers,
              kLanes * Chart::kLaneHeight);
  AddPhases(chart, run, view);
  chart.AddLaneLabel(k17, "f17", "17 kHz tones");
  chart.AddLaneLabel(k19, "f19", "19 kHz tones");
  chart.AddLaneLabel(kNoisy, "", "noisy tones");
  chart.AddLaneLabel(kSequence, "", "sequence errors");
  chart.AddLaneLabel(kExtend, "", "extend commands");
  chart.AddMarks(k17, Within(view, CleanBlocks(run, Tone::k17000Hz)), MarkShape::kTick, "clean f17");
  chart.AddMarks(k19, Within(view, CleanBlocks(run, Tone::k19000Hz)), MarkShape::kTick, "clean f19");
  const auto add = [&](std::size_t lane, EventKind kind, MarkShape shape, const char* style) {
    chart.AddMarks(lane, Within(view, BuffersOf(run, kind)), shape, style);
  };
  add(k17, EventKind::kFirst17, MarkShape::kDot, "start f17");
  add(k19, EventKind::kFirst19, MarkShape::kDot, "start f19");
  add(kNoisy, EventKind::kNoisy17, MarkShape::kCross, "noisy f17");
  add(kNoisy, EventKind::kNoisy19, MarkShape::kCross, "noisy f19");
  add(kNoisy, EventKind::kAbnormal, MarkShape::kDiamond, "abnormal");
  add(kSequence, EventKind::kSequence, MarkShape::kDiamond, "sequence");
  add(kExtend, EventKind::kExtend, MarkShape::kTick, "extend");
  for (const RecordedEvent& pair : PairsWithin(run, view)) {
    const bool is17First = pair.differenceS > 0.0;
    chart.AddLink({is17First ? k17 : k19, static_cast<double>(pair.first)},
                  {is17First ? k19 : k17, static_cast<double>(pair.buffer)}, !run.IsRunResult(pair));
  }
  return chart.Finish();
}

std::string DrawTones(const RunRecord& run, const View& view, bool hasReadouts) {
  Chart chart(TextOf(view, "-tones", kTonesTitle, DescribeTones(run, view)), view.buffers, 300.0);
  DecibelRange range;
  std::vector<CurvePoint> curves[2];
  for (const Tone tone : kTones) {
    auto& curve = curves[tone == Tone::k19000Hz];
    curve = MakeCurve(run, view, [=](const RecordedBlock& block) { return LevelDbfs(block.levels.At(tone)); });
    range.Take(curve);
    range.Take(run.GetAmbient() ? LevelDbfs(detector::kToneThreshold * run.GetAmbient()->At(tone)) : NAN);
  }
  chart.AddDecibelAxis(range.Round(LowestLevel(run, &Levels::at17000, &Levels::at19000)), "level (dBFS)");
  AddPhases(chart, run, view);
  for (const Tone tone : kTones) {
    chart.AddCurve(curves[tone == Tone::k19000Hz], StyleOf(tone), NameOf(tone), ShapeOf(tone));
  }
  for (const Floor& floor : run.GetFloors()) {
    if (floor.level > detector::kToneThreshold * run.GetAmbient()->At(floor.tone)) {
      chart.AddLevel(floor.from, std::min(floor.to, run.GetLastBuffer()), LevelDbfs(floor.level),
                     std::string("floor ") + StyleOf(floor.tone), "");
    }
  }
  for (const Tone tone : kTones) {
    const double ambient = run.GetAmbient() ? run.GetAmbient()->At(tone) : 0.0;
    if (ambient > 0.0) {
      const double level = LevelDbfs(ambient);
      const double threshold = LevelDbfs(detector::kToneThreshold * ambient);
      chart.AddLevel(detector::kIgnoredBuffers, view.buffers.high, level, std::string("ambient ") + StyleOf(tone),
                     fmt::format("{} ambient {:.1f}", NameOf(tone), level));
      chart.AddLevel(detector::kAmbientBuffer + 1, view.buffers.high, threshold,
                     std::string("threshold ") + StyleOf(tone),
                     fmt::format("{} threshold {:.1f}", NameOf(tone), threshold));
    }
  }
  AddPairs(chart, run, view);
  if (hasReadouts) {
    AddToneReadouts(chart, run, view);
  }
  return chart.Finish();
}

std::string DrawNeighbours(const RunRecord& run, const View& view) {
  const auto at17500 = MakeCurve(run, view, [](const RecordedBlock& block) { return LevelDbfs(block.levels.at17500); });
  const auto at18000 = MakeCurve(run, view, [](const RecordedBlock& block) { return LevelDbfs(block.levels.at18000); });
  Chart chart(TextOf(view, "-neighbours", kNeighboursTitle, DescribeNeighbours(run, view)), view.buffers, 150.0);
  DecibelRange range;
  range.Take(at17500);
  range.Take(at18000);
  chart.AddDecibelAxis(range.Round(LowestLevel(run, &Levels::at17500, &Levels::at18000)), "level (dBFS)");
  AddPhases(chart, run, view);
  chart.AddCurve(at17500, "f175", "17.5 kHz");
  chart.AddCurve(at18000, "f18", "18 kHz", MarkShape::kDiamond);
  if (run.GetAmbient() && run.GetAmbient()->at17500 > 0.0 && run.GetAmbient()->at18000 > 0.0) {
    const double level17500 = LevelDbfs(run.GetAmbient()->at17500);
    const double level18000 = LevelDbfs(run.GetAmbient()->at18000);
    chart.AddLevel(detector::kIgnoredBuffers, view.buffers.high, level17500, "ambient f175",
                   fmt::format("17.5 kHz ambient {:.1f}", level17500));
    chart.AddLevel(detector::kIgnoredBuffers, view.buffers.high, level18000, "ambient f18",
                   fmt::format("18 kHz ambient {:.1f}", level18000));
  }
  AddPairs(chart, run, view);
  return chart.Finish();
}

std::string DrawRatios(const RunRecord& run, const View& view) {
  const double threshold = Decibels(detector::kNeighbourThreshold);
  Chart chart(TextOf(view, "-ratios", kRatiosTitle, DescribeRatios(run, view)), view.buffers, 180.0);
  DecibelRange range;
  range.Take(threshold);
  std::vector<CurvePoint> curves[2];
  for (const Tone tone : kTones) {
    auto& curve = curves[tone == Tone::k19000Hz];
    curve = MakeCurve(run, view, [=](const RecordedBlock& block) { return Decibels(block.levels.Ratio(tone)); });
    range.Take(curve);
  }
  chart.AddDecibelAxis(range.Round(-INFINITY), "tone over neighbours (dB)");
  AddPhases(chart, run, view);
  for (const Tone tone : kTones) {
    chart.AddCurve(curves[tone == Tone::k19000Hz], StyleOf(tone), NameOf(tone), ShapeOf(tone));
  }
  chart.AddLevel(detector::kAmbientBuffer + 1, view.buffers.high, threshold, "threshold ratio",
                 fmt::format("threshold {:.1f} (5 : 1)", threshold));
  AddPairs(chart, run, view);
  return chart.Finish();
}

}  // namespace orvex::tools
