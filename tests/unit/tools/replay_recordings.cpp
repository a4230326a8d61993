// Makes recordings and replays them.
#include "replay_recordings.h"

#include <json/reader.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <sstream>

#include "recording.h"
#include "report_lines.h"

namespace orvex::tools {
namespace {

constexpr double kTwoPi = 6.283185307179586;

struct Part {
  double frequencyHz;
  double amplitude;
};

std::vector<Part> PartsOf(char block) {
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

std::vector<std::uint8_t> MakeRecording(const std::string& blocks) {
  std::minstd_rand random(1);
  std::vector<std::uint8_t> bytes;
  for (const char block : blocks) {
    const std::vector<Part> parts = PartsOf(block);
    for (int n = 0; n < 768; ++n) {
      double sample = block == '0' ? 0.0 : static_cast<double>(random() % 17) - 8.0;
      for (const Part& part : parts) {
        sample += part.amplitude * std::sin(kTwoPi * part.frequencyHz * n / 46545.0);
      }
      const auto bits = static_cast<std::uint16_t>(std::lrint(sample));
      bytes.push_back(static_cast<std::uint8_t>(bits & 0xFFU));
      bytes.push_back(static_cast<std::uint8_t>(bits >> 8U));
    }
  }
  return bytes;
}

std::vector<Json::Value> ReplayLines(const std::vector<std::uint8_t>& bytes, bool trace, bool hearable) {
  std::stringstream text;
  ReportLines lines(text, "", trace);
  ReceiverRig rig(lines, hearable);
  Feed(bytes, rig);
  lines.WriteSummary(rig);
  std::vector<Json::Value> objects;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  for (std::string line; std::getline(text, line);) {
    objects.emplace_back();
    if (!reader->parse(line.data(), line.data() + line.size(), &objects.back(), nullptr)) {
      throw std::runtime_error("no JSON: " + line);
    }
  }
  return objects;
}

RunRecord ReplayRecord(const std::vector<std::uint8_t>& bytes, bool hearable) {
  RunRecord run(hearable);
  ReceiverRig rig(run, hearable);
  Feed(bytes, rig);
  return run;
}

}  // namespace orvex::tools
