// Compares what a run has left behind with what it must leave.
#include "integration/expectation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvex::integration {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr std::int64_t kBlockBytes = 1536;
constexpr double kBlockSamples = 768.0;
constexpr double kSampleRateHz = 46545.0;
constexpr int kFirstAnalysed = 5;  // number of the first block that is analysed

// Texts of the described lines that match, without their kind.
Lines TextsLike(const Lines& lines, const std::string& pattern) {
  Lines texts;
  for (const std::string& line : lines) {
    if (MatchesPattern(line.substr(2), pattern)) {
      texts.push_back(line.substr(2));
    }
  }
  return texts;
}

// "[first] - [second] : seconds" for every result, in the order of the two tones.
Lines ResultsOf(const Observation& observation) {
  static const std::regex result("(\\(ruvo\\)   ====> )?@ \\[RESULT\\] \\[(\\d+)\\] - \\[(\\d+)\\] : (-?[\\d.]+) s\n");
  Lines results;
  for (const std::string& text : TextsLike(LinesOf(observation.lines, Theme::kDetection), "*[RESULT]*")) {
    std::smatch parts;
    if (std::regex_match(text, parts, result)) {
      const bool isReverse = parts[1].matched;
      const std::string first = parts[isReverse ? 3 : 2];
      const std::string second = parts[isReverse ? 2 : 3];
      results.push_back("[" + first + "] - [" + second + "] : " + parts[4].str());
    }
  }
  return results;
}

std::string SetValueLine(std::int64_t delayMs) {
  return "result_set_value : [main: 0], [spdif: " + std::to_string(delayMs) + "]\n";
}

Lines ExpectedRecords(const Observation& observation) {
  Lines records;
  for (const std::string& text : TextsLike(LinesOf(observation.lines, Theme::kRun), "text = {device=*")) {
    records.push_back("EV013 ORVEXENV " + text.substr(std::string("text = ").size()));
  }
  for (const std::string& value : EndRecordsOf(observation)) {
    records.push_back("EV012 ORVEXSET " + value);
  }
  return records;
}

void CheckTelevision(const Observation& observation, const Expectation& expectation) {
  const std::int64_t delayMs =
      expectation.delayMs.value_or(DelayFor(expectation.baseMs, MeasuredDifferenceS(observation)));
  EXPECT_EQ(delayMs, observation.delayMs);
  EXPECT_EQ(expectation.mute, observation.mute);
  EXPECT_EQ(expectation.volume, observation.volume);
}

void CheckRecords(const Observation& observation, const Expectation& expectation) {
  const Lines values = EndRecordsOf(observation);
  ASSERT_EQ(static_cast<std::size_t>(expectation.endRecords), values.size());
  EXPECT_THAT(values.back(), AllOf(HasSubstr("{result=" + expectation.result + ";"),
                                   HasSubstr(";terminate=" + expectation.terminate + "}")));
  for (std::size_t n = 1; n < values.size(); ++n) {
    EXPECT_LE(DurationOf(values[n - 1]), DurationOf(values[n]));
  }
  const Lines expected = expectation.records.value_or(ExpectedRecords(observation));
  EXPECT_EQ("", Difference(RecordsOf(observation), expected));
  EXPECT_EQ(!expected.empty(), observation.hasRecordFile);
  for (const Json::Value& record : observation.records) {
    EXPECT_EQ("21_remocon", record["service"].asString());
  }
}

}  // namespace

void Check(const Observation& observation, const Expectation& expectation) {
  SCOPED_TRACE(observation.name);
  CheckEnding(observation);
  CheckLogForm(observation);
  EXPECT_EQ("", Difference(LinesOf(observation.lines, Theme::kRun), expectation.runLines));
  EXPECT_EQ("", Difference(LinesOf(observation.lines, Theme::kHost), expectation.hostLines));
  CheckTelevision(observation, expectation);
  CheckRecords(observation, expectation);
  CheckBlocks(observation);
  CheckResultFile(observation, expectation.savedMs);
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
  for (const std::string& line : LinesOf(observation.lines, Theme::kBlocks)) {
    int number = 0;
    if (std::sscanf(line.c_str(), "I buffer: %d", &number) == 1) {
      ofThisRecording = number == 1 ? 1 : ofThisRecording + 1;
      EXPECT_EQ(ofThisRecording, number);
      ++blocks;
    } else if (std::sscanf(line.c_str(), "I %d / ", &number) == 1) {
      EXPECT_EQ(ofThisRecording - kFirstAnalysed, number);
    } else if (line == "F already null") {
      --blocks;
    } else {
      EXPECT_EQ("I m_ReceiveBTAudioDataCB", line);
    }
  }
  EXPECT_EQ(blocks * kBlockBytes, static_cast<std::int64_t>(observation.dump.size() + observation.secondDump.size()));
}

void CheckResultFile(const Observation& observation, std::int64_t savedMs) {
  std::string expected;
  for (const std::string& result : ResultsOf(observation)) {
    expected += "[RESULT] " + result + "\n" + SetValueLine(savedMs);
  }
  if (!TextsLike(LinesOf(observation.lines, Theme::kRun), "CDebugDumpImplFile Stop").empty()) {
    expected += SetValueLine(observation.delayMs);
  }
  EXPECT_EQ(expected, observation.result);
}

double MeasuredDifferenceS(const Observation& observation) {
  const Lines texts = TextsLike(LinesOf(observation.lines, Theme::kRun), "diff time = *");
  const double logged = texts.empty() ? 0.0 : std::stod(texts.back().substr(std::string("diff time = ").size()));
  return std::round(logged * kSampleRateHz / kBlockSamples) * kBlockSamples / kSampleRateHz;
}

std::int64_t DelayFor(std::int64_t baseMs, double differenceS) {
  return std::max<std::int64_t>(baseMs - static_cast<std::int64_t>(differenceS * 1000.0), 0);
}

Lines EndRecordsOf(const Observation& observation) {
  Lines values;
  for (const std::string& text : TextsLike(LinesOf(observation.lines, Theme::kRun), "text = {result=*")) {
    values.push_back(text.substr(std::string("text = ").size()));
  }
  return values;
}

std::int64_t DurationOf(const std::string& endRecord) {
  static const std::regex duration(".*;du=(-?\\d+);.*");
  std::smatch parts;
  return std::regex_match(endRecord, parts, duration) ? std::stoll(parts[1]) : -1;
}

std::chrono::milliseconds TimeBetween(const Observation& observation, const std::string& first,
                                      const std::string& second) {
  const auto find = [&](auto begin, const std::string& pattern) {
    return std::find_if(begin, observation.lines.end(),
                        [&](const LogLine& line) { return MatchesPattern(line.text, pattern); });
  };
  const auto begin = find(observation.lines.begin(), first);
  const auto end = find(begin, second);
  return end == observation.lines.end()
             ? std::chrono::milliseconds(-1)
             : std::chrono::duration_cast<std::chrono::milliseconds>(end->time - begin->time);
}

Lines RecordsOf(const Observation& observation) {
  Lines records;
  for (const Json::Value& record : observation.records) {
    records.push_back(record["category"].asString() + " " + record["event"].asString() + " " +
                      record["value"].asString());
  }
  return records;
}

}  // namespace orvex::integration
