#include "pc/recorder.h"

#include <algorithm>
#include <cstdint>

namespace orvex::tools {
namespace {

// More than a recording of a calibration has. What a microphone says to have lost must not fill the memory.
constexpr std::uint64_t kLongestGap = 600;  // blocks

}  // namespace

Recorder::Recorder(const std::string& microphone) : m_Name(microphone) {
  try {
    m_Microphone = std::make_unique<pipewire::Microphone>(
        microphone, pipewire::Microphone::Listener{[this] { m_Wake.Post(); }, [this] { m_IsGone = true; }});
  } catch (const pipewire::MicrophoneError& problem) {
    throw MicrophoneProblem(problem.what());
  }
  m_Thread = std::thread([this] { Collect(); });
}

Recorder::~Recorder() {
  Stop();
}

std::size_t Recorder::GetCount() const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Samples.size();
}

VoiceSamples Recorder::Finish() {
  Stop();
  if (m_IsGone) {
    throw MicrophoneProblem("the microphone \"" + m_Name + "\" went away");
  }
  return std::move(m_Samples);
}

void Recorder::Stop() {
  if (m_Thread.joinable()) {
    m_IsEnding = true;
    m_Wake.Post();
    m_Thread.join();
    m_Microphone.reset();
  }
}

void Recorder::Collect() {
  pipewire::VoiceBlock block;
  while (!m_IsEnding) {
    m_Wake.Wait();
    while (m_Microphone->GetBlocks().Take(block)) {
      const std::lock_guard<std::mutex> lock(m_Mutex);
      const std::uint64_t lost = std::min(block.lostBefore, kLongestGap);
      m_Samples.resize(m_Samples.size() + lost * block.samples.size());
      m_Samples.insert(m_Samples.end(), block.samples.begin(), block.samples.end());
    }
  }
}

}  // namespace orvex::tools
