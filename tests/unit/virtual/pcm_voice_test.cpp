// The remote control's voice channel beyond its contract: blocks as the simulated remote sends them, faults, the end of
// the process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <future>

#include "orvex/platform/remote_voice.h"
#include "orvex/sim/room_json.h"
#include "orvex/sim/voice_channel.h"
#include "unit/virtual/pcm_television.h"
#include "unit/virtual/voice_recorder.h"

namespace orvex::virtual_tv {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kNoisyRoom = R"({"microphone": {"noise_dbfs": -40}, "seed": 7})";

MonotonicTime Milliseconds(double count) {
  return MonotonicTime(static_cast<std::int64_t>(count * 1e6));
}

class PcmVoice : public PcmTelevision {
protected:
  // Registers `recorder` and starts the remote. The result: no later than the start.
  static MonotonicTime Record(VoiceRecorder& recorder) {
    EXPECT_EQ(recorder.Register(), kVoiceDone);
    const MonotonicTime before = MonotonicNow();
    EXPECT_EQ(StartVoice(), kVoiceDone);
    return before;
  }
};

// What a recording of `room` delivers when nothing is played, by the model alone.
struct ModelBlock {
  MonotonicTime due;  // after the start
  std::vector<std::int16_t> samples;
};

std::vector<ModelBlock> ModelBlocks(const std::string& roomJson, std::size_t count) {
  sim::Room room(sim::ParseRoom(roomJson, "model"));
  sim::VoiceChannel channel(room);
  channel.Start(MonotonicTime(0));
  std::vector<ModelBlock> blocks;
  sim::VoiceChannel::Block block;
  while (blocks.size() < count) {
    const MonotonicTime due = channel.NextDelivery().value();
    if (channel.TakeBlock(block)) {
      blocks.push_back({due, {block.begin(), block.end()}});
    }
  }
  return blocks;
}

void ExpectAsModel(const std::vector<VoiceRecorder::Block>& blocks, MonotonicTime start,
                   const std::vector<ModelBlock>& model) {
  for (std::size_t index = 0; index < model.size(); ++index) {
    EXPECT_EQ(blocks[index].samples, model[index].samples) << "block " << index;
    EXPECT_GE(blocks[index].arrival, start + model[index].due - milliseconds(1)) << "block " << index;
  }
}

TEST_F(PcmVoice, ANullCommandIsRefused) {
  EXPECT_EQ(bt_hid_send_rc_command(nullptr, nullptr, 2), kVoiceInvalid);
}

TEST_F(PcmVoice, ListedAnswersComeFirstAndOncePerCall) {
  SetFaults(R"({"voice.register": [-19], "voice.start": [-115, -5], "voice.extend": [-5],
                           "voice.stop": [-115], "voice.unregister": [-19]})");
  VoiceRecorder recorder;
  EXPECT_EQ(recorder.Register(), kVoiceNoRemote);
  EXPECT_EQ(recorder.Register(), kVoiceDone);
  EXPECT_EQ(StartVoice(), kVoiceInProgress);
  EXPECT_EQ(SendVoiceCommand(0x04, 0x00), kVoiceRefused);
  EXPECT_EQ(StartVoice(), kVoiceDone);
  EXPECT_EQ(ExtendVoice(), kVoiceRefused);
  EXPECT_EQ(ExtendVoice(), kVoiceDone);
  EXPECT_EQ(bt_hid_rc_stop_sending_voice(nullptr), kVoiceInProgress);
  EXPECT_EQ(bt_hid_rc_stop_sending_voice(nullptr), kVoiceDone);
  EXPECT_EQ(recorder.Unregister(), kVoiceNoRemote);
  EXPECT_EQ(recorder.Unregister(), kVoiceInvalid);  // a refused call too has ended the registration
}

TEST_F(PcmVoice, BlocksComeAtTheirTimesWithWhatTheMicrophoneHeard) {
  Echo("room.json", kNoisyRoom);
  VoiceRecorder recorder;
  const MonotonicTime start = Record(recorder);
  ASSERT_TRUE(recorder.WaitForBlocks(20));
  ExpectAsModel(recorder.Blocks(), start, ModelBlocks(kNoisyRoom, 20));
}

TEST_F(PcmVoice, ALostBlockIsNotDelivered) {
  const std::string room = R"({"microphone": {"noise_dbfs": -40}, "voice": {"loss_probability": 0.5}, "seed": 7})";
  Echo("room.json", room);
  const auto model = ModelBlocks(room, 10);
  ASSERT_GT(model.back().due, Milliseconds(12 * kVoiceBlockMs));  // some are lost in this room
  VoiceRecorder recorder;
  const MonotonicTime start = Record(recorder);
  ASSERT_TRUE(recorder.WaitForBlocks(10));
  ExpectAsModel(recorder.Blocks(), start, model);
}

TEST_F(PcmVoice, BlocksBehindASlowCallbackComeLateButAllAndInOrder) {
  Echo("room.json", kNoisyRoom);
  std::promise<void> hold;
  const auto released = hold.get_future().share();
  VoiceRecorder recorder([released] { released.wait(); });
  const MonotonicTime start = Record(recorder);
  ASSERT_TRUE(recorder.WaitForBlocks(1));
  while (MonotonicNow() < start + milliseconds(300)) {  // some 15 blocks become due
    std::this_thread::yield();
  }
  EXPECT_EQ(recorder.Blocks().size(), 1U);
  hold.set_value();
  ASSERT_TRUE(recorder.WaitForBlocks(20));
  ExpectAsModel(recorder.Blocks(), start, ModelBlocks(kNoisyRoom, 20));
}

TEST_F(PcmVoice, AStoppedRemoteSendsNothingUntilItIsStartedAgain) {
  VoiceRecorder first;
  VoiceRecorder second;
  Record(first);
  ASSERT_TRUE(first.WaitForBlocks(2));
  ASSERT_EQ(bt_hid_rc_stop_sending_voice(nullptr), kVoiceDone);
  ASSERT_EQ(first.Unregister(), kVoiceDone);  // a block that was being handed over is over now
  const MonotonicTime start = Record(second);
  ASSERT_TRUE(second.WaitForBlocks(1));
  EXPECT_GE(second.Blocks().front().arrival, start + Milliseconds(kVoiceBlockMs + 30.0));
}

TEST_F(PcmVoice, TheRemoteFallsSilentAtTheEndOfItsWindow) {
  Echo("room.json", R"({"voice": {"window_ms": 100}})");
  VoiceRecorder recorder;
  Record(recorder);
  ASSERT_TRUE(recorder.WaitForBlocks(6));  // 99 ms
  const MonotonicTime start = MonotonicNow();
  ASSERT_EQ(StartVoice(), kVoiceDone);
  ASSERT_TRUE(recorder.WaitForBlocks(7));
  EXPECT_GE(recorder.Blocks()[6].arrival, start + Milliseconds(kVoiceBlockMs + 30.0));
}

TEST_F(PcmVoice, AStartWhileSendingBeginsTheWindowAnew) {
  Echo("room.json", R"({"voice": {"window_ms": 1000}})");
  VoiceRecorder recorder;
  Record(recorder);
  ASSERT_TRUE(recorder.WaitForBlocks(20));
  ASSERT_EQ(StartVoice(), kVoiceDone);
  EXPECT_TRUE(recorder.WaitForBlocks(70));  // the first window holds 60
}

// The static receiver is older than the delivery thread and stays registered: it is gone when the process ends, so the
// thread must be gone before it.
TEST_F(PcmVoice, NothingIsDeliveredToAReceiverThatTheEndOfTheProcessDestroys) {
  struct Receiver {
    ~Receiver() {
      isGone = true;
      const MonotonicTime end = MonotonicNow() + milliseconds(100);  // six blocks
      while (MonotonicNow() < end) {
        std::this_thread::yield();
      }
    }
    static void Receive(const VoiceData* /*record*/, void* self) {
      if (static_cast<Receiver*>(self)->isGone) {
        std::_Exit(1);
      }
    }
    std::atomic<bool> isGone{false};
  };
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        static Receiver receiver;
        bt_hid_set_audio_data_receive_cb(&Receiver::Receive, &receiver);
        StartVoice();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(PcmVoice, TheProcessMayEndWhileTheRemoteSends) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        static VoiceRecorder recorder;
        Record(recorder);
        std::exit(recorder.WaitForBlocks(2) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace orvex::virtual_tv
