// A row around each tone's frequency has a box where the tone reached its threshold: a solid one where it was found.
#include "replay/spectrogram_chart.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "replay/chart_descriptions.h"
#include "replay/explanation.h"
#include "replay/findings.h"
#include "replay/page_parts.h"
#include "replay/png_picture.h"
#include "replay/report_charts.h"
#include "replay/spectrogram.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr double kHeight = 270.0;
constexpr std::size_t kMostColumns = 480;
constexpr double kColumnsPerBuffer = 8.0;
constexpr std::size_t kShades = 32;
constexpr double kRowHalfKhz = 0.3;
constexpr double kNoteAboveKhz = 0.18;
constexpr double kNoteBelowKhz = 0.42;

double FrequencyKhz(Tone tone) {
  return tone == Tone::k17000Hz ? 17.0 : 19.0;
}

Span RowOf(Tone tone) {
  return {FrequencyKhz(tone) - kRowHalfKhz, FrequencyKhz(tone) + kRowHalfKhz};
}

// From white, for what is quiet, over blue to nearly black; a page on dark paper shows them inverted.
std::vector<Colour> MakeShades() {
  const struct {
    double red, green, blue;
  } stops[] = {{255, 255, 255}, {214, 223, 237}, {139, 162, 200}, {73, 84, 147}, {43, 22, 84}};
  constexpr std::size_t kPieces = std::size(stops) - 1;
  std::vector<Colour> shades;
  for (std::size_t n = 0; n < kShades; ++n) {
    const double at = static_cast<double>(n) * kPieces / (kShades - 1);
    const std::size_t piece = std::min(static_cast<std::size_t>(at), kPieces - 1);
    const auto mix = [&](double from, double to) {
      return static_cast<std::uint8_t>(std::lround(from + (at - static_cast<double>(piece)) * (to - from)));
    };
    const auto& from = stops[piece];
    const auto& to = stops[piece + 1];
    shades.push_back({mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue)});
  }
  return shades;
}

// The level of what is quiet: the lower ambient mean, or the middle of all levels where there is none.
double QuietDbfs(const RunRecord& run, const Spectrogram& spectrogram) {
  const auto& ambient = run.GetAmbient();
  if (ambient && ambient->at17000 > 0.0 && ambient->at19000 > 0.0) {
    return LevelDbfs(std::min(ambient->at17000, ambient->at19000));
  }
  std::vector<float> levels = spectrogram.dbfs;
  const auto middle = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() / 2);
  std::nth_element(levels.begin(), middle, levels.end());
  return *middle;
}

// From what is quiet to the loudest sound, or at least to the higher threshold.
Span ScaleOf(const RunRecord& run, const Spectrogram& spectrogram) {
  const double low = QuietDbfs(run, spectrogram);
  double high = std::max<double>(low + Decibels(detector::kToneThreshold),
                                 *std::max_element(spectrogram.dbfs.begin(), spectrogram.dbfs.end()));
  for (const Tone tone : kTones) {
    const double ambient = run.GetAmbient() ? run.GetAmbient()->At(tone) : 0.0;
    high = std::max(high, LevelDbfs(detector::kToneThreshold * ambient));
  }
  return {std::floor(low), std::ceil(high)};
}

std::string MakePicture(const Spectrogram& spectrogram, Span scale, const std::vector<Colour>& shades) {
  std::vector<std::uint8_t> pixels;
  for (const float level : spectrogram.dbfs) {
    const double share = std::clamp((static_cast<double>(level) - scale.low) / scale.Length(), 0.0, 1.0);
    pixels.push_back(static_cast<std::uint8_t>(std::lround(share * (kShades - 1))));
  }
  return MakePng(spectrogram.columns, pixels, shades);
}

std::vector<Chart::ScaleMark> MakeScaleMarks(const RunRecord& run, Span scale) {
  std::vector<Chart::ScaleMark> marks = {{scale.low, fmt::format("{:.0f} dBFS", scale.low), ""},
                                         {scale.high, fmt::format("{:.0f} dBFS", scale.high), ""}};
  for (const Tone tone : kTones) {
    const double ambient = run.GetAmbient() ? run.GetAmbient()->At(tone) : 0.0;
    if (ambient > 0.0) {
      const double threshold = LevelDbfs(detector::kToneThreshold * ambient);
      marks.push_back({threshold, fmt::format("{} threshold", NameOf(tone)), StyleOf(tone)});
    }
  }
  return marks;
}

// Adjacent blocks in which a tone reached its threshold.
struct Stretch {
  Span buffers;
  bool isClean;  // they hold the tone; one of them does, where the chart has no room for each
};

// Stretches between which the chart has no room are one.
std::vector<Stretch> FindStretches(const RunRecord& run, const View& view, Tone tone) {
  std::vector<Stretch> stretches;
  const double nearBuffers = view.buffers.Length() / kMostColumns;
  for (const RecordedBlock& block : run.GetBlocks()) {
    const Verdict verdict = Judge(run, block, tone);
    const double end = block.buffer;
    if (verdict <= Verdict::kWeak || !view.buffers.Holds(end)) {
      continue;
    }
    const bool isClean = verdict == Verdict::kClean;
    const bool isOther = nearBuffers < 0.5 && !stretches.empty() && stretches.back().isClean != isClean;
    if (stretches.empty() || isOther || end - 1.0 - stretches.back().buffers.high > nearBuffers) {
      stretches.push_back({{end - 1.0, end}, isClean});
    }
    stretches.back().buffers.high = end;
    stretches.back().isClean = stretches.back().isClean || isClean;
  }
  return stretches;
}

void AddTone(Chart& chart, const RunRecord& run, const View& view, Tone tone) {
  chart.AddBox(view.buffers, RowOf(tone), std::string("row ") + StyleOf(tone), fmt::format("{} row", NameOf(tone)));
  for (const Stretch& stretch : FindStretches(run, view, tone)) {
    chart.AddBox(
        stretch.buffers, RowOf(tone), std::string(stretch.isClean ? "clean " : "rejected ") + StyleOf(tone),
        fmt::format("{} reached its threshold in buffers {:.0f} to {:.0f}{}", NameOf(tone), stretch.buffers.low + 1.0,
                    stretch.buffers.high, stretch.isClean ? "" : ", and was rejected"));
  }
  // Not between the rows, where the pair is drawn.
  const Span row = RowOf(tone);
  chart.AddNote(tone == Tone::k17000Hz ? row.low - kNoteBelowKhz : row.high + kNoteAboveKhz, StyleOf(tone),
                fmt::format("{}, {}: {}", NameOf(tone), OriginOf(tone), InBrief(run, tone)));
}

}  // namespace

std::string DrawSpectrogram(const RunRecord& run, const std::vector<std::int16_t>& samples, const View& view) {
  const double end = static_cast<double>(samples.size()) / kVoiceBlockSamples;
  const Span recorded = {view.buffers.low, std::min(view.buffers.high, std::max(end, view.buffers.low + 1.0))};
  const auto columns = static_cast<std::size_t>(std::ceil(recorded.Length() * kColumnsPerBuffer));
  const Spectrogram spectrogram = MakeSpectrogram(samples, recorded, std::min(columns, kMostColumns));
  const Span scale = ScaleOf(run, spectrogram);
  const std::vector<Colour> shades = MakeShades();

  constexpr double kHalfRow = kSpectrogramStepKhz / 2.0;
  const Span frequencies = {kSpectrogramKhz.low - kHalfRow, kSpectrogramKhz.high + kHalfRow};
  Chart chart({view.name + "-spectrogram", kSpectrogramTitle, DescribeSpectrogram(run, view)}, view.buffers, kHeight);
  chart.AddDecibelAxis(frequencies, "frequency (kHz)");
  chart.AddPicture(recorded, frequencies, MakePicture(spectrogram, scale, shades));
  AddPhases(chart, run, view);
  for (const Tone tone : kTones) {
    AddTone(chart, run, view, tone);
  }
  for (const RecordedEvent& pair : PairsWithin(run, view)) {
    const Tone first = pair.differenceS > 0.0 ? Tone::k17000Hz : Tone::k19000Hz;
    chart.AddPairBetween({static_cast<double>(pair.first), FrequencyKhz(first)},
                         {static_cast<double>(pair.buffer), FrequencyKhz(Other(first))}, PairLabel(run, pair));
  }
  std::vector<std::string> colours;
  std::transform(shades.begin(), shades.end(), std::back_inserter(colours), HexOf);
  chart.AddScale(colours, scale, MakeScaleMarks(run, scale));
  return chart.Finish();
}

}  // namespace orvex::tools
