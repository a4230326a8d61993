// A run controller without an application: nobody receives the events that it sends, so that a test can do several
// runs.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Application/OrvexEventId.h"
#include "Application/OrvexManager.h"
#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/Singleton.h"
#include "support/dump_files.h"
#include "support/journal.h"
#include "support/voice_blocks.h"

namespace orvex::test {

// The owner agrees to telemetry, and the delay in force is 100 ms.
class ManagerTest : public testing::Test {
protected:
  // Creates the singletons here, as each logs a line once per process, which must not stand in a test's journal.
  ManagerTest() {
    CSingleton<CAudioControl>::GetInstance();
    CSingleton<CDebugDump>::GetInstance();
    world.settings[world::kConsentKey] = 1;
    world.journal.Clear();
  }

  void Handle(std::int32_t type) { manager.OnEvent(FwEvent(type, nullptr)); }
  // A whole run in which the remote hears the ambient phase and then these blocks.
  void RunHearing(const std::vector<Samples>& blocks) {
    Handle(ORVEX_START_SYNC);
    manager.m_StartOrvex(ORVEX_WORKER_BT_RECORDER);
    world.AdvanceMs(0);
    for (int buffer = 1; buffer <= 35; ++buffer) {
      world.Deliver(Ambient());
    }
    for (const Samples& block : blocks) {
      world.Deliver(block);
    }
    Handle(ORVEX_END_SYNC);
  }
  // The only record that `send` sends; its text must be the one that was logged.
  template <class Send>
  std::string TextSentBy(Send send) {
    world.events.clear();
    world.journal.Clear();
    send();
    EXPECT_EQ(world.events.size(), 1U);
    const std::string text = world.events.at(0).value;
    EXPECT_EQ(world.journal.Count("I0 text = " + text), 1);
    return text;
  }

  const DumpFiles dumpFiles;
  world::World world;
  OrvexManager manager;
};

}  // namespace orvex::test
