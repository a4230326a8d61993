// What may stand in a journal is known with its level, buffer and threads, and nothing else is.
#include "world/runs/listed_lines.h"

#include <gtest/gtest.h>

namespace {

using orvex::runs::Objection;
using orvex::world::Entry;

std::string ObjectionTo(const std::string& thread, const std::string& text, const std::string& function = "") {
  return Objection(Entry{{}, thread, text, "", function});
}

TEST(ListedLines, OtherTextsLevelsAndBuffersAreObjectedTo) {
  EXPECT_EQ(ObjectionTo("main", "I0 Orvex Service Create!"), "");
  EXPECT_NE(ObjectionTo("main", "E0 Orvex Service Create!"), "");
  EXPECT_NE(ObjectionTo("main", "I2 Orvex Service Create!"), "");
  EXPECT_NE(ObjectionTo("main", "I0 Orvex Service Create"), "");
  EXPECT_EQ(ObjectionTo("main", "I0 "), "");
  EXPECT_EQ(ObjectionTo("main", "I0 17 / 1.0 2.0 3.0 4.0 / inf -nan / 1.0 2.0 3.0 4.0"), "");
  EXPECT_NE(ObjectionTo("main", "I0 17 / 1.0 2.0 3.0 4.0 / inf -nan / 1.0 2.0 3.0"), "");
  EXPECT_NE(ObjectionTo("main", "MALFORMED x"), "");
}

TEST(ListedLines, LinesOnOtherThreadsThanTheirFunctionsAreObjectedTo) {
  EXPECT_NE(ObjectionTo("worker", "I0 Orvex Service Create!", "t_OnCreate"), "");
  EXPECT_EQ(ObjectionTo("worker", "I0 ", "m_LoadWaveFile"), "");
  EXPECT_NE(ObjectionTo("main", "I0 ", "m_LoadWaveFile"), "");
  EXPECT_NE(ObjectionTo("delivery", "I0 ", "m_LoadWaveFile"), "");
  EXPECT_EQ(ObjectionTo("main", "E2 already null", "DebugDump"), "");
  EXPECT_EQ(ObjectionTo("delivery", "E2 already null", "DebugDump"), "");
}

TEST(ListedLines, OtherCallsAndCallsOnOtherThreadsAreObjectedTo) {
  EXPECT_EQ(ObjectionTo("main", "> ui_app_exit()"), "");
  EXPECT_NE(ObjectionTo("delivery", "> ui_app_exit()"), "");
  EXPECT_NE(ObjectionTo("main", "> snd_pcm_drain() = 0"), "");
  EXPECT_NE(ObjectionTo("delivery", "> bt_hid_unset_audio_data_receive_cb() = 0"), "");
}

}  // namespace
