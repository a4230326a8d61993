// A sine at full scale has a magnitude of half its amplitude times the number of samples: that is 0 dBFS.
#include "replay/text.h"

#include <fmt/format.h>

#include <cmath>

#include "chart/svg.h"

namespace orvex::tools {

const char* NameOf(Tone tone) {
  return tone == Tone::k17000Hz ? "17 kHz" : "19 kHz";
}

const char* OriginOf(Tone tone) {
  return tone == Tone::k17000Hz ? "television's speaker" : "optical output";
}

std::string BufferText(std::int32_t buffer) {
  return fmt::format("buffer {} ({:.3f} s)", buffer, buffer * detector::kBufferS);
}

std::string Counted(std::int64_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string Fact(const std::string& name, const std::string& value) {
  return "<div><dt>" + name + "</dt><dd>" + Escaped(value) + "</dd></div>\n";
}

std::string Heading(const PagePart& part, const std::string& html) {
  return fmt::format("<h{0}>{1}</h{0}>\n", part.heading, html);
}

std::string Scrollable(const std::string& name, const std::string& html) {
  return "<div class='scroll' tabindex='0' role='group' aria-label='" + Escaped(name) + "'>\n" + html + "</div>\n";
}

std::string Figure(const std::string& title, const std::string& legend, const std::string& chart,
                   const std::string& where) {
  return "<figure>\n<figcaption><b>" + title + "</b>" + legend + "</figcaption>\n" +
         Scrollable(where.empty() ? title : title + ", " + where, chart) + "</figure>\n";
}

double Decibels(double ratio) {
  return 20.0 * std::log10(ratio);
}

double LevelDbfs(double magnitude) {
  constexpr double kMagnitude = 32768.0 * kVoiceBlockSamples / 2.0;
  return Decibels(magnitude / kMagnitude);
}

}  // namespace orvex::tools
