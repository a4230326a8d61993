// The contract's volume and PipeWire's.
#include "pipewire/client/volume_scale.h"

#include <gtest/gtest.h>

namespace orvex::pipewire {
namespace {

TEST(Volume, IsReadAsItWasSet) {
  for (std::int32_t volume = 0; volume <= kMaximumVolume; ++volume) {
    EXPECT_EQ(VolumeOf(AmplitudeOf(volume)), volume);
  }
}

TEST(Volume, IsCubic) {
  EXPECT_FLOAT_EQ(AmplitudeOf(0), 0.0F);
  EXPECT_FLOAT_EQ(AmplitudeOf(50), 0.125F);
  EXPECT_FLOAT_EQ(AmplitudeOf(100), 1.0F);
}

TEST(Volume, LouderThanFullIsFull) {
  EXPECT_EQ(VolumeOf(1.5F), 100);
}

TEST(Volume, IsTheSameWhenACardHasRoundedIt) {
  for (std::int32_t volume = 1; volume <= kMaximumVolume; ++volume) {
    EXPECT_TRUE(IsSameVolume(AmplitudeOf(volume) * 1.001F, AmplitudeOf(volume)));
    EXPECT_FALSE(IsSameVolume(AmplitudeOf(volume - 1), AmplitudeOf(volume)));
  }
}

}  // namespace
}  // namespace orvex::pipewire
