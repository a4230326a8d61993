// Distance of two words: F. J. Damerau, "A technique for computer detection and correction of spelling errors",
// Communications of the ACM 7 (1964), with each letter changed at most once.
#include "options/suggestion.h"

#include <algorithm>
#include <cstddef>

namespace orvex::tools {
namespace {

// Letters without the dashes before them, which say nothing of what was meant.
std::string Letters(const std::string& word) {
  const std::size_t begin = word.find_first_not_of('-');
  return begin == std::string::npos ? "" : word.substr(begin);
}

std::size_t Distance(const std::string& a, const std::string& b) {
  // costs[i][j]: of the first i letters of `a` to the first j of `b`.
  std::vector<std::vector<std::size_t>> costs(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        costs[i][j] = i + j;
        continue;
      }
      const std::size_t replaced = costs[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      costs[i][j] = std::min({costs[i - 1][j] + 1, costs[i][j - 1] + 1, replaced});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        costs[i][j] = std::min(costs[i][j], costs[i - 2][j - 2] + 1);
      }
    }
  }
  return costs[a.size()][b.size()];
}

}  // namespace

std::string DidYouMean(const std::string& word, const std::vector<std::string>& known) {
  const std::string letters = Letters(word);
  const std::size_t length = letters.size();
  std::size_t limit = std::min(std::max<std::size_t>(2, length / 3), length / 2);
  const std::string* nearest = nullptr;
  for (const std::string& candidate : known) {
    const std::size_t distance = Distance(letters, Letters(candidate));
    if (distance <= limit && (nearest == nullptr || distance < limit)) {
      nearest = &candidate;
      limit = distance;
    }
  }
  return nearest == nullptr ? "" : ", did you mean \"" + *nearest + "\"?";
}

}  // namespace orvex::tools
