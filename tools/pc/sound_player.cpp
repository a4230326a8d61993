#include "pc/sound_player.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "options/errors.h"
#include "testsound/sound_design.h"

namespace orvex::tools {
namespace {

constexpr std::size_t kChannels = 2;
constexpr std::size_t kFrameBytes = kChannels * sizeof(std::int16_t);

pw_properties* PropertiesFor(const std::string& sink) {
  return pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Playback", PW_KEY_MEDIA_ROLE,
                           "Production", PW_KEY_NODE_NAME, "orvex-pc", PW_KEY_NODE_DESCRIPTION, "Orvex",
                           PW_KEY_TARGET_OBJECT, sink.c_str(), "state.restore-props", "false", "state.restore-target",
                           "false", nullptr);
}

std::string ErrorText(int error) {
  return std::string("the test sound cannot be played: ") + std::strerror(error);
}

}  // namespace

struct SoundPlayer::State {
  std::vector<std::int16_t> samples;
  std::function<void()> onChange;
  pw_stream* stream = nullptr;
  spa_hook hook{};
  std::size_t next = 0;  // frame; data thread
  bool hasPlayed = false;
  std::string problem;

  void OnState(pw_stream_state before, pw_stream_state state, const char* error) {
    if (state == PW_STREAM_STATE_ERROR || (state == PW_STREAM_STATE_UNCONNECTED && before > state)) {
      problem = std::string("the test sound cannot be played: ") + (error == nullptr ? "the sink is gone" : error);
    }
    onChange();
  }
  void OnDrained() {
    hasPlayed = true;
    onChange();
  }
  // Data thread.
  void OnCycle() {
    pw_buffer* const buffer = pw_stream_dequeue_buffer(stream);
    if (buffer == nullptr) {
      return;
    }
    spa_data& data = buffer->buffer->datas[0];
    std::size_t room = data.maxsize / kFrameBytes;
    if (buffer->requested > 0) {
      room = std::min<std::size_t>(room, buffer->requested);
    }
    const std::size_t count = data.data == nullptr ? 0 : std::min(room, samples.size() / kChannels - next);
    if (count > 0) {
      std::memcpy(data.data, samples.data() + next * kChannels, count * kFrameBytes);
    }
    next += count;
    data.chunk->offset = 0;
    data.chunk->stride = static_cast<std::int32_t>(kFrameBytes);
    data.chunk->size = static_cast<std::uint32_t>(count * kFrameBytes);
    pw_stream_queue_buffer(stream, buffer);
    if (count == 0) {
      pw_stream_flush(stream, true);
    }
  }
};

SoundPlayer::SoundPlayer(const pipewire::Connection& connection, const std::string& sink,
                         std::vector<std::int16_t> samples, std::function<void()> onChange)
    : m_State(std::make_unique<State>()) {
  m_State->samples = std::move(samples);
  m_State->onChange = std::move(onChange);
  m_State->stream = pw_stream_new(connection.GetCore(), "orvex-pc", PropertiesFor(sink));
  if (m_State->stream == nullptr) {
    throw CommandError(ErrorText(errno));
  }
  static const pw_stream_events kEvents = [] {
    pw_stream_events events{};
    events.version = PW_VERSION_STREAM_EVENTS;
    events.state_changed = [](void* self, pw_stream_state before, pw_stream_state state, const char* error) {
      static_cast<State*>(self)->OnState(before, state, error);
    };
    events.process = [](void* self) { static_cast<State*>(self)->OnCycle(); };
    events.drained = [](void* self) { static_cast<State*>(self)->OnDrained(); };
    return events;
  }();
  pw_stream_add_listener(m_State->stream, &m_State->hook, &kEvents, m_State.get());

  std::array<std::uint8_t, 1024> bytes{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, bytes.data(), bytes.size());
  spa_audio_info_raw format{};
  format.format = SPA_AUDIO_FORMAT_S16_LE;
  format.rate = kSoundRateHz;
  format.channels = kChannels;
  format.position[0] = SPA_AUDIO_CHANNEL_FL;
  format.position[1] = SPA_AUDIO_CHANNEL_FR;
  const spa_pod* parameter = spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format);
  constexpr auto kFlags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                                       PW_STREAM_FLAG_RT_PROCESS | PW_STREAM_FLAG_DONT_RECONNECT);
  const int result = pw_stream_connect(m_State->stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, kFlags, &parameter, 1);
  if (result < 0) {
    spa_hook_remove(&m_State->hook);
    pw_stream_destroy(m_State->stream);
    throw CommandError(ErrorText(-result));
  }
}

SoundPlayer::~SoundPlayer() {
  spa_hook_remove(&m_State->hook);
  pw_stream_destroy(m_State->stream);
}

bool SoundPlayer::HasPlayed() const {
  return m_State->hasPlayed;
}

const std::string& SoundPlayer::GetProblem() const {
  return m_State->problem;
}

}  // namespace orvex::tools
