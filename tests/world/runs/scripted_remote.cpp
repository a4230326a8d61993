// A remote control that hears what a test says.
#include "world/runs/scripted_remote.h"

#include <cmath>

#include "support/voice_blocks.h"

namespace orvex::runs {

namespace {

constexpr double kToneAmplitude = 5000;
constexpr char kStartCommand[] = "bt_hid_send_rc_command(null, 05 00, 2) = 0";

const test::Samples& SamplesOf(Heard heard) {
  static const std::map<Heard, test::Samples> kSamples = {
      {Heard::kAmbient, test::Ambient()},
      {Heard::k17kHz, test::Tone(17000, kToneAmplitude)},
      {Heard::k19kHz, test::Tone(19000, kToneAmplitude)},
      {Heard::kWeak19kHz, test::Tone(19000, kToneAmplitude / 2)},
      {Heard::kNoisy19kHz, test::NoisyTone19(kToneAmplitude)},
  };
  return kSamples.at(heard);
}

}  // namespace

ScriptedRemote::ScriptedRemote(world::World& world) : m_World(world) {
  m_World.onCall = [this](const std::string& text) {
    if (text == kStartCommand) {
      ++m_Recording;
      Schedule(m_World.scheduler.Now(), 1);
    }
  };
}

ScriptedRemote::~ScriptedRemote() {
  m_World.onCall = nullptr;
}

void ScriptedRemote::HearThreeBuffersLate() {
  Hear(50, Heard::k17kHz);
  Hear(53, Heard::k19kHz);
}

void ScriptedRemote::DelayFrom(int block, double milliseconds) {
  m_DelayedFrom = block;
  m_DelayMs = milliseconds;
}

double ScriptedRemote::DeliveredAtMs(int block, double startMs) const {
  return startMs + block * kVoiceBlockMs + kLatencyMs + (block >= m_DelayedFrom ? m_DelayMs : 0.0);
}

void ScriptedRemote::Schedule(world::Time start, int block) {
  if (block > m_LastBlock) {
    return;
  }
  const world::Time due = start + world::Time(std::llround(DeliveredAtMs(block) * 1e6));
  m_World.scheduler.At(
      due, world::Lane::kElsewhere,
      [this, start, block, recording = m_Recording] {
        if (m_World.voiceSending && recording == m_Recording) {
          Deliver(start, block);
        }
      },
      "delivery");
}

void ScriptedRemote::Deliver(world::Time start, int block) {
  const auto scripted = m_Script.find(block);
  const Heard heard = scripted == m_Script.end() ? Heard::kAmbient : scripted->second;
  if (heard == Heard::kLost) {
    static_cast<void>(m_World.Deliver(nullptr));
  } else {
    static_cast<void>(m_World.Deliver(SamplesOf(heard)));
  }
  Schedule(start, block + 1);
}

}  // namespace orvex::runs
