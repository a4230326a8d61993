// What a run must have left behind, and the comparison with what it has.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "integration/scenario.h"

namespace orvex::integration {

// What the start record says of a television on which nobody has changed anything.
constexpr char kStartRecord[] = "{device=Example|1;source=1;videoinfo=tv|6|60;codec=0}";

struct Expectation {
  std::string terminate;        // of the end records
  std::string result = "fail";  // of the end records
  int endRecords = 1;
  // Delay of the optical output afterwards; empty: `baseMs` less the measured difference in whole milliseconds, or 0.
  std::optional<std::int64_t> delayMs = 100;
  std::int64_t baseMs = 100;
  std::int64_t savedMs = 100;  // delay at the start of the recording, for the result file
  std::int64_t mute = 0;
  std::int64_t volume = 15;
  Lines hostLines;  // what the television complains of, as in the log
  Lines logged;     // some lines that are the point, in order, with any others in between
  std::string startRecord = kStartRecord;
  // In events.jsonl, as "category event value"; empty: the start record and the end records.
  std::optional<Lines> records;
};

// Of a run that has measured a difference and has taken it off `baseMs`.
Expectation DifferenceApplied(std::int64_t baseMs = 100);
// Of a run that has ended without one.
Expectation EndedWith(const std::string& terminate, int endRecords = 1);

// Reports every deviation as a test failure, under the scenario's name.
void Check(const Observation& observation, const Expectation& expectation);

struct ExpectedRun {
  Scenario scenario;
  Expectation expectation;
};

// Performs the runs, some at a time, and checks each.
std::vector<Observation> PerformAndCheck(const std::vector<ExpectedRun>& runs);

// The parts of it that hold for every run.
void CheckEnding(const Observation& observation);   // exit code 0, no sanitizer's report
void CheckLogForm(const Observation& observation);  // every line: tag, prefix, colour of its level
void CheckBlocks(const Observation& observation);   // numbers of blocks, size of the dumps
void CheckResultFile(const Observation& observation, std::int64_t savedMs);
// The delay is `baseMs` less the difference that the run has measured.
void CheckDifferenceApplied(const Observation& observation, std::int64_t baseMs = 100);

// Distance of the pair that the run has used, in seconds of whole buffers; 0: none was found.
double MeasuredDifferenceS(const Observation& observation);
// `baseMs` less the difference, as it must be applied.
std::int64_t DelayFor(std::int64_t baseMs, double differenceS);
// Values of the end records in the log, in order.
Lines EndRecordsOf(const Observation& observation);
// From the first line like `first` to the first one behind it like `second`; negative when one is missing.
std::chrono::milliseconds TimeBetween(const Observation& observation, const std::string& first,
                                      const std::string& second);

}  // namespace orvex::integration
