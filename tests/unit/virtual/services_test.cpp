// Sound manager, output delay and queries: what the files say is what the service hears.
#include <algorithm>
#include <functional>

#include "orvex/platform/file_location.h"
#include "orvex/platform/output_delay.h"
#include "orvex/platform/sound_manager.h"
#include "orvex/platform/tv_service.h"
#include "unit/virtual/television.h"

namespace orvex::virtual_tv {
namespace {

using testing::HasSubstr;

using TelevisionServices = TelevisionTest;

TEST_F(TelevisionServices, ReadAndWriteTheSoundManagersFiles) {
  Echo("sound/mute", "1\n");
  Echo("sound/volume", "33\n");
  Echo("sound/speaker", "-4\n");
  bool muted = false;
  std::int32_t number = 0;
  EXPECT_EQ(sound_manager_get_device_mute(0, &muted), kSoundDone);
  EXPECT_TRUE(muted);
  EXPECT_EQ(sound_manager_get_tv_master_volume(&number), kSoundDone);
  EXPECT_EQ(number, 33);
  EXPECT_EQ(sound_manager_get_speaker_selection(&number), kSoundDone);
  EXPECT_EQ(number, -4);
  EXPECT_EQ(sound_manager_set_device_mute(0, false), kSoundDone);
  EXPECT_EQ(sound_manager_set_tv_master_volume(100), kSoundDone);
  EXPECT_EQ(Content("sound/mute"), "0\n");
  EXPECT_EQ(Content("sound/volume"), "100\n");
}

TEST_F(TelevisionServices, SayOnceThatAValueCannotBeReadUntilItCan) {
  std::uint32_t delayMs = 0;
  const auto problems = [&](int reads) {
    testing::internal::CaptureStderr();
    for (int read = 0; read < reads; ++read) {
      avoc_get_delay(&delayMs, kDelayKindSpdif);
    }
    const std::string text = testing::internal::GetCapturedStderr();
    return std::count(text.begin(), text.end(), '\n');
  };
  Echo("delay/spdif", "soon\n");
  EXPECT_EQ(problems(5), 1);
  EXPECT_EQ(problems(5), 0);
  Echo("delay/spdif", "later\n");
  EXPECT_EQ(problems(5), 1) << "another problem";
  Echo("delay/spdif", "7\n");
  EXPECT_EQ(problems(1), 0);
  Echo("delay/spdif", "soon\n");
  EXPECT_EQ(problems(2), 1) << "it was good meanwhile";
}

TEST_F(TelevisionServices, ReadAndWriteTheDelayOfTheOpticalOutput) {
  std::uint32_t delayMs = 0;
  EXPECT_EQ(avoc_get_delay(&delayMs, kDelayKindSpdif), kDelayDone);
  EXPECT_EQ(delayMs, 100U);
  EXPECT_EQ(avoc_set_delay(4294967295U, kDelayKindSpdif), kDelayDone);
  EXPECT_EQ(Content("delay/spdif"), "4294967295\n");
  EXPECT_EQ(IAudioControl::getInstance()->getSpdifOutDelay(&delayMs), 0);
  EXPECT_EQ(delayMs, 4294967295U);
  EXPECT_EQ(avoc_get_delay(&delayMs, 2), kDelayUnknownKind);
  EXPECT_EQ(avoc_set_delay(1, 2), kDelayUnknownKind);
  EXPECT_EQ(Content("delay/spdif"), "4294967295\n");
}

// One operation that reads a file, and its name in faults.json. Targets start at 77.
struct Operation {
  const char* fault;
  const char* file;
  std::function<int(int* target)> run;
};

constexpr int kFailed = -1;  // of each of them

int QueryDelay(int* target, int (*query)(std::uint32_t* delayMs)) {
  auto delayMs = static_cast<std::uint32_t>(*target);
  const int result = query(&delayMs);
  *target = static_cast<int>(delayMs);
  return result;
}

int QueryResolution(int* target) {
  IAVControl* video = nullptr;
  tv_create_av_control(1, 0, &video);
  TvResolution record{77};
  const int result = video->getResolution(target, &record);
  EXPECT_EQ(record.frequency == 77, result != kTvDone);
  return result;
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations{
      {"sound.get_mute", "sound/mute",
       [](int* target) {
         bool muted = true;
         const int result = sound_manager_get_device_mute(0, &muted);
         *target = muted ? 77 : 0;
         return result;
       }},
      {"sound.get_volume", "sound/volume", [](int* target) { return sound_manager_get_tv_master_volume(target); }},
      {"sound.get_speaker", "sound/speaker", [](int* target) { return sound_manager_get_speaker_selection(target); }},
      {"delay.get", "delay/spdif",
       [](int* target) {
         return QueryDelay(target, [](std::uint32_t* delayMs) { return avoc_get_delay(delayMs, kDelayKindSpdif); });
       }},
      {"audio_control.delay", "delay/spdif",
       [](int* target) {
         return QueryDelay(
             target, [](std::uint32_t* delayMs) { return IAudioControl::getInstance()->getSpdifOutDelay(delayMs); });
       }},
      {"audio_control.codec", "tv/codec",
       [](int* target) { return IAudioControl::getInstance()->getSpdifOutCodec(target); }},
      {"tv.hdmi_inputs", "tv/hdmi_inputs", [](int*) { return tv_get_hdmi_input_count(); }},
      {"tv.resolution", "tv/resolution", &QueryResolution},
      {"tv.resolution", "tv/frequency", &QueryResolution},
      {"tv.source", "tv/source",
       [](int* target) {
         ISourceControl* sources = nullptr;
         tv_create_source_control(1, 0, &sources);
         auto source = static_cast<ESource>(77);
         const int result = sources->getCurrentSource(&source);
         *target = source;
         return result;
       }},
  };
  return operations;
}

TEST_F(TelevisionServices, FailWithTargetsUntouchedWhenTheirFileIsMissingOrBad) {
  for (const Operation& operation : Operations()) {
    for (const char* const content : {"", "much", "1e3"}) {
      Echo(operation.file, content);
      int target = 77;
      testing::internal::CaptureStderr();
      EXPECT_EQ(operation.run(&target), kFailed) << operation.file;
      EXPECT_EQ(target, 77) << operation.file;
      EXPECT_THAT(testing::internal::GetCapturedStderr(),
                  HasSubstr((Folder() / operation.file).string() + ": \"" + content + "\": expected an integer"));
    }
    Remove(operation.file);
    int target = 77;
    testing::internal::CaptureStderr();
    EXPECT_EQ(operation.run(&target), kFailed) << operation.file;
    EXPECT_EQ(target, 77) << operation.file;
    const bool isQuery = std::string(operation.file).rfind("tv/", 0) == 0;  // a missing one is a state of its own
    EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), isQuery) << operation.file;
    Television::Instance().Set(operation.file, "1");
    EXPECT_NE(operation.run(&target), kFailed) << operation.file;
  }
}

TEST_F(TelevisionServices, GiveAnInjectedAnswerOnceAndLeaveTargetsUntouched) {
  for (const Operation& operation : Operations()) {
    SetFaults(std::string("{\"") + operation.fault + "\": [-77]}");
    int target = 77;
    EXPECT_EQ(operation.run(&target), -77) << operation.fault;
    EXPECT_EQ(target, 77) << operation.fault;
    EXPECT_NE(operation.run(&target), -77) << operation.fault;
  }
}

TEST_F(TelevisionServices, WriteNothingWhenTheAnswerIsInjected) {
  SetFaults(R"({"sound.set_mute": -1, "sound.set_volume": -1, "delay.set": -1})");
  EXPECT_EQ(sound_manager_set_device_mute(0, true), kSoundUnreachable);
  EXPECT_EQ(sound_manager_set_tv_master_volume(99), kSoundUnreachable);
  EXPECT_EQ(avoc_set_delay(99, kDelayKindSpdif), kDelayUnreachable);
  EXPECT_EQ(Content("sound/mute") + Content("sound/volume") + Content("delay/spdif"), "0\n15\n100\n");
}

TEST_F(TelevisionServices, FailToWriteWhereNothingCanBeWritten) {
  Remove("delay");
  Echo("delay", "a file in the way");
  testing::internal::CaptureStderr();
  EXPECT_EQ(avoc_set_delay(99, kDelayKindSpdif), kDelayUnreachable);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr((Folder() / "delay").string()));
}

TEST_F(TelevisionServices, HaveNoActivityWithoutBrandOrKind) {
  Remove("tv/brand");
  EXPECT_EQ(tv_get_activity_info_by_source(99), nullptr);
  Television::Instance().Set("tv/brand", "");
  ASSERT_NE(tv_get_activity_info_by_source(99), nullptr);
  EXPECT_STREQ(tv_get_activity_info_by_source(99)->brandName, "");
  Remove("tv/device_type");
  EXPECT_EQ(tv_get_activity_info_by_source(99), nullptr);
  Television::Instance().Set("tv/device_type", "1");
  SetFaults(R"({"tv.activity": [-1]})");
  EXPECT_EQ(tv_get_activity_info_by_source(99), nullptr);
  EXPECT_NE(tv_get_activity_info_by_source(99), nullptr);
}

TEST_F(TelevisionServices, WithholdAControlWhenInjected) {
  SetFaults(R"({"tv.av_control": -5, "tv.source_control": -6})");
  IAVControl* video = nullptr;
  ISourceControl* sources = nullptr;
  EXPECT_EQ(tv_create_av_control(1, 0, &video), -5);
  EXPECT_EQ(tv_create_source_control(1, 0, &sources), -6);
  EXPECT_EQ(video, nullptr);
  EXPECT_EQ(sources, nullptr);
}

TEST_F(TelevisionServices, FindAFileOnTheTelevisionThenAtItsFixedPlaceThenAmongTheResources) {
  const std::string fixed = "/usr/apps/example/sound.wav";
  setenv("ORVEX_RESOURCES", "/resources", 1);
  EXPECT_EQ(file_location(fixed), "/resources" + fixed);
  EXPECT_EQ(file_location("/proc/self/status"), "/proc/self/status");
  std::filesystem::create_directories(Folder() / "usr/apps/example");
  Echo("usr/apps/example/sound.wav", "x");
  EXPECT_EQ(file_location(fixed), Folder().string() + fixed);
  Remove("usr");
  unsetenv("ORVEX_RESOURCES");
  EXPECT_THAT(file_location(fixed), testing::EndsWith("/sysroot" + fixed));
}

}  // namespace
}  // namespace orvex::virtual_tv
