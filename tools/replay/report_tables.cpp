// Says what stands in each row: what was found of a tone, and what each event means.
#include "replay/report_tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>

#include "replay/findings.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

constexpr std::size_t kMostEvents = 200;
constexpr std::size_t kMostValueRows = 120;

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

using DecibelsOf = std::function<double(const ToneMagnitudes&)>;

// The highest in the blocks; "-" for silence.
std::string HighestCell(const RecordedBlock* blocks, std::size_t count, const DecibelsOf& decibels) {
  double highest = -INFINITY;
  std::for_each(blocks, blocks + count, [&](const RecordedBlock& block) {
    const double value = decibels(block.levels);
    highest = value > highest ? value : highest;  // not a number: neither
  });
  return std::isfinite(highest) ? fmt::format("<td>{:.1f}</td>", highest) : "<td>-</td>";
}

// What became of the tones in the blocks: the best verdict on each.
std::string TonesText(const RunRecord& run, const RecordedBlock* blocks, std::size_t count) {
  static const char* const kTexts[] = {"", "", " covered", " noisy", ""};
  std::string text;
  for (const Tone tone : kTones) {
    Verdict best = Verdict::kNotLookedAt;
    std::for_each(blocks, blocks + count,
                  [&](const RecordedBlock& block) { best = std::max(best, Judge(run, block, tone)); });
    if (best > Verdict::kWeak) {
      text += (text.empty() ? "" : ", ") + std::string(NameOf(tone)) + kTexts[static_cast<std::size_t>(best)];
    }
  }
  return text;
}

std::string MakeValueRow(const RunRecord& run, const RecordedBlock* blocks, std::size_t count) {
  std::string row =
      fmt::format("<tr><th scope='row'>{}</th><td>{:.3f}</td>", blocks->buffer, blocks->buffer * detector::kBufferS);
  const auto add = [&](const DecibelsOf& decibels) { row += HighestCell(blocks, count, decibels); };
  for (const Tone tone : kTones) {
    add([=](const ToneMagnitudes& levels) { return LevelDbfs(levels.At(tone)); });
    add([=](const ToneMagnitudes& levels) { return Decibels(levels.Ratio(tone)); });
  }
  add([](const ToneMagnitudes& levels) { return LevelDbfs(levels.at17500); });
  add([](const ToneMagnitudes& levels) { return LevelDbfs(levels.at18000); });
  return row + "<td>" + TonesText(run, blocks, count) + "</td></tr>\n";
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
  html << "<table class='tones'>\n<thead><tr><td></td><th scope='col' class='f17'>17 kHz, television's speaker</th>"
          "<th scope='col' class='f19'>19 kHz, optical output</th></tr></thead>\n<tbody>\n";
  for (const ToneRow& row : rows) {
    html << "<tr class='" << row.id << "'><th scope='row'>" << row.title << "</th><td>"
         << row.cell(found17, Tone::k17000Hz) << "</td><td>" << row.cell(found19, Tone::k19000Hz) << "</td></tr>\n";
  }
  html << "</tbody>\n</table>\n";
  return Scrollable("Levels and blocks of each tone", html.str());
}

std::string MakeValueTable(const RunRecord& run, const View& view) {
  std::vector<RecordedBlock> blocks;
  std::copy_if(run.GetBlocks().begin(), run.GetBlocks().end(), std::back_inserter(blocks),
               [&](const RecordedBlock& block) { return view.buffers.Holds(block.buffer); });
  if (blocks.empty()) {
    return "";
  }
  const std::size_t perRow = (blocks.size() + kMostValueRows - 1) / kMostValueRows;
  const std::string caption = perRow == 1 ? "Values of these pictures as a table"
                                          : fmt::format(
                                                "Values of these pictures as a table: the highest of each {} "
                                                "buffers",
                                                perRow);
  std::ostringstream html;
  html << "<table class='numbers'>\n<thead><tr><th scope='col'>buffer</th><th scope='col'>time (s)</th><th scope='col' "
          "class='f17'>17 kHz (dBFS)</th><th scope='col' class='f17'>over neighbours (dB)</th><th scope='col' "
          "class='f19'>19 kHz (dBFS)</th><th scope='col' class='f19'>over neighbours (dB)</th><th scope='col'>17.5 kHz "
          "(dBFS)</th><th scope='col'>18 kHz (dBFS)</th><th scope='col'>tones</th></tr></thead>\n<tbody>\n";
  for (std::size_t begin = 0; begin < blocks.size(); begin += perRow) {
    html << MakeValueRow(run, blocks.data() + begin, std::min(perRow, blocks.size() - begin));
  }
  html << "</tbody>\n</table>\n";
  return "<details class='values'><summary>" + caption + "</summary>\n" +
         Scrollable(view.title + ": values", html.str()) + "</details>\n";
}

std::string MakeEventTable(const RunRecord& run, const PagePart& part) {
  const auto& events = run.GetEvents();
  const std::size_t shown = std::min(events.size(), kMostEvents);
  std::ostringstream html;
  html << "<table class='events'>\n<thead><tr><th scope='col'>buffer</th><th scope='col'>time (s)</th><th "
          "scope='col'>event</th></tr></thead>\n<tbody>\n";
  for (std::size_t i = 0; i < shown; ++i) {
    const RecordedEvent& event = events[i];
    html << fmt::format("<tr><td>{}</td><td>{:.3f}</td><td>{}</td></tr>\n", event.buffer,
                        event.buffer * detector::kBufferS, WhatHappened(run, event));
  }
  html << "</tbody>\n</table>\n";
  const std::string rest =
      shown < events.size()
          ? fmt::format("<p>{} more; the lines of orvex-replay have them all.</p>\n", events.size() - shown)
          : "";
  return "<section>" + Heading(part, "Events") + Scrollable("Events", html.str()) + rest + "</section>\n";
}

}  // namespace orvex::tools
