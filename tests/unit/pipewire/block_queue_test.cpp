// Samples go in by any number, blocks come out by 768, and what was lost is told in whole blocks.
#include "pipewire/client/block_queue.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace orvex::pipewire {
namespace {

// Samples that tell their own place.
std::vector<std::int16_t> From(int first, std::size_t count) {
  std::vector<std::int16_t> samples(count);
  std::iota(samples.begin(), samples.end(), static_cast<std::int16_t>(first));
  return samples;
}

class Blocks : public testing::Test {
protected:
  std::uint64_t Put(std::size_t count) {
    const auto samples = From(m_Place, count);
    m_Place += static_cast<int>(count);
    return m_Queue.Put(samples.data(), samples.size());
  }
  std::uint64_t Lose(std::size_t count) {
    m_Place += static_cast<int>(count);
    return m_Queue.Lose(count);
  }
  // The next block is whole, begins with this sample, and so many blocks are missing in front of it.
  void ExpectBlock(int first, std::uint64_t lostBefore) {
    VoiceBlock block;
    ASSERT_TRUE(m_Queue.Take(block));
    const auto expected = From(first, block.samples.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), block.samples.begin())) << block.samples[0];
    EXPECT_EQ(block.lostBefore, lostBefore);
  }
  void ExpectNoBlock() {
    VoiceBlock block;
    EXPECT_FALSE(m_Queue.Take(block));
  }

  BlockQueue m_Queue;
  int m_Place = 0;
};

TEST_F(Blocks, AreCutFromCyclesOfAnyLength) {
  EXPECT_EQ(Put(767), 0U);
  ExpectNoBlock();
  EXPECT_EQ(Put(993), 2U);
  ExpectBlock(0, 0);
  ExpectBlock(768, 0);
  EXPECT_EQ(Put(3 * 768), 3U);
  ExpectBlock(1536, 0);
  ExpectBlock(2304, 0);
  ExpectBlock(3072, 0);
  ExpectNoBlock();
}

TEST_F(Blocks, ThatMissASampleAreLostAsAWhole) {
  Put(768 + 700);
  EXPECT_EQ(Lose(1), 0U);
  EXPECT_EQ(Put(67 + 768), 2U);
  ExpectBlock(0, 0);
  ExpectBlock(1536, 1);
}

TEST_F(Blocks, AreLostFromTheFirstToTheLastOneThatMissesASample) {
  Put(100);
  EXPECT_EQ(Lose(3 * 768), 3U);
  EXPECT_EQ(Put(668 + 768), 2U);
  ExpectBlock(3072, 4);
}

TEST_F(Blocks, BehindALossThatEndsWithABlockAreWhole) {
  Put(500);
  EXPECT_EQ(Lose(268), 1U);
  EXPECT_EQ(Put(768), 1U);
  ExpectBlock(768, 1);
}

TEST_F(Blocks, ThatFindNoRoomAreToldAsLost) {
  EXPECT_EQ(Put((BlockQueue::kCapacity + 5) * 768), BlockQueue::kCapacity + 5);
  for (std::size_t number = 0; number < BlockQueue::kCapacity; ++number) {
    VoiceBlock block;
    ASSERT_TRUE(m_Queue.Take(block)) << number;
  }
  ExpectNoBlock();
  const int first = m_Place;
  Put(768);
  ExpectBlock(first, 5);
}

TEST_F(Blocks, AreNotTouchedByALossOfNothing) {
  Put(300);
  EXPECT_EQ(Lose(0), 0U);
  Put(468);
  ExpectBlock(0, 0);
}

}  // namespace
}  // namespace orvex::pipewire
