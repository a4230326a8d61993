// The receiver of the remote's voice: registration, delivery thread, and the end of delivery.
#include <unistd.h>

#include <atomic>

#include "conformance/voice_test.h"

namespace orvex::conformance {
namespace {

class VoiceReceiver : public VoiceTest {};

TEST_F(VoiceReceiver, IsTheOnlyOneUntilItIsUnregistered) {
  VoiceListener second(Port());
  OnMainLoop([&] {
    EXPECT_EQ(bt_hid_unset_audio_data_receive_cb(), kVoiceInvalid);
    EXPECT_EQ(listener.Register(), kVoiceDone);
    EXPECT_EQ(second.Register(), kVoiceTaken);
    EXPECT_EQ(listener.Unregister(), kVoiceDone);
    EXPECT_EQ(second.Register(), kVoiceDone);
    EXPECT_EQ(second.Unregister(), kVoiceDone);
    EXPECT_EQ(second.Unregister(), kVoiceInvalid);
  });
}

TEST_F(VoiceReceiver, StaysTheOneThatWasRegisteredWhenASecondIsRefused) {
  VoiceListener second(Port());
  application
      .Do([&] {
        EXPECT_EQ(listener.Register(), kVoiceDone);
        EXPECT_EQ(second.Register(), kVoiceTaken);
        EXPECT_EQ(StartVoice(), kVoiceDone);
      })
      .Until("a block", Heard(1))
      .Run();
  EXPECT_EQ(second.Count(), 0U);
}

TEST_F(VoiceReceiver, HearsOneBlockAtATimeOnOneThreadThatIsNotTheMainLoop) {
  const std::string mainLoop = Port().CurrentThread();
  application.Do(RegisterAndStart()).Until("twenty blocks", Heard(20)).Run();
  EXPECT_FALSE(listener.HasOverlapped());
  for (const HeardBlock& block : listener.Blocks()) {
    EXPECT_NE(block.thread, mainLoop);
    EXPECT_EQ(block.thread, listener.Blocks().front().thread);
  }
}

TEST_F(VoiceReceiver, MayBeRegisteredAndUnregisteredOnAnotherThread) {
  application.Do([&] { Thread(RegisterAndStart()).Join(); })
      .Until("a block", Heard(1))
      .Do([&] {
        Thread([&] {
          EXPECT_EQ(StopVoice(), kVoiceDone);
          EXPECT_EQ(listener.Unregister(), kVoiceDone);
        }).Join();
      })
      .Run();
}

TEST_F(VoiceReceiver, HearsNothingBeforeAStartCommand) {
  application.Do([&] { EXPECT_EQ(listener.Register(), kVoiceDone); }).After(kLongSilenceMs).Run();
  EXPECT_EQ(listener.Count(), 0U);
}

TEST_F(VoiceReceiver, HearsNothingAfterAStopButABlockThatWasUnderWay) {
  std::size_t countAtStop = 0;
  application.Do(RegisterAndStart())
      .Until("three blocks", Heard(3))
      .Do([&] {
        EXPECT_EQ(StopVoice(), kVoiceDone);
        countAtStop = listener.Count();
      })
      .After(kLongSilenceMs)
      .Run();
  EXPECT_LE(listener.Count(), countAtStop + 1);
}

TEST_F(VoiceReceiver, HearsNothingAfterItWasUnregisteredWhileTheNextOneDoes) {
  std::size_t countAtEnd = 0;
  VoiceListener next(Port());
  application.Do(RegisterAndStart())
      .Until("three blocks", Heard(3))
      .Do([&] {
        EXPECT_EQ(listener.Unregister(), kVoiceDone);
        countAtEnd = listener.Count();
        EXPECT_EQ(next.Register(), kVoiceDone);
      })
      .Until("three blocks of the next", Heard(next, 3))
      .Run();
  EXPECT_EQ(listener.Count(), countAtEnd);
}

// The callback waits until the unregister call has begun, and then for a while for its return, which must not come.
TEST_F(VoiceReceiver, IsUnregisteredOnlyWhenItsCallbackHasReturned) {
  constexpr int kLooks = 100;
  constexpr useconds_t kBetweenLooksUs = 1000;
  std::atomic<bool> isInCallback{false};
  std::atomic<bool> isUnregistering{false};
  std::atomic<bool> isUnregistered{false};
  listener.onBlock = [&] {
    isInCallback = true;
    WaitUntil([&] { return isUnregistering.load(); });
    for (int look = 0; look < kLooks && !isUnregistered; ++look) {
      usleep(kBetweenLooksUs);
    }
    isInCallback = false;
  };
  std::unique_ptr<Thread> unregistering;
  const auto unregister = [&] {
    WaitUntil([&] { return isInCallback.load(); });
    isUnregistering = true;
    EXPECT_EQ(listener.Unregister(), kVoiceDone);
    EXPECT_FALSE(isInCallback) << "its callback still runs";
    isUnregistered = true;
  };
  application
      .Do([&] {
        RegisterAndStart()();
        unregistering = std::make_unique<Thread>(unregister);
      })
      .Until("the unregister call to return", [&] { return isUnregistered.load(); })
      .Run();
  unregistering->Join();
  EXPECT_EQ(listener.Count(), 1U);
  StopVoice();
}

}  // namespace
}  // namespace orvex::conformance
