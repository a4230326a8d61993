// Maps the characters to sines, and feeds recordings to a receiver as orvex-replay does.
#include "unit/tools/replay_recordings.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <sstream>

#include "linux/json_text.h"
#include "replay/recording.h"
#include "replay/report_lines.h"

namespace orvex::tools {
namespace {

constexpr double kTwoPi = 6.283185307179586;

std::vector<Sine> SinesOf(char block) {
  switch (block) {
    case '7':
      return {{17000.0, 3000.0}};
    case '8':
      return {{17000.0, 1500.0}};
    case '9':
      return {{19000.0, 3000.0}};
    case '6':
      return {{19000.0, 1500.0}};
    case 'x':
      return {{17000.0, 3000.0}, {17500.0, 2500.0}};
    case 'y':
      return {{19000.0, 3000.0}, {18000.0, 2500.0}};
    case 'b':
      return {{17000.0, 3000.0}, {19000.0, 2000.0}};
    default:
      return {};
  }
}

}  // namespace

void RecordingMaker::Add(const std::vector<Sine>& sines, bool hasNoise) {
  for (int n = 0; n < kVoiceBlockSamples; ++n) {
    double sample = hasNoise ? static_cast<double>(m_Random() % 17) - 8.0 : 0.0;
    for (const Sine& sine : sines) {
      sample += sine.amplitude * std::sin(kTwoPi * sine.frequencyHz * n / kVoiceRateHz);
    }
    const auto bits = static_cast<std::uint16_t>(std::lrint(sample));
    m_Bytes.push_back(static_cast<std::uint8_t>(bits & 0xFFU));
    m_Bytes.push_back(static_cast<std::uint8_t>(bits >> 8U));
  }
}

void RecordingMaker::Add(const std::string& blocks) {
  for (const char block : blocks) {
    Add(SinesOf(block), block != '0');
  }
}

std::vector<std::uint8_t> MakeRecording(const std::string& blocks) {
  RecordingMaker maker;
  maker.Add(blocks);
  return maker.Bytes();
}

std::vector<Json::Value> ReplayLines(const std::vector<std::uint8_t>& bytes, bool trace, bool hearable) {
  std::stringstream text;
  ReportLines lines(text, "", trace);
  RunRecord run(hearable);
  ReceiverRig rig({&lines, &run}, hearable);
  Feed(bytes, rig);
  lines.WriteSummary(rig, run);
  std::vector<Json::Value> objects;
  for (std::string line; std::getline(text, line);) {
    objects.push_back(port::ParseJson(line));
  }
  return objects;
}

RunRecord ReplayRecord(const std::vector<std::uint8_t>& bytes, bool hearable) {
  RunRecord run(hearable);
  ReceiverRig rig({&run}, hearable);
  Feed(bytes, rig);
  return run;
}

ReportSubject SubjectOf(const std::vector<std::uint8_t>& bytes, const std::string& file) {
  return {file, "", SamplesOf({bytes, ""})};
}

std::string PageOf(const std::vector<std::uint8_t>& bytes, const std::string& file,
                   const std::optional<fine::Reading>& fine) {
  return MakeReportPage(ReplayRecord(bytes), SubjectOf(bytes, file), fine);
}

}  // namespace orvex::tools
