// Understands a run from the service's log lines.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvex::tools {

// What the lines have told so far. An empty optional or text: not told.
struct RunReport {
  std::optional<std::uint32_t> baseMs;    // delay of the optical output before the run
  std::optional<std::uint32_t> wantedMs;  // the delay that the service tried to put in force
  std::optional<double> differenceS;      // arrival of 19 kHz minus that of 17 kHz; never 0
  std::string terminate = "etc";          // how the run ended, in the service's words
  std::string result = "fail";            // "pass" or "fail"
  std::string dumpFile;                   // of the latest recording
  std::string resultFile;
  std::vector<std::string> debugFiles = {};  // both, of every recording
};

// RunReport::terminate of a run that searched to its end.
constexpr char kFoundDifference[] = "done";
constexpr char kFoundNothing[] = "diff_fail";

// Why a run that ended so, "play_fail" say, has not put a delay in force.
std::string EndInWords(const std::string& terminate);

// Reads the delay that is in force on the television; empty: it cannot be read.
using DelayReader = std::function<std::optional<std::int64_t>()>;

// The delay in force is known, and the one that the service wanted.
bool IsInForce(std::optional<std::uint32_t> wantedMs, std::optional<std::int64_t> inForceMs);
// "67 ms" when that is in force as the service wanted, else both: "67 ms wanted, 100 ms in force".
std::string DelayInWords(std::optional<std::uint32_t> wantedMs, std::optional<std::int64_t> inForceMs);

// Lines in, report out.
class LogFollower {
public:
  // The service logs which delay it wrote, not whether the write took: `readDelay` tells that.
  explicit LogFollower(DelayReader readDelay) : m_ReadDelay(std::move(readDelay)) {}

  // One line without its line end, colours allowed. The answer, if any, is news for a person who watches the run.
  std::optional<std::string> Follow(const std::string& line);

  const RunReport& GetReport() const { return m_Report; }

private:
  struct Rule;  // what a message of one kind means
  using News = std::optional<std::string>;

  News OnStartSync(const std::string& rest);
  News OnDelayRead(const std::string& rest);
  News OnAmbientNoise(const std::string& rest);
  News OnWriting(const std::string& rest);
  News OnTvFirst(const std::string& rest);
  News OnOpticalFirst(const std::string& rest);
  News OnPair(const std::string& rest);
  News OnDifference(const std::string& rest);
  News OnDelayWritten(const std::string& rest);
  News OnDumpFiles(const std::string& rest);
  News OnEndRecord(const std::string& rest);
  News OnNoDifference(const std::string& rest);
  News OnPlayFailure(const std::string& rest);
  News OnRecorderFailure(const std::string& rest);
  News OnAbnormalInput(const std::string& rest);
  News OnHostProblem(const std::string& rest);
  std::string EndBy(const char* terminate);

  DelayReader m_ReadDelay;
  RunReport m_Report;
  std::optional<double> m_PairS;  // of the latest pair, in the resolution of the buffer numbers
  bool m_BaseFollows = false;
  bool m_Writing = false;
  bool m_HasEndRecord = false;
};

}  // namespace orvex::tools
