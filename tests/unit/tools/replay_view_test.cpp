// What the close-up of a recording shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "replay/view.h"
#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

View CloseUpOf(const std::string& blocks) {
  return CloseUp(ReplayRecord(MakeRecording(blocks)));
}

TEST(ReplayView, IsOfThePairWithRoomOnBothSides) {
  for (const int distance : {1, 4, 19}) {
    const std::string pair = "7" + std::string(static_cast<std::size_t>(distance - 1), '.') + "9";
    for (const std::size_t more : {0U, 3U, 200U}) {
      const View view = CloseUpOf(Ambient() + pair + std::string(more, '.'));
      EXPECT_EQ("Close-up: the pair", view.title);
      EXPECT_EQ(29.5, view.buffers.low);
      EXPECT_GE(view.buffers.high, 36 + distance + 6);
      EXPECT_LE(view.buffers.Length(), 33.0);
    }
  }
}

TEST(ReplayView, BeginsNearThePairAlsoInANarrowWindow) {
  const View view = CloseUpOf(Ambient() + "7..9");
  EXPECT_LT((39.0 - view.buffers.low) / view.buffers.Length(), 0.51);
}

TEST(ReplayView, IsOfWhatEndedTheRunWhereThereIsNoPair) {
  const View abnormal = CloseUpOf(Ambient() + std::string(11, 'y') + "7.9");
  EXPECT_EQ("Close-up: where the run was given up", abnormal.title);
  EXPECT_TRUE(abnormal.buffers.Holds(36.0));
  EXPECT_TRUE(abnormal.buffers.Holds(52.0));
  const View missing = CloseUpOf(Ambient() + "7" + std::string(50, '.'));
  EXPECT_EQ("Close-up: 17 kHz, and where 19 kHz was awaited", missing.title);
  EXPECT_TRUE(missing.buffers.Holds(36.0 + detector::kPairingSpan));
  EXPECT_EQ("Close-up: 19 kHz, and where 17 kHz was awaited", CloseUpOf(Ambient() + "9").title);
  EXPECT_EQ("Close-up: the first noisy 17 kHz", CloseUpOf(Ambient() + "..x.").title);
  const View late = CloseUpOf(Ambient() + "7" + std::string(19, '.') + "9");
  EXPECT_EQ("Close-up: the first sequence error", late.title);
  EXPECT_TRUE(late.buffers.Holds(36.0) && late.buffers.Holds(56.0));
}

TEST(ReplayView, OfASequenceErrorIsNeverVeryLong) {
  const View view = CloseUpOf(Ambient() + "7" + std::string(300, '.') + "9");
  EXPECT_TRUE(view.buffers.Holds(36 + 301));
  EXPECT_LT(view.buffers.Length(), 60.0);
}

TEST(ReplayView, IsThereForEveryRecording) {
  EXPECT_EQ("Close-up: the end of the recording", CloseUpOf("").title);
  EXPECT_EQ("Close-up: the end of the recording", CloseUpOf(std::string(30, '.')).title);
  EXPECT_THAT(CloseUpOf(Ambient() + "....").title, testing::StartsWith("Close-up: the strongest 1"));
  for (const char* const blocks : {"", "..", "00000000"}) {
    const View view = CloseUpOf(blocks);
    EXPECT_GE(view.buffers.low, 0.0);
    EXPECT_GE(view.buffers.Length(), 20.0);
  }
}

TEST(ReplayView, OfTheWholeRecordingLeavesRoomBehindItsEnd) {
  const View view = WholeRecording(ReplayRecord(MakeRecording(std::string(300, '.'))));
  EXPECT_EQ(0.0, view.buffers.low);
  EXPECT_EQ(306.0, view.buffers.high);
}

}  // namespace
}  // namespace orvex::tools
