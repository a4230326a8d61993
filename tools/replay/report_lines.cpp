// Chooses the members of each object. A member without a value, such as a difference that was not found, is null.
#include "replay/report_lines.h"

#include <optional>
#include <utility>

namespace orvex::tools {
namespace {

constexpr int kDigits = 17;  // enough to read the same double back

std::unique_ptr<Json::StreamWriter> MakeWriter() {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["precision"] = kDigits;
  return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

}  // namespace

ReportLines::ReportLines(std::ostream& out, std::string file, bool trace)
    : m_Out(out), m_File(std::move(file)), m_Trace(trace), m_Writer(MakeWriter()) {}

void ReportLines::OnBlock(std::int32_t buffer, const ToneMagnitudes& magnitudes, const Levels& /*ambient*/) {
  if (!m_Trace) {
    return;
  }
  Json::Value members;
  members["m17000"] = magnitudes.at17000;
  members["m17500"] = magnitudes.at17500;
  members["m18000"] = magnitudes.at18000;
  members["m19000"] = magnitudes.at19000;
  members["r17"] = magnitudes.ratio17;
  members["r19"] = magnitudes.ratio19;
  Write("block", buffer, members);
}

void ReportLines::OnFirstTone(std::int32_t buffer, Tone tone, double /*needed*/) {
  Write(tone == Tone::k17000Hz ? "first17" : "first19", buffer);
}

void ReportLines::OnNoisyTone(std::int32_t buffer, Tone tone, std::int32_t count) {
  Json::Value members;
  members["count"] = count;
  Write(tone == Tone::k17000Hz ? "noisy17" : "noisy19", buffer, members);
}

void ReportLines::OnPair(std::int32_t buffer, Tone /*tone*/, std::int32_t first, double differenceS) {
  Json::Value members;
  members["first"] = first;
  members["second"] = buffer;
  members["difference_s"] = differenceS;
  Write("result", buffer, members);
}

void ReportLines::WriteFine(const fine::Reading& reading) {
  const auto levelOf = [](const std::optional<fine::Arrival>& arrival) {
    return arrival ? Json::Value(arrival->levelDb) : Json::Value();
  };
  Json::Value object;
  object["event"] = "fine";
  object["difference_s"] = reading.differenceS ? Json::Value(*reading.differenceS) : Json::Value();
  object["interval_s"] = Json::Value();
  if (reading.differenceS) {
    object["interval_s"].append(reading.intervalS.low);
    object["interval_s"].append(reading.intervalS.high);
  }
  object["pairs"] = reading.pairs;
  object["rate_ppm"] = reading.ratePpm ? Json::Value(*reading.ratePpm) : Json::Value();
  object["level_17_db"] = levelOf(reading.arrivals[0]);
  object["level_19_db"] = levelOf(reading.arrivals[1]);
  object["reason"] = reading.reason.empty() ? Json::Value() : Json::Value(reading.reason);
  WriteObject(std::move(object));
}

void ReportLines::WriteSummary(ReceiverRig& rig, const RunRecord& run) {
  const OrvexReceiver& receiver = rig.GetReceiver();
  const double differenceS = rig.GetDifferenceS();
  const auto runResult = run.FindRunResult();
  const std::optional<Levels>& means = run.GetAmbient();
  Json::Value summary;
  summary["event"] = "summary";
  summary["buffers"] = rig.GetBufferCount();
  summary["blocks"] = receiver.GetBlockIndex();
  summary["ambient"]["17000"] = means ? Json::Value(means->at17000) : Json::Value();
  summary["ambient"]["17500"] = means ? Json::Value(means->at17500) : Json::Value();
  summary["ambient"]["18000"] = means ? Json::Value(means->at18000) : Json::Value();
  summary["ambient"]["19000"] = means ? Json::Value(means->at19000) : Json::Value();
  summary["difference_s"] = differenceS != 0.0 ? Json::Value(differenceS) : Json::Value();
  summary["run_difference_s"] = runResult ? Json::Value(runResult->differenceS) : Json::Value();
  summary["direction"] = receiver.GetDirection();
  summary["noise_count"] = receiver.GetNoiseCount();
  WriteObject(summary);
}

void ReportLines::Write(const char* event, std::int32_t buffer, Json::Value members) {
  members["event"] = event;
  members["buffer"] = buffer;
  WriteObject(std::move(members));
}

void ReportLines::WriteObject(Json::Value object) {
  if (!m_File.empty()) {
    object["file"] = m_File;
  }
  m_Writer->write(object, &m_Out);
  m_Out << '\n';
}

}  // namespace orvex::tools
