// The sound device's arithmetic: which frame leaves when, and what a fault does to it.
#include "virtual/pcm_stream.h"

#include <gmock/gmock.h>

#include <numeric>

namespace orvex::virtual_tv {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;

// One entry per call: where the frames' left samples begin, how many there are and when the first one leaves.
struct Handed {
  MonotonicTime start;
  int first;
  std::size_t count;
};
bool operator==(const Handed& a, const Handed& b) {
  return a.start == b.start && a.first == b.first && a.count == b.count;
}
void PrintTo(const Handed& handed, std::ostream* out) {
  *out << handed.count << " frames from " << handed.first << " at " << handed.start.count() << " ns";
}

class RecordingSink final : public SoundSink {
public:
  void Play(MonotonicTime start, const std::int16_t* frames, std::size_t count) override {
    handed.push_back({start, frames[0], count});
  }
  void Cut(MonotonicTime from) override { cuts.push_back(from); }

  std::vector<Handed> handed;
  std::vector<MonotonicTime> cuts;
};

class PcmStreamTimes : public testing::Test {
protected:
  // Left samples count up over all calls, so that a frame can be told from another.
  void Accept(std::size_t count) {
    std::vector<std::int16_t> frames(2 * count);
    for (std::size_t frame = 0; frame < count; ++frame) {
      frames[2 * frame] = m_NextSample++;
    }
    m_Stream.Accept(frames.data(), count);
  }

  PcmFault TakeFault(MonotonicTime now) {
    PcmFault fault{};
    EXPECT_TRUE(m_Stream.TakeFault(now, fault));
    return fault;
  }
  bool IsSound(MonotonicTime now) {
    PcmFault fault{};
    return !m_Stream.TakeFault(now, fault);
  }

  RecordingSink m_Sink;
  std::deque<PcmFaultPoint> m_Faults;
  PcmStream m_Stream{m_Sink, m_Faults};
  std::int16_t m_NextSample = 0;
};

TEST_F(PcmStreamTimes, FramesWaitForTheStartAndThenLeaveBackToBack) {
  m_Stream.Prepare(seconds(1));
  Accept(480);
  EXPECT_TRUE(m_Sink.handed.empty());
  m_Stream.Start(seconds(2));
  Accept(48);
  EXPECT_THAT(m_Sink.handed, ElementsAre(Handed{seconds(2), 0, 480}, Handed{seconds(2) + milliseconds(10), 480, 48}));
}

TEST_F(PcmStreamTimes, APositionIsReachedExactlyAtItsTime) {
  const MonotonicTime start(1'234'567'891);
  m_Stream.Start(start);
  Accept(1 << 14U);
  for (std::uint64_t frame = 1; frame < (1U << 14U); ++frame) {
    const MonotonicTime time = m_Stream.TimeOfPosition(frame);
    ASSERT_EQ(m_Stream.Position(time), frame);
    ASSERT_EQ(m_Stream.Position(time - MonotonicTime(1)), frame - 1);
  }
}

TEST_F(PcmStreamTimes, TimesStayExactAfterAnHour) {
  m_Stream.Start(seconds(0));
  EXPECT_EQ(m_Stream.TimeOfPosition(3600 * 48000), seconds(3600));
}

TEST_F(PcmStreamTimes, NoMoreFramesLeaveThanWereWritten) {
  m_Stream.Start(seconds(1));
  Accept(100);
  EXPECT_EQ(m_Stream.Position(seconds(9)), 100U);
}

TEST_F(PcmStreamTimes, AStopCutsWhatHasNotLeftAndKeepsThePosition) {
  Accept(4800);
  m_Stream.Start(seconds(1));
  m_Stream.Stop(seconds(1) + milliseconds(50));
  EXPECT_THAT(m_Sink.cuts, ElementsAre(seconds(1) + milliseconds(50)));
  EXPECT_EQ(m_Stream.Position(seconds(9)), 2400U);
}

TEST_F(PcmStreamTimes, APreparedStreamIsEmptyAndBeginsAtZero) {
  Accept(4800);
  m_Stream.Start(seconds(1));
  m_Stream.Prepare(seconds(1) + milliseconds(50));
  EXPECT_EQ(m_Stream.Written(), 0U);
  EXPECT_EQ(m_Stream.Position(seconds(2)), 0U);
  m_Sink.handed.clear();
  Accept(10);
  m_Stream.Start(seconds(3));
  EXPECT_THAT(m_Sink.handed, ElementsAre(Handed{seconds(3), 4800, 10}));
}

TEST_F(PcmStreamTimes, FramesBehindAFaultAreNotHeardBeforeAResume) {
  m_Faults = {{480, PcmFault::kSuspend}};
  Accept(4800);
  m_Stream.Start(seconds(1));
  EXPECT_THAT(m_Sink.handed, ElementsAre(Handed{seconds(1), 0, 480}));
  EXPECT_TRUE(IsSound(seconds(1) + milliseconds(10) - MonotonicTime(1)));
  EXPECT_EQ(TakeFault(seconds(1) + milliseconds(15)), PcmFault::kSuspend);
  EXPECT_EQ(m_Stream.Position(seconds(2)), 480U);
  m_Stream.Resume(seconds(5));
  EXPECT_THAT(m_Sink.handed, ElementsAre(Handed{seconds(1), 0, 480}, Handed{seconds(5), 480, 4320}));
  EXPECT_EQ(m_Stream.Position(seconds(5) + milliseconds(10)), 960U);
}

TEST_F(PcmStreamTimes, FaultFramesCountOnOverNewStreams) {
  m_Faults = {{4800, PcmFault::kUnderrun}};
  Accept(4000);
  m_Stream.Start(seconds(1));
  m_Stream.Prepare(seconds(1) + milliseconds(50));  // 2400 frames have left
  Accept(4800);
  m_Stream.Start(seconds(2));
  EXPECT_EQ(m_Stream.FaultFrame(), 2400U);
  EXPECT_TRUE(IsSound(seconds(2) + milliseconds(49)));
  EXPECT_EQ(TakeFault(seconds(2) + milliseconds(50)), PcmFault::kUnderrun);
}

TEST_F(PcmStreamTimes, EachFaultHappensOnceAndTwoAtOneFrameOneAfterTheOther) {
  m_Faults = {{480, PcmFault::kSuspend}, {480, PcmFault::kUnderrun}};
  Accept(4800);
  m_Stream.Start(seconds(1));
  EXPECT_EQ(TakeFault(seconds(2)), PcmFault::kSuspend);
  EXPECT_TRUE(IsSound(seconds(3)));  // halted
  m_Stream.Resume(seconds(4));
  EXPECT_EQ(TakeFault(seconds(4)), PcmFault::kUnderrun);
  m_Stream.Resume(seconds(5));
  EXPECT_TRUE(IsSound(seconds(9)));
  EXPECT_TRUE(m_Faults.empty());
}

TEST_F(PcmStreamTimes, AFaultBehindTheLastFrameDoesNotHappen) {
  m_Faults = {{4801, PcmFault::kDisconnect}};
  Accept(4800);
  m_Stream.Start(seconds(1));
  EXPECT_TRUE(IsSound(seconds(9)));
  EXPECT_EQ(m_Faults.size(), 1U);
}

}  // namespace
}  // namespace orvex::virtual_tv
