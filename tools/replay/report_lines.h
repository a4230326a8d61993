// What the receiver reports about a recording, as JSON objects, one per line.
#pragma once

#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <ostream>
#include <string>

#include "fine/fine_reading.h"
#include "receiver/receiver_rig.h"
#include "replay/run_record.h"

namespace orvex::tools {

class ReportLines : public OrvexReceiverObserver {
public:
  // `file`: put into each object, when not empty. `trace`: one object per analysed block, too.
  ReportLines(std::ostream& out, std::string file, bool trace);

  void OnBlock(std::int32_t buffer, const ToneMagnitudes& magnitudes, const Levels& ambient) override;
  void OnAmbientKnown(std::int32_t buffer, const Levels& /*means*/) override { Write("ambient", buffer); }
  void OnFirstTone(std::int32_t buffer, Tone tone, double needed) override;
  void OnSequenceError(std::int32_t buffer, Tone /*tone*/, std::int32_t /*first*/, double /*needed*/) override {
    Write("sequence", buffer);
  }
  void OnNoisyTone(std::int32_t buffer, Tone tone, std::int32_t count) override;
  void OnPair(std::int32_t buffer, Tone tone, std::int32_t first, double differenceS) override;
  void OnAbnormalInput(std::int32_t buffer) override { Write("abnormal", buffer); }
  void OnExtend(std::int32_t buffer) override { Write("extend", buffer); }

  // `run`: all that `rig` has reported.
  void WriteSummary(ReceiverRig& rig, const RunRecord& run);
  void WriteFine(const fine::Reading& reading);

private:
  void Write(const char* event, std::int32_t buffer, Json::Value members = Json::objectValue);
  void WriteObject(Json::Value object);

  std::ostream& m_Out;
  const std::string m_File;
  const bool m_Trace;
  std::unique_ptr<Json::StreamWriter> m_Writer;
};

}  // namespace orvex::tools
