// A recording of the microphone that the user has chosen.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "pipewire/client/block_queue.h"

namespace orvex::pipewire {

// Why a microphone cannot be recorded. The result is one of remote_voice.h.
class MicrophoneError : public std::runtime_error {
public:
  MicrophoneError(int result, const std::string& text) : std::runtime_error(text), m_Result(result) {}
  int GetResult() const { return m_Result; }

private:
  int m_Result;
};

// Records from its construction on. It has a connection of its own: what becomes of it touches nothing else.
class Microphone {
public:
  struct Listener {
    std::function<void()> onBlocks;  // real-time thread: GetBlocks() has more
    std::function<void()> onGone;    // thread of the recording: nothing comes any more
  };

  // `node`: its name. Returns when it sends. Throws MicrophoneError.
  Microphone(const std::string& node, Listener listener);
  ~Microphone();
  Microphone(const Microphone&) = delete;
  Microphone& operator=(const Microphone&) = delete;

  // One thread takes the blocks.
  BlockQueue& GetBlocks();

private:
  struct Recording;
  std::unique_ptr<Recording> m_Recording;
};

}  // namespace orvex::pipewire
