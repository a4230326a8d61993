// Compares what a run has left behind with what it must leave.
#include "integration/expectation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "orvex/platform/remote_voice.h"
#include "world/runs/text_pattern.h"

namespace orvex::integration {
namespace {

using runs::TextPattern;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr double kBlockS = kVoiceBlockSamples / kVoiceRateHz;
constexpr int kFirstAnalysed = 5;  // number of the first block that is analysed

// What the fields of `pattern` hold, for each line that it matches.
std::vector<Lines> FieldsOf(const Observation& observation, const std::string& text) {
  const TextPattern pattern(text);
  std::vector<Lines> fields;
  for (const LogLine& line : observation.lines) {
    if (pattern.Matches(line.text)) {
      fields.push_back(pattern.Fields(line.text));
    }
  }
  return fields;
}

// "[first] - [second] : seconds" for every result, in the order of the two tones.
Lines ResultsOf(const Observation& observation) {
  Lines results;
  for (const Lines& fields : FieldsOf(observation, "{s}@ [RESULT] [{u}] - [{u}] : {f} s\n")) {
    const bool isReverse = !fields[0].empty();
    results.push_back("[" + fields[isReverse ? 2 : 1] + "] - [" + fields[isReverse ? 1 : 2] + "] : " + fields[3]);
  }
  return results;
}

std::string SetValueLine(std::int64_t delayMs) {
  return "result_set_value : [main: 0], [spdif: " + std::to_string(delayMs) + "]\n";
}

void CheckTelevision(const Observation& observation, const Expectation& expectation) {
  if (expectation.delayMs) {
    EXPECT_EQ(*expectation.delayMs, observation.delayMs);
  } else {
    CheckDifferenceApplied(observation, expectation.baseMs);
  }
  EXPECT_EQ(expectation.mute, observation.mute);
  EXPECT_EQ(expectation.volume, observation.volume);
}

// The end records are alike but for their durations, which do not become shorter.
void CheckEndRecords(const Lines& values, const Observation& observation, const Expectation& expectation) {
  const TextPattern value("{result=" + expectation.result + ";delay=" + std::to_string(observation.delayMs) +
                          ";du={u};terminate=" + expectation.terminate + "}");
  EXPECT_EQ(static_cast<std::size_t>(expectation.endRecords), values.size());
  int lastMs = 0;
  for (const std::string& text : values) {
    ASSERT_TRUE(value.Matches(text)) << text;
    const int durationMs = std::stoi(value.Fields(text).front());
    EXPECT_LE(lastMs, durationMs);
    lastMs = durationMs;
  }
}

void CheckRecords(const Observation& observation, const Expectation& expectation) {
  const Lines values = EndRecordsOf(observation);
  CheckEndRecords(values, observation, expectation);
  Lines expected{"EV013 ORVEXENV " + expectation.startRecord};
  for (const std::string& value : values) {
    expected.push_back("EV012 ORVEXSET " + value);
  }
  expected = expectation.records.value_or(expected);
  Lines collected;
  for (const Json::Value& record : observation.records) {
    EXPECT_EQ("21_remocon", record["service"].asString());
    collected.push_back(record["category"].asString() + " " + record["event"].asString() + " " +
                        record["value"].asString());
  }
  EXPECT_EQ("", Difference(collected, expected));
  EXPECT_EQ(!expected.empty(), observation.hasRecordFile);
}

}  // namespace

Expectation DifferenceApplied(std::int64_t baseMs) {
  Expectation expectation;
  expectation.terminate = "done";
  expectation.result = "pass";
  expectation.endRecords = 2;
  expectation.delayMs = std::nullopt;
  expectation.baseMs = baseMs;
  expectation.savedMs = baseMs;
  return expectation;
}

Expectation EndedWith(const std::string& terminate, int endRecords) {
  Expectation expectation;
  expectation.terminate = terminate;
  expectation.endRecords = endRecords;
  return expectation;
}

void Check(const Observation& observation, const Expectation& expectation) {
  SCOPED_TRACE(observation.name);
  CheckEnding(observation);
  CheckLogForm(observation);
  EXPECT_EQ("", MissingInOrder(Described(observation.lines), expectation.logged));
  EXPECT_EQ("", Difference(DescribedOfHost(observation.lines), expectation.hostLines));
  CheckTelevision(observation, expectation);
  CheckRecords(observation, expectation);
  CheckBlocks(observation);
  CheckResultFile(observation, expectation.savedMs);
}

std::vector<Observation> PerformAndCheck(const std::vector<ExpectedRun>& runs) {
  std::vector<Scenario> scenarios;
  for (const ExpectedRun& run : runs) {
    scenarios.push_back(run.scenario);
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < runs.size(); ++n) {
    Check(observations[n], runs[n].expectation);
  }
  return observations;
}

void CheckEnding(const Observation& observation) {
  EXPECT_EQ("", observation.problem);
  EXPECT_EQ("exit code 0", Describe(observation.ending)) << observation.output;
  EXPECT_THAT(observation.output, AllOf(Not(HasSubstr("Sanitizer")), Not(HasSubstr("runtime error"))));
}

void CheckLogForm(const Observation& observation) {
  for (const LogLine& line : observation.lines) {
    EXPECT_TRUE(line.isInOrder) << line.Described();
  }
}

void CheckBlocks(const Observation& observation) {
  std::int64_t blocks = 0;
  std::int64_t ofThisRecording = 0;
  for (const LogLine& line : observation.lines) {
    int number = 0;
    if (std::sscanf(line.text.c_str(), "buffer: %d", &number) == 1) {
      ofThisRecording = number == 1 ? 1 : ofThisRecording + 1;
      EXPECT_EQ(ofThisRecording, number);
      ++blocks;
    } else if (std::sscanf(line.text.c_str(), "%d / ", &number) == 1 && line.function == "m_SyncAlgorithm") {
      EXPECT_EQ(ofThisRecording - kFirstAnalysed, number);
    } else if (line.text == "already null") {
      --blocks;
    }
  }
  EXPECT_EQ(static_cast<std::size_t>(blocks) * kVoiceBlockBytes,
            observation.dump.size() + observation.secondDump.size());
}

void CheckResultFile(const Observation& observation, std::int64_t savedMs) {
  std::string expected;
  for (const std::string& result : ResultsOf(observation)) {
    expected += "[RESULT] " + result + "\n" + SetValueLine(savedMs);
  }
  if (CountOf(observation.lines, "CDebugDumpImplFile Stop") > 0) {
    expected += SetValueLine(observation.delayMs);
  }
  EXPECT_EQ(expected, observation.result);
}

void CheckDifferenceApplied(const Observation& observation, std::int64_t baseMs) {
  EXPECT_EQ(DelayFor(baseMs, MeasuredDifferenceS(observation)), observation.delayMs);
}

double MeasuredDifferenceS(const Observation& observation) {
  const std::vector<Lines> logged = FieldsOf(observation, "diff time = {f}\n");
  return logged.empty() ? 0.0 : std::round(std::stod(logged.back().front()) / kBlockS) * kBlockS;
}

std::int64_t DelayFor(std::int64_t baseMs, double differenceS) {
  return std::max<std::int64_t>(baseMs - static_cast<std::int64_t>(differenceS * 1000.0), 0);
}

Lines EndRecordsOf(const Observation& observation) {
  Lines values;
  for (const Lines& fields : FieldsOf(observation, "text = {result={s}")) {
    values.push_back("{result=" + fields.front());
  }
  return values;
}

std::chrono::milliseconds TimeBetween(const Observation& observation, const std::string& first,
                                      const std::string& second) {
  const auto find = [&](auto begin, const std::string& text) {
    const TextPattern pattern(text);
    return std::find_if(begin, observation.lines.end(),
                        [&](const LogLine& line) { return pattern.Matches(line.text); });
  };
  const auto begin = find(observation.lines.begin(), first);
  const auto end = find(begin, second);
  return end == observation.lines.end()
             ? std::chrono::milliseconds(-1)
             : std::chrono::duration_cast<std::chrono::milliseconds>(end->time - begin->time);
}

}  // namespace orvex::integration
