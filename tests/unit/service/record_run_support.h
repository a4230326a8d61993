// Whole runs of a controller that stands alone: its events reach nobody, so that a process can run more than once.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Application/OrvexManager.h"
#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/Singleton.h"
#include "support/dump_files.h"
#include "support/journal.h"
#include "support/voice_blocks.h"

namespace orvex::test {

class RecordTest : public testing::Test {
protected:
  static constexpr char kConsentKey[] = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";
  static constexpr std::int32_t kStartSync = 10000;
  static constexpr std::int32_t kEndSync = 10001;
  static constexpr int kRecorder = 1;
  static constexpr int kPlayer = 2;

  // The singletons announce themselves once per process: not in a test's journal.
  RecordTest() {
    CSingleton<CAudioControl>::GetInstance();
    CSingleton<CDebugDump>::GetInstance();
    world.settings[kConsentKey] = 1;
    world.journal.Clear();
  }

  void Handle(std::int32_t type) { manager.OnEvent(FwEvent(type, nullptr)); }
  void StartRecorder() {
    manager.m_StartOrvex(kRecorder);
    world.AdvanceMs(0);
  }
  // A run in which 17 kHz comes two buffers before 19 kHz: the delay must be 33 ms shorter.
  void RunThatMeasures() {
    Handle(kStartSync);
    StartRecorder();
    for (int buffer = 1; buffer <= 35; ++buffer) {
      world.Deliver(Ambient());
    }
    world.Deliver(Tone(17000, 5000));
    world.Deliver(Ambient());
    world.Deliver(Tone(19000, 5000));
    Handle(kEndSync);
  }
  // A run in which nothing is heard.
  void RunThatFindsNothing() {
    Handle(kStartSync);
    StartRecorder();
    world.Deliver(Ambient());
    Handle(kEndSync);
  }
  // The text of an end record sent now; it must be the one that was logged and the only one that was sent.
  std::string EndText() {
    world.events.clear();
    world.journal.Clear();
    manager.m_SendKPILogEndTime();
    EXPECT_EQ(world.events.size(), 1U);
    const std::string text = world.events.at(0).value;
    EXPECT_EQ(world.journal.Count("I0 text = " + text), 1);
    return text;
  }
  // Texts of the records sent so far.
  Texts TextsSent() const {
    Texts texts;
    for (const world::EventRecord& record : world.events) {
      texts.push_back(record.value);
    }
    return texts;
  }

  const DumpFiles dumpFiles;
  world::World world;
  OrvexManager manager;
};

}  // namespace orvex::test
