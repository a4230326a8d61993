// Assembles the page from its parts: the decision comes first, the notes on how to read the charts last.
#include "replay/report_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

#include "Application/OrvexDetector.h"
#include "replay/explanation.h"
#include "replay/fine_section.h"
#include "replay/page_parts.h"
#include "replay/report_charts.h"
#include "replay/report_tables.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

std::string MakeFacts(const RunRecord& run, const ReportSubject& subject) {
  const std::size_t buffers = (subject.bytes + kVoiceBlockBytes - 1) / kVoiceBlockBytes;
  const auto result = run.FindRunResult();
  const auto count = [&](auto... kinds) {
    const auto& events = run.GetEvents();
    return std::to_string(std::count_if(events.begin(), events.end(),
                                        [=](const RecordedEvent& event) { return (... || (event.kind == kinds)); }));
  };
  return "<dl class='facts'>\n" +
         Fact("recording", fmt::format("{:.2f} s", static_cast<double>(subject.bytes) / 2.0 / kVoiceRateHz)) +
         Fact("buffers", std::to_string(buffers)) + Fact("analysed blocks", std::to_string(run.GetBlocks().size())) +
         Fact("mode", run.IsHearable() ? "hearable" : "detection") +
         Fact("difference", result ? fmt::format("{:+.1f} ms", result->differenceS * 1e3) : "none") +
         Fact("noisy tones", count(EventKind::kNoisy17, EventKind::kNoisy19)) +
         Fact("sequence errors", count(EventKind::kSequence)) + "</dl>\n";
}

std::string MakeDecision(const RunRecord& run) {
  const Explanation explanation = Explain(run);
  static const char* const kStyles[] = {"found", "doubtful", "not-found", "abnormal"};
  std::ostringstream html;
  html << "<section id='decision' class='" << kStyles[static_cast<std::size_t>(explanation.outcome)] << "'>\n<h2>"
       << Escaped(explanation.headline) << "</h2>\n<ul>\n";
  for (const std::string& reason : explanation.reasons) {
    html << "<li>" << Escaped(reason) << "</li>\n";
  }
  html << "</ul>\n</section>\n";
  return html.str();
}

std::string MakeCharts(const RunRecord& run, const View& view, const std::string& title, bool isWhole) {
  std::string html = "<section class='charts'>\n<h2>" + title + "</h2>\n<p class='readout'>" + kReadoutHint + "</p>\n";
  html += Figure("What the receiver reported", kEventsLegend, DrawEvents(run, view));
  html += Figure("The two tones", kTonesLegend, DrawTones(run, view));
  html += Figure("Each tone over the mean of 17.5 and 18 kHz", kRatiosLegend, DrawRatios(run, view));
  if (isWhole) {
    html += Figure("The neighbour frequencies", kNeighboursLegend, DrawNeighbours(run, view));
  }
  return html + "</section>\n";
}

}  // namespace

std::string MakeReportPage(const RunRecord& run, const ReportSubject& subject,
                           const std::optional<fine::Reading>& fine) {
  std::ostringstream html;
  html << kPageBegin << "<title>" << Escaped(subject.file) << " - orvex-replay</title>\n<style>" << kPageStyle
       << (fine ? kFineStyle : "") << "</style>\n</head>\n<body>\n<header><h1>Replay of <code>" << Escaped(subject.file)
       << "</code></h1></header>\n";
  if (!subject.warning.empty()) {
    html << "<p class='warning'>" << Escaped(subject.warning) << "</p>\n";
  }
  html << MakeDecision(run) << MakeFacts(run, subject) << MakeToneTable(run)
       << (fine ? MakeFineSection(run, *fine) : "")
       << MakeCharts(run, WholeRecording(run), "The whole recording", true);
  if (const auto view = CloseUp(run)) {
    html << MakeCharts(
        run, *view,
        fmt::format("Close-up: buffers {:.0f} to {:.0f}", std::max(1.0, view->buffers.low), view->buffers.high), false);
  }
  html << MakeEventTable(run) << kPageNotes << fmt::format("<script>const bufferS = {:.17g};", detector::kBufferS)
       << kPageScript << "</script>\n</body>\n</html>\n";
  return html.str();
}

}  // namespace orvex::tools
