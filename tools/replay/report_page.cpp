// Assembles the page from its parts: the decision comes first, then the close-up that shows it, and the notes on how to
// read the charts last.
#include "replay/report_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

#include "Application/OrvexDetector.h"
#include "chart/palette.h"
#include "chart/svg.h"
#include "replay/explanation.h"
#include "replay/fine_section.h"
#include "replay/page_parts.h"
#include "replay/report_charts.h"
#include "replay/report_tables.h"
#include "replay/spectrogram_chart.h"
#include "replay/text.h"

namespace orvex::tools {
namespace {

std::string MakeFacts(const RunRecord& run, const ReportSubject& subject) {
  const std::size_t buffers = (subject.samples.size() + kVoiceBlockSamples - 1) / kVoiceBlockSamples;
  const auto result = run.FindRunResult();
  const auto count = [&](auto... kinds) {
    const auto& events = run.GetEvents();
    return std::to_string(std::count_if(events.begin(), events.end(),
                                        [=](const RecordedEvent& event) { return (... || (event.kind == kinds)); }));
  };
  return "<dl class='facts'>\n" +
         Fact("recording", fmt::format("{:.2f} s", static_cast<double>(subject.samples.size()) / kVoiceRateHz)) +
         Fact("buffers", std::to_string(buffers)) + Fact("analysed blocks", std::to_string(run.GetBlocks().size())) +
         Fact("mode", run.IsHearable() ? "hearable" : "detection") +
         Fact("difference", result ? fmt::format("{:+.1f} ms", result->differenceS * 1e3) : "none") +
         Fact("noisy tones", count(EventKind::kNoisy17, EventKind::kNoisy19)) +
         Fact("sequence errors", count(EventKind::kSequence)) + "</dl>\n";
}

std::string MakeDecision(const RunRecord& run, const std::optional<fine::Reading>& fine, const PagePart& part) {
  const Explanation explanation = Explain(run, fine);
  static const char* const kStyles[] = {"found", "doubtful", "not-found", "abnormal"};
  std::ostringstream html;
  html << "<section class='decision " << kStyles[static_cast<std::size_t>(explanation.outcome)] << "'>\n"
       << Heading(part, Escaped(explanation.headline)) << "<ul>\n";
  for (const std::string& reason : explanation.reasons) {
    html << "<li>" << Escaped(reason) << "</li>\n";
  }
  html << "</ul>\n</section>\n";
  return html.str();
}

std::string MakeCharts(const RunRecord& run, const ReportSubject& subject, View view, const PagePart& part,
                       bool isWhole) {
  view.name = part.prefix + view.name;
  std::string html = "<section class='charts'>\n" + Heading(part, Escaped(view.title));
  if (!isWhole) {
    html += std::string("<p class='hint'>") + kReadoutHint + "</p>\n";
  }
  html += Figure(kSpectrogramTitle, kSpectrogramLegend, DrawSpectrogram(run, subject.samples, view), view.title);
  html += Figure(kTonesTitle, kTonesLegend, DrawTones(run, view, !isWhole), view.title);
  html += Figure(kEventsTitle, kEventsLegend, DrawEvents(run, view), view.title);
  html += Figure(kRatiosTitle, kRatiosLegend, DrawRatios(run, view), view.title);
  html += Figure(kNeighboursTitle, kNeighboursLegend, DrawNeighbours(run, view), view.title);
  return html + MakeValueTable(run, view) + "</section>\n";
}

std::string MakePart(const RunRecord& run, const ReportSubject& subject, const std::optional<fine::Reading>& fine,
                     const PagePart& part) {
  std::string html;
  if (!subject.warning.empty()) {
    html += "<p class='warning'>" + Escaped(subject.warning) + "</p>\n";
  }
  html += MakeDecision(run, fine, part) + (fine ? MakeReadings(run, *fine, part) : "") +
          MakeCharts(run, subject, CloseUp(run), part, false) + MakeFacts(run, subject) + MakeToneTable(run) +
          MakeCharts(run, subject, WholeRecording(run), part, true) + MakeEventTable(run, part);
  return html + (fine ? MakeOnsets(*fine, part) : "");
}

}  // namespace

void ReportPage::Add(const RunRecord& run, const ReportSubject& subject, const std::optional<fine::Reading>& fine) {
  if (!m_IsOfSeveral) {
    m_Title = subject.file;
    m_Parts = MakePart(run, subject, fine, {"", 2});
    return;
  }
  const std::string name = fmt::format("recording-{}", m_Lines.size() + 1);
  m_Lines.push_back(MakeOverviewLine(name, subject.file, run, fine));
  m_Parts += fmt::format("<article id='{0}' aria-labelledby='{0}-file'>\n<h2 id='{0}-file'><code>{1}</code></h2>\n",
                         name, Escaped(subject.file)) +
             MakePart(run, subject, fine, {name + "-", 3}) + "</article>\n";
}

void ReportPage::AddUnreadable(const std::string& file, const std::string& problem) {
  m_Lines.push_back(MakeUnreadableLine(file, problem));
}

std::string ReportPage::Finish() const {
  const std::string title = m_IsOfSeveral ? Counted(static_cast<std::int64_t>(m_Lines.size()), "recording")
                                          : "<code>" + Escaped(m_Title) + "</code>";
  return std::string(kPageBegin) + "<title>" + (m_IsOfSeveral ? title : Escaped(m_Title)) +
         " - orvex-replay</title>\n<style>" + kPalette + kPageStyle +
         "</style>\n</head>\n<body>\n<header><h1>Replay of " + title + "</h1></header>\n<main>\n" +
         (m_IsOfSeveral ? MakeOverview(m_Lines) : "") + m_Parts + kPageNotes + "</main>\n</body>\n</html>\n";
}

std::string MakeReportPage(const RunRecord& run, const ReportSubject& subject,
                           const std::optional<fine::Reading>& fine) {
  ReportPage page(1);
  page.Add(run, subject, fine);
  return page.Finish();
}

}  // namespace orvex::tools
