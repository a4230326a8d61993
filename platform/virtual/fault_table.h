// What a virtual television's faults.json says: platform answers and audio faults to inject.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvex::virtual_tv {

constexpr std::size_t kMaximumFaultBytes = 1 << 20;

// The file is one JSON object, operation name to answer. An answer is an integer, given at every call, or an array: the
// n-th call gets the n-th entry, null and the calls after the last entry are left alone. An answer stands in place of
// the operation's work.
struct FaultTable {
  struct Answer {
    bool always = false;                    // `calls` has one entry then
    std::vector<std::optional<int>> calls;  // by number of the call
  };
  std::map<std::string, Answer> answers;
  std::map<std::string, std::vector<std::uint64_t>> frames;
  std::set<std::string> absent;
};

// Reads the file's text. Throws std::runtime_error that names key, value and what was expected.
FaultTable ParseFaults(const std::string& text);

}  // namespace orvex::virtual_tv
