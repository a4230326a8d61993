// The delay of the optical output is read, kept, written and reported.
#include "Common/AudioControl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

#include "Util/DebugDump.h"
#include "Util/Singleton.h"
#include "orvex/platform/output_delay.h"
#include "support/dump_files.h"
#include "support/journal.h"

namespace {

using orvex::test::Concat;
using orvex::test::DumpFiles;
using orvex::test::During;
using orvex::test::Texts;
using orvex::world::World;
using testing::ElementsAre;
using testing::ElementsAreArray;

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

TEST_F(AudioControl, TheDelayInForceIsTheDelayServices) {
  world.delayMs = 130;
  EXPECT_EQ(control.GetSpdifOutDelay(), 130U);
  EXPECT_TRUE(world.journal.Has("I0 avoc delay = 130"));
}

TEST_F(AudioControl, WithoutAnAudioControlObjectOnlyTheDiagnosisIsMissing) {
  world.hasAudioControl = false;
  const Texts noDiagnosis = {"> IAudioControl::getInstance() = null", "E2 audio_control is null",
                             "E0 spdif out delay = 0", "> avoc_get_delay(1) = 0"};
  EXPECT_THAT(During(world, [&] { EXPECT_EQ(control.GetSpdifOutDelay(), 100U); }),
              ElementsAreArray(Concat({noDiagnosis, {"I0 avoc delay = 100"}})));
  EXPECT_THAT(During(world, [&] { control.SaveCurrentStatus(); }),
              ElementsAreArray(Concat({noDiagnosis, {"E0 main out delay = 0, avoc delay = 100"}})));
}

TEST_F(AudioControl, TheAudioControlObjectIsAskedForAfreshEveryTime) {
  world.hasAudioControl = false;
  control.GetSpdifOutDelay();
  world.hasAudioControl = true;
  EXPECT_THAT(During(world, [&] { control.GetSpdifOutDelay(); }), testing::Contains("E0 spdif out delay = 100"));
}

TEST_F(AudioControl, AFailedDiagnosisShows0) {
  world.answers.Next("getSpdifOutDelay", {kAudioControlFailed});
  EXPECT_EQ(control.GetSpdifOutDelay(), 100U);
  EXPECT_TRUE(world.journal.Has("E0 spdif out delay = 0"));
}

TEST_F(AudioControl, AFailedReadGives0) {
  world.answers.Next("avoc_get_delay", {kDelayUnreachable, kDelayUnknownKind});
  EXPECT_EQ(control.GetSpdifOutDelay(), 0U);
  EXPECT_TRUE(world.journal.Has("I0 avoc delay = 0"));
  control.SaveCurrentStatus();
  EXPECT_TRUE(world.journal.Has("E0 main out delay = 0, avoc delay = 0"));
}

TEST_F(AudioControl, AFailedReadReplacesTheKeptDelay) {
  control.SaveCurrentStatus();
  world.answers.Next("avoc_get_delay", {kDelayUnreachable});
  control.SaveCurrentStatus();
  EXPECT_EQ(Report(), "result_set_value : [main: 0], [spdif: 0]\n");
}

TEST_F(AudioControl, ADelayIsPutInForceAndNotReadBack) {
  for (const std::uint32_t delayMs : {0U, 85U, 4294967295U}) {
    const std::string text = std::to_string(delayMs);
    EXPECT_THAT(During(world, [&] { control.SetSpdifOutDelay(delayMs); }),
                ElementsAre("I0 delay = " + text, "> avoc_set_delay(" + text + ", 1) = 0", "I0 after delay = " + text));
    EXPECT_EQ(world.delayMs, delayMs);
  }
}

TEST_F(AudioControl, AFailedWriteIsNotNoticed) {
  world.answers.Next("avoc_set_delay", {kDelayUnreachable});
  control.SetSpdifOutDelay(85);
  EXPECT_TRUE(world.journal.Has("I0 after delay = 85"));
  EXPECT_EQ(world.delayMs, 100U);
}

TEST_F(AudioControl, SavingKeepsTheDelayForTheReport) {
  world.delayMs = 4294967295U;
  control.SaveCurrentStatus();
  EXPECT_TRUE(world.journal.Has("E0 spdif out delay = 4294967295"));
  EXPECT_TRUE(world.journal.Has("E0 main out delay = 0, avoc delay = 4294967295"));
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

TEST_F(AudioControl, AReportWithoutAnOpenResultFileIsOnlyLogged) {
  EXPECT_THAT(During(world, [&] { control.DumpCurrentStatus(); }), ElementsAre("E2 already null"));
}

}  // namespace
