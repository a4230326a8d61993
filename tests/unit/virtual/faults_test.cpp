// Injected answers: which call gets which, and what a wrong file does.
#include <algorithm>
#include <thread>
#include <vector>

#include "orvex/platform/output_delay.h"
#include "unit/virtual/television.h"

namespace orvex::virtual_tv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class InjectedFaults : public TelevisionTest {
protected:
  std::string ProblemWith(const std::string& json) {
    testing::internal::CaptureStderr();
    SetFaults(json);
    return testing::internal::GetCapturedStderr();
  }
};

TEST_F(InjectedFaults, AreNoneWithoutAFile) {
  EXPECT_EQ(Faults::Instance().Next(Fault::kVoiceStart), std::nullopt);
  EXPECT_THAT(Faults::Instance().Frames(Fault::kPcmUnderrunAtFrame), IsEmpty());
  EXPECT_FALSE(Faults::Instance().IsAbsent(Fault::kEventLog));
}

TEST_F(InjectedFaults, GiveAnIntegerAtEveryCallAndAnArrayCallByCall) {
  SetFaults(R"({"voice.start": -115, "voice.stop": [-115, null, 0]})");
  Faults& faults = Faults::Instance();
  EXPECT_EQ(faults.Next(Fault::kVoiceStart), -115);
  EXPECT_EQ(faults.Next(Fault::kVoiceStart), -115);
  EXPECT_EQ(faults.Next(Fault::kVoiceStop), -115);
  EXPECT_EQ(faults.Next(Fault::kVoiceStop), std::nullopt);
  EXPECT_EQ(faults.Next(Fault::kVoiceStop), 0);
  EXPECT_EQ(faults.Next(Fault::kVoiceStop), std::nullopt);
  EXPECT_EQ(faults.Next(Fault::kVoiceExtend), std::nullopt);
}

TEST_F(InjectedFaults, CountFromTheBeginningWhenTheFileIsReadAgain) {
  SetFaults(R"({"delay.get": [-1]})");
  EXPECT_EQ(Faults::Instance().Next(Fault::kDelayGet), -1);
  Faults::Instance().Reload();
  EXPECT_EQ(Faults::Instance().Next(Fault::kDelayGet), -1);
}

TEST_F(InjectedFaults, GiveFramesInAscendingOrder) {
  SetFaults(R"({"pcm.underrun_at_frame": [9000, 100], "pcm.stall_at_frame": 5})");
  EXPECT_THAT(Faults::Instance().Frames(Fault::kPcmUnderrunAtFrame), ElementsAre(100, 9000));
  EXPECT_THAT(Faults::Instance().Frames(Fault::kPcmStallAtFrame), ElementsAre(5));
}

TEST_F(InjectedFaults, GiveEachEntryToOneOfManyThreads) {
  SetFaults(R"({"delay.get": [1, 2, 3, 4, 5, 6, 7, 8]})");
  std::vector<int> answers(8);
  std::vector<std::thread> threads;
  for (int& answer : answers) {
    threads.emplace_back([&answer] { answer = Faults::Instance().Next(Fault::kDelayGet).value_or(-99); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::sort(answers.begin(), answers.end());
  EXPECT_THAT(answers, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
}

TEST_F(InjectedFaults, InjectNothingAndSayWhyWhenTheFileIsWrong) {
  const struct {
    const char* json;
    const char* problem;
  } rows[] = {
      {"{", "expected a JSON object"},
      {"[]", "expected a JSON object, not an array"},
      {"7", "expected a JSON object"},
      {R"({"delay.get": -1, "delay.gte": -1})", "\"delay.gte\": -1: expected a known operation"},
      {R"({"delay.get": -1, "voice.start": "busy"})", "\"voice.start\": \"busy\": expected a 32-bit integer"},
      {R"({"delay.get": -1, "voice.start": 1.5})", "\"voice.start\": 1.5"},
      {R"({"delay.get": -1, "voice.start": 2147483648})", "\"voice.start\": 2147483648"},
      {R"({"delay.get": -1, "voice.start": [1, "x"]})", "\"voice.start\": [1,\"x\"]"},
      {R"({"delay.get": -1, "event_log": true})", "\"event_log\": true: expected \"absent\""},
      {R"({"delay.get": -1, "pcm.stall_at_frame": -1})", "\"pcm.stall_at_frame\": -1: expected a frame number"},
      {R"({"delay.get": -1, "pcm.stall_at_frame": [5, null]})", "\"pcm.stall_at_frame\": [5,null]"},
      {R"({"delay.get": -1, "delay.get": -2})", "Duplicate key"},
  };
  for (const auto& row : rows) {
    const std::string told = ProblemWith(row.json);
    EXPECT_THAT(told, HasSubstr((Folder() / "faults.json").string())) << row.json;
    EXPECT_THAT(told, HasSubstr(row.problem)) << row.json;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(Faults::Instance().Next(Fault::kDelayGet), std::nullopt) << row.json;
  }
}

TEST_F(InjectedFaults, SayNothingAboutADeeplyNestedFileButThatItIsWrong) {
  EXPECT_THAT(ProblemWith(std::string(100000, '[')), HasSubstr("no faults are injected"));
}

TEST_F(InjectedFaults, InjectNothingWhenAZeroByteEndsTheJsonWithinTheFile) {
  const std::string object = R"({"delay.get": -1})";
  const std::string told = ProblemWith(object + '\0' + object);
  EXPECT_THAT(told, HasSubstr("expected a JSON object: byte 17 is 0"));
  EXPECT_EQ(Faults::Instance().Next(Fault::kDelayGet), std::nullopt);
}

TEST_F(InjectedFaults, MakeAnObjectAbsent) {
  EXPECT_NE(IAudioControl::getInstance(), nullptr);
  SetFaults(R"({"audio_control": "absent"})");
  EXPECT_EQ(IAudioControl::getInstance(), nullptr);
}

}  // namespace
}  // namespace orvex::virtual_tv
