// The delay of the optical output is read, kept, written and reported.
#include "Common/AudioControl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

#include "Util/DebugDump.h"
#include "Util/Singleton.h"
#include "support/dump_files.h"
#include "support/journal.h"

namespace {

using orvex::test::DumpFiles;
using orvex::test::During;
using orvex::world::World;
using testing::ElementsAre;

class AudioControl : public testing::Test {
protected:
  AudioControl() {
    CSingleton<CDebugDump>::GetInstance();
    world.journal.Clear();
  }
  // What DumpCurrentStatus() adds to the results.
  std::string Report() {
    const DumpFiles dumpFiles;
    CSingleton<CDebugDump>::GetInstance()->Start();
    control.DumpCurrentStatus();
    CSingleton<CDebugDump>::GetInstance()->Stop();
    return DumpFiles::Results();
  }

  World world;
  CAudioControl control;
};

static_assert(std::has_virtual_destructor_v<CAudioControl>);

TEST_F(AudioControl, TheDelayInForceIsReadAfterTheDiagnosis) {
  world.delayMs = 130;
  EXPECT_THAT(During(world, [&] { EXPECT_EQ(control.GetSpdifOutDelay(), 130U); }),
              ElementsAre("> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = 0",
                          "E0 spdif out delay = 130", "> avoc_get_delay(1) = 0", "I0 avoc delay = 130"));
}

TEST_F(AudioControl, WithoutAnAudioControlObjectTheServicesValueIsReturnedAllTheSame) {
  world.hasAudioControl = false;
  EXPECT_THAT(During(world, [&] { EXPECT_EQ(control.GetSpdifOutDelay(), 100U); }),
              ElementsAre("> IAudioControl::getInstance() = null", "E2 audio_control is null", "E0 spdif out delay = 0",
                          "> avoc_get_delay(1) = 0", "I0 avoc delay = 100"));
  EXPECT_THAT(During(world, [&] { control.SaveCurrentStatus(); }),
              ElementsAre("> IAudioControl::getInstance() = null", "E2 audio_control is null", "E0 spdif out delay = 0",
                          "> avoc_get_delay(1) = 0", "E0 main out delay = 0, avoc delay = 100"));
}

TEST_F(AudioControl, TheAudioControlObjectIsAskedForAfreshEveryTime) {
  world.hasAudioControl = false;
  control.GetSpdifOutDelay();
  world.hasAudioControl = true;
  EXPECT_THAT(During(world, [&] { control.GetSpdifOutDelay(); }), testing::Contains("E0 spdif out delay = 100"));
}

TEST_F(AudioControl, AFailedDiagnosisShows0) {
  world.answers.Next("getSpdifOutDelay", {-1});
  EXPECT_THAT(During(world, [&] { EXPECT_EQ(control.GetSpdifOutDelay(), 100U); }),
              ElementsAre("> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = -1",
                          "E0 spdif out delay = 0", "> avoc_get_delay(1) = 0", "I0 avoc delay = 100"));
}

TEST_F(AudioControl, AFailedReadGives0) {
  world.answers.Next("avoc_get_delay", {-1, -2});
  EXPECT_THAT(During(world, [&] { EXPECT_EQ(control.GetSpdifOutDelay(), 0U); }),
              ElementsAre("> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = 0",
                          "E0 spdif out delay = 100", "> avoc_get_delay(1) = -1", "I0 avoc delay = 0"));
  EXPECT_THAT(
      During(world, [&] { control.SaveCurrentStatus(); }),
      ElementsAre("> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = 0", "E0 spdif out delay = 100",
                  "> avoc_get_delay(1) = -2", "E0 main out delay = 0, avoc delay = 0"));
}

TEST_F(AudioControl, AFailedReadReplacesTheKeptDelay) {
  control.SaveCurrentStatus();
  world.answers.Next("avoc_get_delay", {-1});
  control.SaveCurrentStatus();
  EXPECT_EQ(Report(), "result_set_value : [main: 0], [spdif: 0]\n");
}

TEST_F(AudioControl, ADelayIsPutInForceAndNotReadBack) {
  for (const std::uint32_t delayMs : {0U, 85U, 4294967295U}) {
    const std::string text = std::to_string(delayMs);
    EXPECT_THAT(During(world, [&] { control.SetSpdifOutDelay(delayMs); }),
                ElementsAre("I0 delay = " + text, "> avoc_set_delay(" + text + ", 1) = 0", "I0 after delay = " + text));
    EXPECT_EQ(world.delayMs, delayMs);
    EXPECT_EQ(control.GetSpdifOutDelay(), delayMs);
  }
}

TEST_F(AudioControl, AFailedWriteIsNotNoticed) {
  world.answers.Next("avoc_set_delay", {-1});
  EXPECT_THAT(During(world, [&] { control.SetSpdifOutDelay(85); }),
              ElementsAre("I0 delay = 85", "> avoc_set_delay(85, 1) = -1", "I0 after delay = 85"));
  EXPECT_EQ(world.delayMs, 100U);
}

TEST_F(AudioControl, SavingKeepsTheDelayForTheReport) {
  world.delayMs = 4294967295U;
  EXPECT_THAT(During(world, [&] { control.SaveCurrentStatus(); }),
              ElementsAre("> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = 0",
                          "E0 spdif out delay = 4294967295", "> avoc_get_delay(1) = 0",
                          "E0 main out delay = 0, avoc delay = 4294967295"));
  EXPECT_EQ(Report(), "result_set_value : [main: 0], [spdif: 4294967295]\n");
}

TEST_F(AudioControl, OnlySavingChangesTheKeptDelay) {
  EXPECT_EQ(Report(), "result_set_value : [main: 0], [spdif: 0]\n");
  control.GetSpdifOutDelay();
  control.SetSpdifOutDelay(85);
  EXPECT_EQ(Report(), "result_set_value : [main: 0], [spdif: 0]\n");
  control.SaveCurrentStatus();
  EXPECT_EQ(Report(), "result_set_value : [main: 0], [spdif: 85]\n");
  world.delayMs = 20;
  EXPECT_EQ(Report(), "result_set_value : [main: 0], [spdif: 85]\n");
}

TEST_F(AudioControl, AReportWithoutAnOpenResultFileIsOnlyComplainedAbout) {
  EXPECT_THAT(During(world, [&] { control.DumpCurrentStatus(); }), ElementsAre("E2 already null"));
}

}  // namespace
