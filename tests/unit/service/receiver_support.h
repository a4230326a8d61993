// A receiver on a television in virtual time, which hears blocks that the test makes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Application/OrvexReceiver.h"
#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/Singleton.h"
#include "support/dump_files.h"
#include "support/journal.h"
#include "unit/service/receiver_sound_support.h"

namespace orvex::test {

class ReceiverTest : public testing::Test {
protected:
  ReceiverTest() {
    CSingleton<CAudioControl>::GetInstance();
    CSingleton<CDebugDump>::GetInstance();
    world.journal.Clear();
  }
  ~ReceiverTest() override { CSingleton<CDebugDump>::GetInstance()->Stop(); }

  // The texts that the journal gains during `action`.
  template <class Action>
  Texts During(Action action) {
    return test::During(world, action);
  }

  // The files of a recording before this one are closed first.
  void Start() {
    CSingleton<CDebugDump>::GetInstance()->Stop();
    receiver.StartBTRecoder();
    ASSERT_TRUE(receiver.IsRecording());
    world.journal.Clear();
  }

  // What the journal shows of the next block.
  Texts Hear(const Samples& block) {
    return During([&] { EXPECT_TRUE(world.Deliver(block)); });
  }
  Texts HearRecord(const VoiceData* record) {
    return During([&] { EXPECT_TRUE(world.Deliver(record)); });
  }

  // Quiet blocks until the next one has this number.
  void BeQuietUntil(int buffer) {
    while (receiver.GetBufferCount() < buffer - 1) {
      Hear(quiet);
    }
  }
  // The same without a sound: the port tells of lost blocks, which are counted but not analysed.
  void LoseBlocksUntil(int buffer) {
    while (receiver.GetBufferCount() < buffer - 1) {
      HearRecord(nullptr);
    }
  }
  // The journal of a block with this number but for the three lines that every block leaves.
  Texts EventsAt(int buffer, const Samples& block) {
    BeQuietUntil(buffer);
    const std::string levels = Text("I0 %d / ", receiver.GetBlockIndex());
    Texts events;
    for (const std::string& text : Hear(block)) {
      if (text != "I0 m_ReceiveBTAudioDataCB" && text != Text("I0 buffer: %d", buffer) && text.find(levels) != 0) {
        events.push_back(text);
      }
    }
    return events;
  }
  // The receiver's lines about a tone that stands out, and about one that is taken as the first of a pair.
  static constexpr const char* kFirst17 = "I0   ====> @ g_first index \n";
  static constexpr const char* kFirst19 = "I0 @ g_first index (reverse)\n";
  static std::string Found17(int buffer, const Samples& block) {
    const Levels levels = LevelsOf(block);
    return Text("I0 [%d] %0.4f s %.1Lf, %.1Lf\n", buffer, BufferSeconds(buffer), levels.at17000, levels.at19000);
  }
  static std::string Found19(int buffer, const Samples& block) {
    const Levels levels = LevelsOf(block);
    return Text("I0 (ruvo_19k)[%d] %0.4f s %.1Lf, %.1Lf\n", buffer, BufferSeconds(buffer), levels.at17000,
                levels.at19000);
  }

  // What the recording left in its two files; ends the dump.
  std::string DumpedAudio() {
    CSingleton<CDebugDump>::GetInstance()->Stop();
    return DumpFiles::Audio();
  }
  std::string DumpedResults() {
    CSingleton<CDebugDump>::GetInstance()->Stop();
    return DumpFiles::Results();
  }

  // An ambience of exactly 4 at every frequency: a tone needs 200.
  const Samples quiet = Click(4);
  const DumpFiles dumpFiles;
  world::World world;
  // Its callbacks show up in the journal beside the calls of the platform.
  OrvexReceiver receiver{OrvexReceiverCallbacks{OnEndOfCalculation, OnEndOfAmbientNoise, OnAbnormalStatus, this}};

private:
  static void OnEndOfCalculation(void* context) { TestOf(context).world.Call("end of calculation"); }
  static void OnEndOfAmbientNoise(void* context) { TestOf(context).world.Call("end of ambient noise"); }
  static void OnAbnormalStatus(void* context) { TestOf(context).world.Call("abnormal status"); }
  static ReceiverTest& TestOf(void* context) { return *static_cast<ReceiverTest*>(context); }
};

}  // namespace orvex::test
