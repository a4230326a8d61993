// A service in a world, driven by events, blocks of tones and a test sound of silence.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Application/OrvexApp.h"
#include "unit/service/blocks.h"
#include "unit/service/dump_support.h"
#include "unit/service/silent_wave.h"
#include "world/world.h"

namespace orvex::test {

class Run : public testing::Test {
protected:
  Run() { world.soundFile = sound.Path(); }
  ~Run() override { recordings.Note(world.journal); }

  // The application is created and its recorder records; the journal is empty.
  void StartRecording() {
    world.Create(app);
    world.AdvanceMs(1);
    recordings.Note(world.journal);
    world.journal.Clear();
  }
  void DeliverAmbient(int blocks) {
    for (int i = 0; i < blocks; ++i) {
      ASSERT_TRUE(world.Deliver(Ambient()));
    }
  }
  // The four buffers that are ignored and the ambient phase: the next block is the first in which a tone is found.
  void LearnAmbient() { DeliverAmbient(35); }
  // Two tones, `buffers` buffers apart. Positive: 17 kHz first.
  void DeliverPair(int buffers) {
    world.Deliver(Tone(buffers > 0 ? 17000 : 19000, 5000));
    DeliverAmbient(std::abs(buffers) - 1);
    world.Deliver(Tone(buffers > 0 ? 19000 : 17000, 5000));
  }
  // The texts that the journal gains while an event is handled.
  std::vector<std::string> Handle(std::int32_t type) {
    world.journal.Clear();
    FwEvent event(type, app.GetEventReceiver());
    app.t_OnEvent(&event);
    recordings.Note(world.journal);
    return world.journal.Texts();
  }
  // Log lines only, and only those of the main thread.
  std::vector<std::string> MainLogs() const {
    std::vector<std::string> texts;
    for (const orvex::world::Entry& entry : world.journal.Entries()) {
      if (entry.thread == "main" && entry.text.compare(0, 2, "> ") != 0) {
        texts.push_back(entry.text);
      }
    }
    return texts;
  }

  service_tests::DumpedRecordings recordings;
  SilentWave sound{0.5};
  orvex::world::World world;
  COrvexApp app;
};

}  // namespace orvex::test
