// What the receiver reports about a recording, as JSON objects, one per line.
#pragma once

#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <ostream>
#include <string>

#include "receiver/receiver_rig.h"
#include "replay/run_record.h"

namespace orvex::tools {

class ReportLines : public ReceiverListener {
public:
  // `file`: put into each object, when not empty. `trace`: one object per analysed block, too.
  ReportLines(std::ostream& out, std::string file, bool trace);

  void OnBlock(std::int32_t buffer, const BlockLevels& levels) override;
  void OnAmbient(std::int32_t buffer) override { Write("ambient", buffer); }
  void OnFirst(std::int32_t buffer, Tone tone) override;
  void OnSequence(std::int32_t buffer) override { Write("sequence", buffer); }
  void OnNoisy(std::int32_t buffer, Tone tone, std::int32_t count) override;
  void OnResult(std::int32_t buffer, std::int32_t first, std::int32_t second, double differenceS) override;
  void OnAbnormal(std::int32_t buffer) override { Write("abnormal", buffer); }
  void OnExtend(std::int32_t buffer) override { Write("extend", buffer); }

  // The last line. `run`: all that `rig` has reported.
  void WriteSummary(ReceiverRig& rig, const RunRecord& run);

private:
  void Write(const char* event, std::int32_t buffer, Json::Value members = Json::objectValue);
  void WriteObject(Json::Value object);

  std::ostream& m_Out;
  const std::string m_File;
  const bool m_Trace;
  std::unique_ptr<Json::StreamWriter> m_Writer;
};

}  // namespace orvex::tools
