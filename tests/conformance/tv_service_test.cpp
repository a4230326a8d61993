// Queries of the television's service layer.
#include "orvex/platform/tv_service.h"
#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

constexpr int kProfile = 1;
constexpr int kMainPicture = 0;
constexpr int kSource = 1;

TvState UnusualState() {
  TvState state;
  state.hdmiInputs = 2;
  state.deviceType = 17;
  state.brand = "Norvél";
  state.resolution = 9;
  state.frequency = 50;
  state.source = 23;
  return state;
}

class TvService : public PortTest {};

TEST_F(TvService, AnswersWhatTheTelevisionShows) {
  ORVEX_NEEDS(kPutTvState);
  OnMainLoop([&] {
    for (const TvState& state : {TvState(), UnusualState()}) {
      Port().PutTvState(state);
      EXPECT_EQ(tv_get_hdmi_input_count(), state.hdmiInputs);
      const TvActivityInfo* const info = tv_get_activity_info_by_source(state.source);
      ASSERT_NE(info, nullptr);
      EXPECT_EQ(info->deviceType, state.deviceType);
      EXPECT_EQ(info->brandName, state.brand);

      IAVControl* video = nullptr;
      ASSERT_EQ(tv_create_av_control(kProfile, kMainPicture, &video), kTvDone);
      ASSERT_NE(video, nullptr);
      std::int32_t resolution = 0;
      TvResolution record{0};
      EXPECT_EQ(video->getResolution(&resolution, &record), kTvDone);
      EXPECT_EQ(resolution, state.resolution);
      EXPECT_EQ(record.frequency, state.frequency);

      ISourceControl* sources = nullptr;
      ASSERT_EQ(tv_create_source_control(kProfile, kMainPicture, &sources), kTvDone);
      ASSERT_NE(sources, nullptr);
      ESource source{};
      EXPECT_EQ(sources->getCurrentSource(&source), kTvDone);
      EXPECT_EQ(static_cast<std::int32_t>(source), state.source);
    }
  });
}

// Whatever the television is like: a result is one of those that are listed, with its object or without.
TEST_F(TvService, HandsOutAnObjectWithSuccessAndNoneWithFailure) {
  OnMainLoop([] {
    IAVControl* video = nullptr;
    const int videoResult = tv_create_av_control(kProfile, kMainPicture, &video);
    EXPECT_LE(videoResult, 0);
    EXPECT_EQ(videoResult == kTvDone, video != nullptr);
    ISourceControl* sources = nullptr;
    const int sourceResult = tv_create_source_control(kProfile, kMainPicture, &sources);
    EXPECT_LE(sourceResult, 0);
    EXPECT_EQ(sourceResult == kTvDone, sources != nullptr);
    const TvActivityInfo* const info = tv_get_activity_info_by_source(kSource);
    EXPECT_TRUE(info == nullptr || info->brandName != nullptr);
  });
}

TEST_F(TvService, ThatFailsLeavesTargetsUntouchedAlsoOfControlsMadeBefore) {
  ORVEX_NEEDS(kBreakTvService);
  OnMainLoop([&] {
    IAVControl* video = nullptr;
    ISourceControl* sources = nullptr;
    ASSERT_EQ(tv_create_av_control(kProfile, kMainPicture, &video), kTvDone);
    ASSERT_EQ(tv_create_source_control(kProfile, kMainPicture, &sources), kTvDone);
    Port().Break(Ability::kBreakTvService);

    EXPECT_LT(tv_get_hdmi_input_count(), 0);
    EXPECT_EQ(tv_get_activity_info_by_source(kSource), nullptr);
    std::int32_t resolution = 4711;
    TvResolution record{4712};
    EXPECT_EQ(video->getResolution(&resolution, &record), kTvFailed);
    EXPECT_EQ(resolution, 4711);
    EXPECT_EQ(record.frequency, 4712);
    auto source = static_cast<ESource>(4713);
    EXPECT_LT(sources->getCurrentSource(&source), 0);
    EXPECT_EQ(static_cast<std::int32_t>(source), 4713);
  });
}

}  // namespace
}  // namespace orvex::conformance
