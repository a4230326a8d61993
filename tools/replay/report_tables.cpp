// Says what stands in each row: what was found of a tone, and what each event means.
#include "replay/report_tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "replay/findings.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr std::size_t kMostEvents = 200;

std::string LevelText(double magnitude) {
  return magnitude > 0.0 ? fmt::format("{:.1f} dBFS", LevelDbfs(magnitude)) : "digital silence";
}

std::string ThresholdText(double ambient) {
  return ambient > 0.0 ? LevelText(detector::kToneThreshold * ambient) : "none: a mean of 0 finds no tone";
}

std::string StrongestText(const RunRecord& run, const ToneFindings& found, Tone tone) {
  if (!found.strongest) {
    return "-";
  }
  const double level = found.strongest->levels.At(tone);
  const double ambient = run.GetAmbient()->At(tone);
  return LevelText(level) + (level > 0.0 && ambient > 0.0
                                 ? fmt::format(", {:.1f} dB above ambient, {}", Decibels(level / ambient),
                                               BufferText(found.strongest->buffer))
                                 : "");
}

using Cell = std::function<std::string(const ToneFindings&, Tone)>;

struct ToneRow {
  const char* id;
  const char* title;
  Cell cell;
};

std::string WhatHappened(const RunRecord& run, const RecordedEvent& event) {
  switch (event.kind) {
    case EventKind::kAmbient:
      return "the ambient means are known";
    case EventKind::kFirst17:
      return "first tone: 17 kHz";
    case EventKind::kFirst19:
      return "first tone: 19 kHz";
    case EventKind::kSequence:
      return "sequence error";
    case EventKind::kNoisy17:
      return fmt::format("17 kHz is noisy, number {}", event.count);
    case EventKind::kNoisy19:
      return fmt::format("19 kHz is noisy, number {}", event.count);
    case EventKind::kResult:
      return fmt::format("second tone: pair of buffers {} and {}, difference {:+.1f} ms{}", event.first, event.buffer,
                         event.differenceS * 1e3,
                         run.IsRunResult(event) ? "" : "; after the end of a run, where it changes nothing");
    case EventKind::kAbnormal:
      return "abnormal input";
    case EventKind::kExtend:
      return "extend command to the remote";
  }
  return "";
}

}  // namespace

std::string MakeToneTable(const RunRecord& run) {
  if (!run.GetAmbient()) {
    return "";
  }
  const auto count = [](std::int32_t ToneFindings::*member) {
    return [=](const ToneFindings& found, Tone) { return std::to_string(found.*member); };
  };
  const ToneRow rows[] = {
      {"ambient", "ambient mean", [&](const auto&, Tone tone) { return LevelText(run.GetAmbient()->At(tone)); }},
      {"threshold", "threshold, 50 times as much",
       [&](const auto&, Tone tone) { return ThresholdText(run.GetAmbient()->At(tone)); }},
      {"strongest", "strongest block", [&](const auto& found, Tone tone) { return StrongestText(run, found, tone); }},
      {"reaching", "blocks that reach the threshold", count(&ToneFindings::reaching)},
      {"covered", "… of them with the other tone stronger", count(&ToneFindings::covered)},
      {"noisy", "… of them noisy: less than 5 times the neighbours", count(&ToneFindings::noisy)},
      {"clean", "… of them clean tones", count(&ToneFindings::clean)}};
  const ToneFindings found17 = FindTone(run, Tone::k17000Hz);
  const ToneFindings found19 = FindTone(run, Tone::k19000Hz);
  std::ostringstream html;
  html << "<table id='tones'>\n<tr><th></th><th class='f17'>17 kHz, television's speaker</th><th class='f19'>19 kHz, "
          "optical output</th></tr>\n";
  for (const ToneRow& row : rows) {
    html << "<tr id='" << row.id << "'><th>" << row.title << "</th><td>" << row.cell(found17, Tone::k17000Hz)
         << "</td><td>" << row.cell(found19, Tone::k19000Hz) << "</td></tr>\n";
  }
  html << "</table>\n";
  return html.str();
}

std::string MakeEventTable(const RunRecord& run) {
  const auto& events = run.GetEvents();
  const std::size_t shown = std::min(events.size(), kMostEvents);
  std::ostringstream html;
  html << "<section><h2>Events</h2>\n<table id='events'>\n<tr><th>buffer</th><th>time (s)</th><th>event</th></tr>\n";
  for (std::size_t i = 0; i < shown; ++i) {
    const RecordedEvent& event = events[i];
    html << fmt::format("<tr><td>{}</td><td>{:.3f}</td><td>{}</td></tr>\n", event.buffer,
                        event.buffer * detector::kBufferS, WhatHappened(run, event));
  }
  html << "</table>\n";
  if (shown < events.size()) {
    html << "<p>" << events.size() - shown << " more; the lines of orvex-replay have them all.</p>\n";
  }
  html << "</section>\n";
  return html.str();
}

}  // namespace orvex::tools
