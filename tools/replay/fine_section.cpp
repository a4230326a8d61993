// Two charts of the readings, one with the receiver's and one with the fine interval enlarged, and one chart for the
// onset of each tone.
#include "replay/fine_section.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <optional>
#include <vector>

#include "chart/svg.h"
#include "fine/burst_shape.h"
#include "replay/chart.h"
#include "replay/explanation.h"
#include "replay/page_parts.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr Span kOnsetMs = {-3.0, 6.0};
constexpr double kFittedStepMs = 0.05;
constexpr double kTableStepMs = 0.25;
constexpr char kGridTitle[] = "Both readings, to scale";
constexpr char kIntervalTitle[] = "The fine reading's interval, enlarged";

double Ms(double seconds) {
  return seconds * 1e3;
}

std::string IntervalText(const fine::Interval& interval) {
  return fmt::format("{:+.2f} to {:+.2f} ms", Ms(interval.low), Ms(interval.high));
}

std::string DirectLevelText(const std::optional<fine::Arrival>& arrival) {
  return arrival ? fmt::format("{:.1f} dB above the noise", arrival->levelDb) : "not known";
}

// In whole ppm, without a negative zero.
std::string RateText(const std::optional<double>& ppm) {
  return ppm ? fmt::format("{:+.0f} ppm", std::round(*ppm) + 0.0) : "not known";
}

std::string MakeFineFacts(const fine::Reading& reading) {
  return "<dl class='facts'>\n" +
         Fact("fine difference", reading.differenceS ? fmt::format("{:+.2f} ms", Ms(*reading.differenceS)) : "none") +
         Fact("95 % interval", reading.differenceS ? IntervalText(reading.intervalS) : "none") +
         Fact("pairs that agree", std::to_string(reading.pairs)) +
         Fact("error of the remote's rate", RateText(reading.ratePpm)) +
         Fact("17 kHz, direct sound", DirectLevelText(reading.arrivals[0])) +
         Fact("19 kHz, direct sound", DirectLevelText(reading.arrivals[1])) + "</dl>\n";
}

std::string CompareWithReceiver(const RunRecord& run, const fine::Reading& reading) {
  const auto result = run.FindRunResult();
  if (!result) {
    return "The service found no difference.";
  }
  const double aboveMs = Ms(result->differenceS - *reading.differenceS);
  return fmt::format(
      "The service's reading is {:.2f} ms {} the fine one{}", std::abs(aboveMs), aboveMs < 0.0 ? "below" : "above",
      DoContradict(run, reading) ? ", which is more than counting in whole buffers explains: one of them is wrong."
                                 : fmt::format("; it counts whole buffers of {:.2f} ms.", kVoiceBlockMs));
}

std::string MakeCard(const char* title, const std::string& value, const std::string& remark) {
  return fmt::format("<div class='reading'><p>{}</p><p class='value'>{}</p><p>{}</p></div>\n", title, value, remark);
}

std::string MakeCards(const RunRecord& run, const fine::Reading& reading) {
  const auto result = run.FindRunResult();
  return "<div class='readings'>\n" +
         MakeCard(
             "The service's reading", result ? fmt::format("{:+.1f} ms", Ms(result->differenceS)) : "none",
             result ? fmt::format("to within one buffer, ±{:.1f} ms", kVoiceBlockMs) : "see above for the reason") +
         MakeCard("The fine reading",
                  reading.differenceS ? fmt::format("{:+.2f} ms", Ms(*reading.differenceS)) : "none",
                  reading.differenceS ? "95 % interval: " + IntervalText(reading.intervalS) : Escaped(reading.reason)) +
         "</div>\n";
}

// Buffers are lines here, and differences are counted in them.
std::string DrawGrid(const RunRecord& run, const fine::Reading& reading, const PagePart& part) {
  enum Lane : std::size_t { kService, kFine };
  constexpr int kLanes = kFine + 1;
  const auto result = run.FindRunResult();
  const double difference = *reading.differenceS / detector::kBufferS;
  const Span interval = {reading.intervalS.low / detector::kBufferS, reading.intervalS.high / detector::kBufferS};
  const double received = result ? result->differenceS / detector::kBufferS : difference;
  const Span span = {std::floor(std::min(received - 1.0, interval.low)) - 1.0,
                     std::ceil(std::max(received + 1.0, interval.high)) + 1.0};
  Chart chart(
      {part.prefix + "fine-grid", kGridTitle,
       fmt::format("The fine reading, {:+.2f} ms, with its interval, {}, on the service's grid of {:.2f} ms. {}",
                   Ms(*reading.differenceS), IntervalText(reading.intervalS), kVoiceBlockMs,
                   CompareWithReceiver(run, reading))},
      span, kLanes * Chart::kLaneHeight, {"difference (ms)", kVoiceBlockMs}, ChartAxis{"buffers"});
  for (double buffer = span.low; buffer <= span.high; buffer += 1.0) {
    chart.AddUpright(buffer, "buffer", "");
  }
  chart.AddLaneLabel(kService, "", result ? "service" : "service: none");
  chart.AddLaneLabel(kFine, "", "fine reading");
  if (result) {
    chart.AddInterval(
        kService, {received - 1.0, received + 1.0}, received, "service",
        fmt::format("service: {:+.1f} ms, {:+.0f} buffers, to within one", Ms(result->differenceS), received));
  }
  chart.AddInterval(
      kFine, interval, difference, "fine",
      fmt::format("fine reading: {:+.2f} ms, {}", Ms(*reading.differenceS), IntervalText(reading.intervalS)));
  return chart.Finish();
}

std::string DrawInterval(const fine::Reading& reading, const PagePart& part) {
  constexpr std::size_t kLane = 1;
  constexpr int kLanes = 2;
  const double difference = Ms(*reading.differenceS);
  const Span interval = {Ms(reading.intervalS.low), Ms(reading.intervalS.high)};
  const double margin = interval.Length() / 2.0;
  Chart chart({part.prefix + "fine-interval", kIntervalTitle,
               fmt::format("From {}, with {:+.3f} ms in it.", IntervalText(reading.intervalS), difference)},
              {interval.low - margin, interval.high + margin}, kLanes * Chart::kLaneHeight, {"difference (ms)"},
              std::nullopt);
  chart.AddInterval(kLane, interval, difference, "fine",
                    fmt::format("{:+.3f} ms, {:.3f} ms wide", difference, interval.Length()));
  chart.AddUpright(interval.low, "end", fmt::format("{:+.3f} ms", interval.low));
  chart.AddUpright(difference, "onset", fmt::format("{:+.3f} ms", difference));
  chart.AddUpright(interval.high, "end", fmt::format("{:+.3f} ms", interval.high));
  return chart.Finish();
}

// An envelope in percent of the direct sound, over milliseconds from the onset.
std::vector<CurvePoint> MakeMeasured(const fine::Arrival& arrival) {
  std::vector<CurvePoint> measured;
  std::transform(arrival.envelope.begin(), arrival.envelope.end(), std::back_inserter(measured),
                 [&](const fine::EnvelopePoint& point) {
                   return CurvePoint{Ms(point.s), 100.0 * point.magnitude / arrival.amplitude};
                 });
  return measured;
}

double FittedPercent(double ms) {
  static const fine::FilteredBurst burst{SoundDesign{}};
  return 100.0 * burst(ms * 1e-3);
}

std::string DrawOnset(const fine::Arrival& arrival, Tone tone, const PagePart& part) {
  const bool is17 = tone == Tone::k17000Hz;
  const std::vector<CurvePoint> measured = MakeMeasured(arrival);
  const double highest = std::accumulate(measured.begin(), measured.end(), 0.0,
                                         [](double most, const auto& point) { return std::max(most, point.decibels); });
  std::vector<CurvePoint> fitted;
  for (double ms = kOnsetMs.low; ms <= kOnsetMs.high; ms += kFittedStepMs) {
    fitted.push_back({ms, FittedPercent(ms)});
  }
  const double deviationMs = Ms(arrival.deviationS);
  const std::string onset = fmt::format("onset ± {:.3f} ms", deviationMs);
  Chart chart(
      {part.prefix + (is17 ? "fine-17" : "fine-19"), fmt::format("Onset of {}, {}", NameOf(tone), OriginOf(tone)),
       fmt::format("The mean of its bursts around the onset, and the fitted direct sound. The onset is {:.5f} s "
                   "after the beginning of the recording, with a standard deviation of {:.3f} ms. The measured "
                   "envelope reaches {:.0f} % of the direct sound.",
                   arrival.sample / kVoiceRateHz, deviationMs, highest)},
      kOnsetMs, 220.0, {"from onset (ms)"}, std::nullopt);
  chart.AddDecibelAxis({0.0, std::ceil(1.05 * std::max(100.0, highest) / 20.0) * 20.0}, "direct sound = 100 %");
  chart.AddBand(-deviationMs, deviationMs, "deviation", onset);
  chart.AddCurve(measured, is17 ? "f17" : "f19", "measured");
  chart.AddCurve(fitted, "fitted", "fitted");
  chart.AddUpright(0.0, "onset", onset);
  return chart.Finish();
}

std::string MakeOnsetTable(const fine::Arrival& arrival, Tone tone) {
  std::string rows;
  double next = kOnsetMs.low;
  for (const CurvePoint& point : MakeMeasured(arrival)) {
    if (point.buffer >= next) {
      rows += fmt::format("<tr><th scope='row'>{:+.2f}</th><td>{:.1f}</td><td>{:.1f}</td><td></td></tr>\n",
                          point.buffer, point.decibels, FittedPercent(point.buffer));
      next += kTableStepMs;
    }
  }
  return "<details class='values'><summary>Values of this picture as a table</summary>\n" +
         Scrollable(fmt::format("Onset of {}: values", NameOf(tone)),
                    "<table class='numbers'>\n<thead><tr><th scope='col'>from onset (ms)</th><th scope='col'>measured "
                    "(%)</th><th scope='col'>fitted (%)</th><td></td></tr></thead>\n<tbody>\n" +
                        rows + "</tbody>\n</table>\n") +
         "</details>\n";
}

std::string MakeOnset(const fine::Arrival& arrival, Tone tone, const PagePart& part) {
  return Figure(fmt::format("{}, {}: begins at {:.5f} s", NameOf(tone), OriginOf(tone), arrival.sample / kVoiceRateHz),
                tone == Tone::k17000Hz ? kOnset17Legend : kOnset19Legend, DrawOnset(arrival, tone, part)) +
         MakeOnsetTable(arrival, tone);
}

}  // namespace

std::string MakeReadings(const RunRecord& run, const fine::Reading& reading, const PagePart& part) {
  std::string html = MakeCards(run, reading);
  if (reading.differenceS) {
    html += "<p>" + CompareWithReceiver(run, reading) + "</p>\n" +
            Figure(kGridTitle, kReadingsLegend, DrawGrid(run, reading, part)) +
            Figure(kIntervalTitle, "", DrawInterval(reading, part));
  } else {
    html += "<p class='warning'>There is no fine difference: " + Escaped(reading.reason) + ".</p>\n";
  }
  return "<section class='fine'>" + Heading(part, "Two readings") + html + "</section>\n";
}

std::string MakeOnsets(const fine::Reading& reading, const PagePart& part) {
  std::string html = MakeFineFacts(reading);
  for (const Tone tone : kTones) {
    if (const auto& arrival = reading.arrivals[tone == Tone::k19000Hz]) {
      html += MakeOnset(*arrival, tone, part);
    }
  }
  return "<section class='fine'>" + Heading(part, "How the fine reading came about") + html + kFineNotes +
         "</section>\n";
}

}  // namespace orvex::tools
