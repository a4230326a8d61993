// Blocks are counted, kept alive with extend commands, read within their bytes, and dumped as they came.
#include "orvex/platform/remote_voice.h"
#include "unit/service/receiver_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;

class ReceiverCounting : public ReceiverTest {
protected:
  Texts HearBytes(const std::vector<std::uint8_t>& bytes) {
    const VoiceData record{static_cast<std::uint16_t>(bytes.size()), bytes.empty() ? nullptr : bytes.data()};
    return HearRecord(&record);
  }
};

std::string AsText(const std::vector<std::uint8_t>& bytes) {
  return {bytes.begin(), bytes.end()};
}

TEST_F(ReceiverCounting, TheFirstFourBuffersAreCountedAndDumpedButNotAnalysed) {
  Start();
  std::string dumped;
  for (std::int16_t number = 1; number <= 4; ++number) {
    EXPECT_THAT(Hear(Click(number)), ElementsAre("I0 m_ReceiveBTAudioDataCB", Text("I0 buffer: %d", number)));
    dumped += AsText(LittleEndian(Click(number)));
  }
  EXPECT_EQ(receiver.GetBlockIndex(), 0);
  EXPECT_THAT(Hear(Click(5)), ElementsAre("I0 m_ReceiveBTAudioDataCB", "I0 buffer: 5",
                                          "I0 0 / 5.000000 5.000000 5.000000 5.000000 / 1.000000 1.000000 / "
                                          "0.000000 0.000000 0.000000 0.000000"));
  EXPECT_EQ(receiver.GetBlockIndex(), 1);
  dumped += AsText(LittleEndian(Click(5)));
  EXPECT_EQ(DumpedAudio(), dumped);
}

TEST_F(ReceiverCounting, AThousandBlocksLeaveADumpOfTheirSize) {
  Start();
  for (int block = 0; block < 1000; ++block) {
    Hear(quiet);
  }
  EXPECT_EQ(DumpedAudio().size(), 1000U * 1536U);
}

// The journal of one lost block, with or without the extend command before the block's number.
Texts LostBlock(int buffer, bool extended) {
  Texts texts{"I0 m_ReceiveBTAudioDataCB"};
  if (extended) {
    texts.insert(texts.end(),
                 {"> bt_hid_send_rc_command(null, 03 10, 2) = 0", "I0 [Recorder] Extend bt audio recorder"});
  }
  texts.insert(texts.end(), {Text("I0 buffer: %d", buffer), "E2 voice_data is null."});
  return texts;
}

TEST_F(ReceiverCounting, BuffersRunTo100000AndStartAgainAt1WithAnExtendCommandEvery250) {
  Start();
  for (int arrived = 1; arrived <= 100601; ++arrived) {
    const int buffer = arrived <= 100000 ? arrived : arrived - 100000;
    const bool afterEvery250 = arrived > 1 && (arrived - 1) % 250 == 0;
    ASSERT_EQ(HearRecord(nullptr), LostBlock(buffer, afterEvery250));
    ASSERT_EQ(receiver.GetBufferCount(), buffer);
  }
}

TEST_F(ReceiverCounting, BuffersOfTheSecondRoundThatHaveLowNumbersAreNotAnalysedEither) {
  Start();
  LoseBlocksUntil(100001);
  EXPECT_THAT(Hear(quiet), ElementsAre("I0 m_ReceiveBTAudioDataCB", "> bt_hid_send_rc_command(null, 03 10, 2) = 0",
                                       "I0 [Recorder] Extend bt audio recorder", "I0 buffer: 1"));
  BeQuietUntil(5);
  EXPECT_EQ(receiver.GetBlockIndex(), 0);
  Hear(quiet);
  EXPECT_EQ(receiver.GetBlockIndex(), 1);
}

TEST_F(ReceiverCounting, AnExtendCommandThatFailsIsNotRepeatedUntilTheNextIsDue) {
  Start();
  LoseBlocksUntil(251);
  for (const int error : {kVoiceInProgress, kVoiceRefused, 1}) {
    world.answers.Next("bt_hid_send_rc_command", {error});
    const int buffer = receiver.GetBufferCount() + 1;
    EXPECT_THAT(HearRecord(nullptr), ElementsAre("I0 m_ReceiveBTAudioDataCB",
                                                 "> bt_hid_send_rc_command(null, 03 10, 2) = " + std::to_string(error),
                                                 "E2 Fail bt_hid_send_rc_command(NULL, 0310, 2)",
                                                 Text("I0 buffer: %d", buffer), "E2 voice_data is null."));
    for (int quietly = 1; quietly < 250; ++quietly) {
      ASSERT_EQ(HearRecord(nullptr), LostBlock(buffer + quietly, false));
    }
  }
  EXPECT_TRUE(receiver.IsRecording());
  EXPECT_EQ(HearRecord(nullptr), LostBlock(1001, true));
}

TEST_F(ReceiverCounting, WithoutAReceiverABlockIsOnlyLoggedAsAnError) {
  const std::vector<std::uint8_t> bytes = LittleEndian(quiet);
  const VoiceData record{static_cast<std::uint16_t>(bytes.size()), bytes.data()};
  for (const VoiceData* given : {&record, static_cast<const VoiceData*>(nullptr)}) {
    EXPECT_THAT(During([&] { OrvexReceiver::m_ReceiveBTAudioDataCB(given, nullptr); }),
                ElementsAre("I0 m_ReceiveBTAudioDataCB", "E2 THIS is null."));
  }
}

TEST_F(ReceiverCounting, ALostBlockIsCountedButNeitherAnalysedNorDumped) {
  Start();
  BeQuietUntil(7);
  EXPECT_EQ(HearRecord(nullptr), LostBlock(7, false));
  EXPECT_EQ(receiver.GetBlockIndex(), 2);
  EXPECT_EQ(receiver.GetBufferCount(), 7);
  EXPECT_EQ(DumpedAudio().size(), 6U * 1536U);
}

TEST_F(ReceiverCounting, BlocksOfAnySizeAreDumpedAsTheyCame) {
  for (const std::size_t size : {0U, 1U, 3U, 1535U, 2000U, 65535U}) {
    const std::vector<std::uint8_t> bytes(size, 0x5A);
    Start();
    BeQuietUntil(5);
    HearBytes(bytes);
    EXPECT_EQ(receiver.GetBlockIndex(), 1);
    EXPECT_EQ(DumpedAudio().substr(4U * 1536U), AsText(bytes)) << size;
    receiver.StopBTRecoder();
  }
}

}  // namespace
