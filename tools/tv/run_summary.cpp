// What is not known is null in JSON and "unknown" in the text.
#include "tv/run_summary.h"

#include <fmt/core.h>
#include <json/writer.h>

#include "tv/verdict.h"

namespace orvex::tools {
namespace {

template <typename T>
Json::Value OrNull(const std::optional<T>& value) {
  return value ? Json::Value(*value) : Json::Value();
}

Json::Value OrNull(const std::string& text) {
  return text.empty() ? Json::Value() : Json::Value(text);
}

std::string Number(const char* format, std::optional<double> value) {
  return value ? fmt::format(fmt::runtime(format), *value) : "unknown";
}

std::string Line(const char* name, const std::string& value) {
  std::string text = "  ";
  text += name;
  text.resize(26, ' ');
  return text + value + "\n";
}

}  // namespace

Json::Value SummaryValue(const RunSummary& summary) {
  Json::Value json(Json::objectValue);
  json["verdict"] = NameOf(VerdictOf(summary));
  json["terminate"] = summary.report.terminate;
  json["result"] = summary.report.result;
  json["base_ms"] = OrNull(summary.report.baseMs);
  json["difference_s"] = OrNull(summary.report.differenceS);
  json["applied_ms"] = summary.delayAfterMs ? Json::Value(Json::Int64{*summary.delayAfterMs}) : Json::Value();
  json["misalignment_before_ms"] = OrNull(summary.misalignmentBeforeMs);
  json["misalignment_after_ms"] = OrNull(summary.misalignmentAfterMs);
  json["duration_ms"] = Json::Int64(summary.ending.duration.count());
  json["exit_code"] = OrNull(summary.ending.exitCode);
  json["dump_file"] = OrNull(summary.report.dumpFile);
  json["result_file"] = OrNull(summary.report.resultFile);
  json["events"] = Json::Value(Json::arrayValue);
  for (const Json::Value& event : summary.events) {
    json["events"].append(event);
  }
  return json;
}

std::string SummaryJson(const RunSummary& summary) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "  ";
  return Json::writeString(writer, SummaryValue(summary)) + "\n";
}

std::string SummaryText(const RunSummary& summary) {
  const RunReport& report = summary.report;
  const std::optional<double> differenceMs =
      report.differenceS ? std::optional<double>(*report.differenceS * 1000.0) : std::nullopt;
  std::string text;
  text += Line("base delay", Number("{:.0f} ms", report.baseMs));
  text += Line("measured difference",
               differenceMs ? Number("{:+.1f} ms, optical output against speaker", differenceMs) : "none");
  text += Line("applied delay", DelayInWords(report.wantedMs, summary.delayAfterMs));
  text += Line("true misalignment", Number("{:+.1f} ms", summary.misalignmentBeforeMs) + " before, " +
                                        Number("{:+.1f} ms", summary.misalignmentAfterMs) + " after");
  text += Line("ended", report.terminate + " (" + report.result + ") after " +
                            Number("{:.2f} s", static_cast<double>(summary.ending.duration.count()) / 1000.0));
  if (!report.dumpFile.empty()) {
    text += Line("recording", report.dumpFile);
  }
  text += Line("verdict", VerdictInWords(summary));
  return text;
}

}  // namespace orvex::tools
