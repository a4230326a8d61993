// What several runs came to together.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <json/value.h>

#include "tv/run_summary.h"

namespace orvex::tools {

class RunFigures {
public:
  // `asked`: how many runs there are to be.
  explicit RunFigures(std::uint32_t asked) : m_Asked(asked) {}

  void Add(const RunSummary& run);

  bool AreAllGood() const { return m_Good == m_Asked; }
  // Of the misalignment that remains, in ms, over all runs of which it is known; empty: of too few. The spread is the
  // standard deviation, with n - 1 in the denominator; the worst is the one farthest from 0, with its sign.
  std::optional<double> MeanMs() const;
  std::optional<double> SpreadMs() const;
  std::optional<double> WorstMs() const;

  Json::Value ToJson() const;
  // Some lines for a person.
  std::string ToText() const;

private:
  std::uint32_t m_Asked;
  std::uint32_t m_Runs = 0;
  std::uint32_t m_Good = 0;
  std::vector<double> m_RemainingMs;
};

}  // namespace orvex::tools
