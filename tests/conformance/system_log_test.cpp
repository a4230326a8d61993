// The system log: records whole, unmixed and in order, from any thread and at any time.
#include "orvex/platform/system_log.h"

#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

constexpr const char* kTag = "Conformance";

class SystemLog : public PortTest {
protected:
  // The texts that the log holds under the suite's tag.
  std::vector<std::string> Texts() {
    std::vector<std::string> texts;
    for (const LogRecord& record : Port().LogRecords()) {
      if (record.tag == kTag) {
        texts.push_back(record.text);
      }
    }
    return texts;
  }
  static int Print(const std::string& text) {
    return system_log_print(LogBuffer::kMain, LogPriority::kInfo, kTag, "%s", text.c_str());
  }
};

TEST_F(SystemLog, FormatsARecordAndTellsItsLength) {
  ORVEX_NEEDS(kReadLog);
  EXPECT_EQ(system_log_print(LogBuffer::kMain, LogPriority::kInfo, kTag, "%s=%d%% %.2f", "gain", -7, 0.5), 13);
  EXPECT_THAT(Texts(), testing::ElementsAre("gain=-7% 0.50"));
}

TEST_F(SystemLog, KeepsBufferAndPriority) {
  ORVEX_NEEDS(kReadLog);
  std::vector<std::pair<LogBuffer, LogPriority>> written;
  for (const LogBuffer buffer : {LogBuffer::kMain, LogBuffer::kSystem}) {
    for (const LogPriority priority :
         {LogPriority::kDebug, LogPriority::kInfo, LogPriority::kWarning, LogPriority::kError}) {
      system_log_print(buffer, priority, kTag, "one");
      written.emplace_back(buffer, priority);
    }
  }
  std::vector<std::pair<LogBuffer, LogPriority>> kept;
  for (const LogRecord& record : Port().LogRecords()) {
    if (record.tag == kTag) {
      kept.emplace_back(record.buffer, record.priority);
    }
  }
  EXPECT_EQ(kept, written);
}

TEST_F(SystemLog, CutsNoRecordHoweverLong) {
  ORVEX_NEEDS(kReadLog);
  std::vector<std::string> texts;
  for (const std::size_t length : {511U, 512U, 513U, 4095U, 4096U, 100000U}) {
    texts.emplace_back(length, static_cast<char>('a' + texts.size()));
    EXPECT_EQ(Print(texts.back()), static_cast<int>(length));
  }
  EXPECT_EQ(Texts(), texts);
}

TEST_F(SystemLog, KeepsNothingOfItsArguments) {
  ORVEX_NEEDS(kReadLog);
  std::string tag = kTag;
  std::string format = "format %s";
  std::string argument = "argument";
  system_log_print(LogBuffer::kMain, LogPriority::kInfo, tag.c_str(), format.c_str(), argument.c_str());
  for (std::string* text : {&tag, &format, &argument}) {
    text->assign(text->size(), 'x');
  }
  EXPECT_THAT(Texts(), testing::ElementsAre("format argument"));
}

TEST_F(SystemLog, TakesRecordsAfterAppMainToo) {
  ORVEX_NEEDS(kReadLog);
  Print("before");
  OnMainLoop([] { Print("meanwhile"); });
  Print("after");
  EXPECT_THAT(Texts(), testing::ElementsAre("before", "meanwhile", "after"));
}

TEST_F(SystemLog, KeepsTheOrderOfEachThreadAndMixesNoRecords) {
  ORVEX_NEEDS(kReadLog);
  constexpr int kThreads = 4;
  constexpr int kRecords = 100;
  constexpr std::size_t kLength = 3000;
  {
    std::vector<std::unique_ptr<Thread>> threads;
    for (int number = 0; number < kThreads; ++number) {
      threads.push_back(std::make_unique<Thread>([number] {
        for (int record = 0; record < kRecords; ++record) {
          Print(std::string(kLength, static_cast<char>('a' + number)) + std::to_string(record));
        }
      }));
    }
  }
  const std::vector<std::string> texts = Texts();
  EXPECT_EQ(texts.size(), static_cast<std::size_t>(kThreads * kRecords));
  int next[kThreads] = {};
  for (const std::string& text : texts) {
    const int number = text.front() - 'a';
    ASSERT_TRUE(number >= 0 && number < kThreads) << text.substr(0, 80);
    EXPECT_EQ(text, std::string(kLength, text.front()) + std::to_string(next[number]++));
  }
}

}  // namespace
}  // namespace orvex::conformance
