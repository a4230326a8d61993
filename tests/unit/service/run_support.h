// A service in a world, driven by events, blocks of tones and a test sound of silence.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "Application/OrvexApp.h"
#include "support/dump_files.h"
#include "support/journal.h"
#include "support/voice_blocks.h"
#include "support/wave_file.h"

namespace orvex::test {

class Run : public testing::Test {
protected:
  Run() { world.soundFile = sound.Path(); }

  // The application is created and its recorder records; the journal is empty.
  void StartRecording() {
    world.Create(app);
    world.AdvanceMs(1);
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
  Texts Handle(std::int32_t type) {
    FwEvent event(type, app.GetEventReceiver());
    return During(world, [&] { app.t_OnEvent(&event); });
  }

  const DumpFiles dumpFiles;
  SilentWave sound{0.5};
  world::World world;
  COrvexApp app;
};

}  // namespace orvex::test
