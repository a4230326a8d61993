// Two charts of the interval, one beside the receiver's grid and one enlarged, and one chart for the onset of each
// tone.
#include "replay/fine_section.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "fine/burst_shape.h"
#include "replay/chart.h"
#include "replay/page_parts.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr Span kOnsetMs = {-3.0, 6.0};
constexpr double kFittedStepMs = 0.05;

double Ms(double seconds) {
  return seconds * 1e3;
}

std::string IntervalText(const fine::Interval& interval) {
  return fmt::format("{:+.2f} to {:+.2f} ms", Ms(interval.low), Ms(interval.high));
}

std::string TitleOf(const fine::Reading& reading) {
  if (!reading.differenceS) {
    return "Fine reading: no difference";
  }
  return fmt::format("Fine reading: the optical output is {:.2f} ms {}", Ms(std::abs(*reading.differenceS)),
                     *reading.differenceS < 0.0 ? "early" : "late");
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

std::string CompareWithReceiver(const RunRecord& run, double fineS) {
  const auto result = run.FindRunResult();
  if (!result) {
    return "The receiver found no difference.";
  }
  const double more = Ms(result->differenceS - fineS);
  return fmt::format("The receiver found {:+.1f} ms, which is {:.2f} ms {}; it counts whole buffers of {:.2f} ms.",
                     Ms(result->differenceS), std::abs(more), more < 0.0 ? "less" : "more", kVoiceBlockMs);
}

// Buffers are lines here, and differences are counted in them.
std::string DrawGrid(const RunRecord& run, const fine::Reading& reading) {
  enum Lane : std::size_t { kService, kFine };
  constexpr int kLanes = kFine + 1;
  const auto result = run.FindRunResult();
  const double difference = *reading.differenceS / detector::kBufferS;
  const Span interval = {reading.intervalS.low / detector::kBufferS, reading.intervalS.high / detector::kBufferS};
  const double received = result ? result->differenceS / detector::kBufferS : difference;
  const Span span = {std::floor(std::min(received, interval.low)) - 1.0,
                     std::ceil(std::max(received, interval.high)) + 1.0};
  Chart chart(
      "fine-grid", span, kLanes * Chart::kLaneHeight, {"difference (ms)", kVoiceBlockMs}, Axis{"buffers"},
      fmt::format("The fine reading, {:+.2f} ms, with its interval, {}, on the receiver's grid of {:.2f} ms. {}",
                  Ms(*reading.differenceS), IntervalText(reading.intervalS), kVoiceBlockMs,
                  CompareWithReceiver(run, *reading.differenceS)));
  for (double buffer = span.low; buffer <= span.high; buffer += 1.0) {
    chart.AddUpright(buffer, "buffer", "");
  }
  chart.AddLaneLabel(kService, "", result ? "receiver" : "receiver: none");
  chart.AddLaneLabel(kFine, "", "fine reading");
  if (result) {
    chart.AddInterval(kService, {received, received}, received, "service",
                      fmt::format("receiver: {:+.1f} ms, {:+.0f} buffers", Ms(result->differenceS), received));
  }
  chart.AddInterval(
      kFine, interval, difference, "fine",
      fmt::format("fine reading: {:+.2f} ms, {}", Ms(*reading.differenceS), IntervalText(reading.intervalS)));
  return chart.Finish();
}

std::string DrawInterval(const fine::Reading& reading) {
  constexpr std::size_t kLane = 1;
  constexpr int kLanes = 2;
  const double difference = Ms(*reading.differenceS);
  const Span interval = {Ms(reading.intervalS.low), Ms(reading.intervalS.high)};
  const double margin = interval.Length() / 2.0;
  Chart chart(
      "fine-interval", {interval.low - margin, interval.high + margin}, kLanes * Chart::kLaneHeight,
      {"difference (ms)"}, std::nullopt,
      fmt::format("The interval enlarged: {}, with {:+.3f} ms in it", IntervalText(reading.intervalS), difference));
  chart.AddInterval(kLane, interval, difference, "fine",
                    fmt::format("{:+.3f} ms, {:.3f} ms wide", difference, interval.Length()));
  chart.AddUpright(interval.low, "end", fmt::format("{:+.3f} ms", interval.low));
  chart.AddUpright(difference, "onset", fmt::format("{:+.3f} ms", difference));
  chart.AddUpright(interval.high, "end", fmt::format("{:+.3f} ms", interval.high));
  return chart.Finish();
}

std::string DrawOnset(const fine::Arrival& arrival, Tone tone) {
  const bool is17 = tone == Tone::k17000Hz;
  const auto percentOf = [&](double magnitude) { return 100.0 * magnitude / arrival.amplitude; };
  std::vector<CurvePoint> measured;
  double highest = 0.0;
  for (const fine::EnvelopePoint& point : arrival.envelope) {
    measured.push_back({Ms(point.s), percentOf(point.magnitude)});
    highest = std::max(highest, measured.back().decibels);
  }
  const fine::FilteredBurst burst{SoundDesign{}};
  std::vector<CurvePoint> fitted;
  for (double ms = kOnsetMs.low; ms <= kOnsetMs.high; ms += kFittedStepMs) {
    fitted.push_back({ms, 100.0 * burst(ms * 1e-3)});
  }
  const double deviationMs = Ms(arrival.deviationS);
  const std::string onset = fmt::format("onset ± {:.3f} ms", deviationMs);
  Chart chart(is17 ? "fine-17" : "fine-19", kOnsetMs, 220.0, {"from onset (ms)"}, std::nullopt,
              fmt::format("{}, {}: the mean of its bursts around the onset, and the fitted "
                          "direct sound. The onset is {:.5f} s after the beginning of the recording, with a standard "
                          "deviation of {:.3f} ms. The measured envelope reaches {:.0f} % of the direct sound.",
                          NameOf(tone), OriginOf(tone), arrival.sample / kVoiceRateHz, deviationMs, highest));
  chart.AddDecibelAxis({0.0, std::ceil(1.05 * std::max(100.0, highest) / 20.0) * 20.0}, "direct sound = 100 %");
  chart.AddBand(-deviationMs, deviationMs, "deviation", onset);
  chart.AddCurve(measured, is17 ? "f17" : "f19", "measured");
  chart.AddCurve(fitted, "fitted", "fitted");
  chart.AddUpright(0.0, "onset", onset);
  return chart.Finish();
}

std::string MakeOnset(const fine::Arrival& arrival, Tone tone) {
  return Figure(fmt::format("{}, {}: begins at {:.5f} s", NameOf(tone), OriginOf(tone), arrival.sample / kVoiceRateHz),
                tone == Tone::k17000Hz ? kOnset17Legend : kOnset19Legend, DrawOnset(arrival, tone));
}

}  // namespace

std::string MakeFineSection(const RunRecord& run, const fine::Reading& reading) {
  std::string html = "<section id='fine'>\n<h2>" + TitleOf(reading) + "</h2>\n";
  if (reading.differenceS) {
    html += "<p>" + CompareWithReceiver(run, *reading.differenceS) + "</p>\n";
  } else {
    html += "<p class='warning'>There is no fine difference: " + Escaped(reading.reason) + ".</p>\n";
  }
  html += MakeFineFacts(reading);
  if (reading.differenceS) {
    html += Figure("The difference on the receiver's grid", kIntervalLegend, DrawGrid(run, reading));
    html += Figure("Its interval, enlarged", "", DrawInterval(reading));
  }
  for (const Tone tone : kTones) {
    if (const auto& arrival = reading.arrivals[tone == Tone::k19000Hz]) {
      html += MakeOnset(*arrival, tone);
    }
  }
  return html + kFineNotes + "</section>\n";
}

}  // namespace orvex::tools
