#include "tv/run_figures.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <fmt/core.h>

#include "tv/verdict.h"

namespace orvex::tools {
namespace {

Json::Value FigureOrNull(std::optional<double> value) {
  return value ? Json::Value(*value) : Json::Value();
}

std::string Figure(const char* name, const char* format, std::optional<double> value) {
  return std::string(name) + " " + (value ? fmt::format(fmt::runtime(format), *value) + " ms" : "unknown");
}

}  // namespace

void RunFigures::Add(const RunSummary& run) {
  ++m_Runs;
  m_Good += IsGood(VerdictOf(run)) ? 1 : 0;
  if (run.misalignmentAfterMs) {
    m_RemainingMs.push_back(*run.misalignmentAfterMs);
  }
}

std::optional<double> RunFigures::MeanMs() const {
  if (m_RemainingMs.empty()) {
    return std::nullopt;
  }
  return std::accumulate(m_RemainingMs.begin(), m_RemainingMs.end(), 0.0) / static_cast<double>(m_RemainingMs.size());
}

std::optional<double> RunFigures::SpreadMs() const {
  if (m_RemainingMs.size() < 2) {
    return std::nullopt;
  }
  const double mean = *MeanMs();
  const double squares = std::accumulate(m_RemainingMs.begin(), m_RemainingMs.end(), 0.0,
                                         [=](double sum, double ms) { return sum + (ms - mean) * (ms - mean); });
  return std::sqrt(squares / static_cast<double>(m_RemainingMs.size() - 1));
}

std::optional<double> RunFigures::WorstMs() const {
  const auto worst = std::max_element(m_RemainingMs.begin(), m_RemainingMs.end(),
                                      [](double a, double b) { return std::abs(a) < std::abs(b); });
  return worst == m_RemainingMs.end() ? std::nullopt : std::optional<double>(*worst);
}

Json::Value RunFigures::ToJson() const {
  Json::Value json(Json::objectValue);
  json["asked"] = Json::UInt{m_Asked};
  json["runs"] = Json::UInt{m_Runs};
  json["succeeded"] = Json::UInt{m_Good};
  json["remaining_mean_ms"] = FigureOrNull(MeanMs());
  json["remaining_spread_ms"] = FigureOrNull(SpreadMs());
  json["remaining_worst_ms"] = FigureOrNull(WorstMs());
  return json;
}

std::string RunFigures::ToText() const {
  const std::string runs =
      m_Runs == m_Asked ? std::to_string(m_Runs) : fmt::format("{} of {}, then interrupted", m_Runs, m_Asked);
  return fmt::format("  {:<24}{}, {} succeeded\n  {:<24}{}, {}, {}\n", "runs", runs, m_Good, "remaining misalignment",
                     Figure("mean", "{:+.1f}", MeanMs()), Figure("spread", "{:.1f}", SpreadMs()),
                     Figure("worst", "{:+.1f}", WorstMs()));
}

}  // namespace orvex::tools
