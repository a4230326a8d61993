// What can fail around the service: every operation with every result that it can fail with.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace orvex::runs {

constexpr int kForEver = 0;  // as the number of a call
constexpr char kDone[] = "done";

struct FailingOperation {
  const char* name;                           // of the function
  std::vector<long> results;                  // each a failure
  std::map<int, std::string> terminate = {};  // how the run ends, by the number of the call that fails; others: kDone
};

// For the messages of GoogleTest.
inline void PrintTo(const FailingOperation& operation, std::ostream* out) {
  *out << operation.name;
}

// Operations that a run which finds its difference calls, in the order of the contract's headers, then ALSA's, Ecore's
// and those of the C library.
const std::vector<FailingOperation>& FailingOperations();

}  // namespace orvex::runs
