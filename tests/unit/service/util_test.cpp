// The queries behind the start record: what their caller finds when the television does not answer.
#include "Util/OrvexUtil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "orvex/platform/output_delay.h"
#include "orvex/platform/tv_service.h"
#include "world/world.h"

namespace {

using orvex::world::World;

// Each test begins with values that no query answers.
class TelevisionQuery : public testing::Test {
protected:
  std::string text = "before";
  std::int32_t type = 77;
  std::uint32_t first = 77;
  std::uint32_t second = 77;
  ESource source = static_cast<ESource>(77);
  World world;
};

TEST_F(TelevisionQuery, AnswersWhatTheTelevisionSays) {
  OrvexUtil::GetDeviceInfo(text, type);
  EXPECT_EQ(text, "acme");
  EXPECT_EQ(type, 3);
  OrvexUtil::GetSourceInfo(text, first, second);
  EXPECT_EQ(text, "tv");
  EXPECT_EQ(first, 7U);
  EXPECT_EQ(second, 60U);
  OrvexUtil::GetCurrentSource(source);
  EXPECT_EQ(source, 5);
  OrvexUtil::GetSPDIFOUTCodec(first);
  EXPECT_EQ(first, 2U);
}

TEST_F(TelevisionQuery, OfADeviceThatIsNotThereIsNoneAndMinusOne) {
  world.brand.reset();
  OrvexUtil::GetDeviceInfo(text, type);
  EXPECT_EQ(text, "none");
  EXPECT_EQ(type, -1);
}

TEST_F(TelevisionQuery, OfASignalWithoutAControlIsNoneAndZeros) {
  world.answers.Always("tv_create_av_control", kTvFailed);
  OrvexUtil::GetSourceInfo(text, first, second);
  EXPECT_EQ(text, "none");
  EXPECT_EQ(first, 0U);
  EXPECT_EQ(second, 0U);
}

TEST_F(TelevisionQuery, OfASourceThatCannotBeReadIsZero) {
  world.answers.Next("tv_create_source_control", {kTvFailed});
  OrvexUtil::GetCurrentSource(source);
  EXPECT_EQ(source, 0);
  source = static_cast<ESource>(77);
  world.answers.Next("getCurrentSource", {kTvFailed});
  OrvexUtil::GetCurrentSource(source);
  EXPECT_EQ(source, 0);
}

TEST_F(TelevisionQuery, OfACodecThatCannotBeReadIsZero) {
  world.answers.Next("getSpdifOutCodec", {kAudioControlFailed});
  OrvexUtil::GetSPDIFOUTCodec(first);
  EXPECT_EQ(first, 0U);
  world.hasAudioControl = false;
  OrvexUtil::GetSPDIFOUTCodec(second);
  EXPECT_EQ(second, 0U);
}

}  // namespace
