// A loop with a thread of its own, a connection and a stream.
#include "pipewire/client/microphone.h"

#include <chrono>
#include <utility>

#include "orvex/platform/remote_voice.h"
#include "pipewire/client/capture_stream.h"
#include "pipewire/client/connection.h"
#include "pipewire/client/loops.h"
#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {
namespace {

// For a daemon that is busy, and for a microphone that has to be switched on.
constexpr std::chrono::milliseconds kPatience{3000};

}  // namespace

struct Microphone::Recording {
  const std::string node;
  const Listener listener;
  BlockQueue blocks;
  ThreadLoop loop{"orvex-voice"};
  // With the loop locked.
  bool isDaemonLost = false;
  bool isStarted = false;
  std::unique_ptr<Connection> connection;
  std::unique_ptr<CaptureStream> stream;

  Recording(std::string name, Listener listens) : node(std::move(name)), listener(std::move(listens)) {}
  ~Recording() {
    const ThreadLoop::Lock lock(loop);
    stream.reset();
    connection.reset();
  }
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  void Connect();
  void Start();
  void OnChange();
};

void Microphone::Recording::Connect() {
  try {
    connection = std::make_unique<Connection>(loop.Get(), [this] {
      isDaemonLost = true;
      OnChange();
    });
  } catch (const PipeWireError& problem) {
    throw MicrophoneError(kVoiceNoRemote, std::string("no microphone: ") + problem.what());
  }
  bool isComplete = false;
  connection->Sync([&] {
    isComplete = true;
    loop.Notify();
  });
  if (!loop.WaitUntil([&] { return isComplete || isDaemonLost; }, kPatience) || isDaemonLost) {
    connection.reset();
    throw MicrophoneError(kVoiceNoRemote, "no microphone: the PipeWire daemon does not answer");
  }
  if (connection->FindNode(node) == nullptr) {
    throw MicrophoneError(kVoiceNoRemote, "the microphone \"" + node + "\" is not there");
  }
}

void Microphone::Recording::Start() {
  try {
    stream = std::make_unique<CaptureStream>(connection->GetCore(), node, blocks,
                                             CaptureStream::Listener{listener.onBlocks, [this] { OnChange(); }});
  } catch (const PipeWireError& problem) {
    throw MicrophoneError(kVoiceRefused, "the microphone \"" + node + "\" cannot be recorded: " + problem.what());
  }
  const bool isDecided =
      loop.WaitUntil([&] { return stream->IsSending() || stream->HasEnded() || isDaemonLost; }, kPatience);
  if (!isDecided || !stream->IsSending()) {
    throw MicrophoneError(kVoiceRefused, "the microphone \"" + node + "\" cannot be recorded: " +
                                             (isDecided ? stream->GetProblem() : "it does not begin"));
  }
  isStarted = true;
}

// Loop's thread.
void Microphone::Recording::OnChange() {
  loop.Notify();
  const bool isGone = isDaemonLost || (stream && stream->HasEnded());
  if (isStarted && isGone) {
    isStarted = false;
    listener.onGone();
  }
}

Microphone::Microphone(const std::string& node, Listener listener)
    : m_Recording(std::make_unique<Recording>(node, std::move(listener))) {
  const ThreadLoop::Lock lock(m_Recording->loop);
  m_Recording->Connect();
  m_Recording->Start();
}

Microphone::~Microphone() = default;

BlockQueue& Microphone::GetBlocks() {
  return m_Recording->blocks;
}

}  // namespace orvex::pipewire
