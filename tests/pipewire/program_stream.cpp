// A node that the policy takes for a program's stream.
#include "pipewire/program_stream.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <array>

namespace orvex::integration {
namespace {

constexpr char kName[] = "program";

// Where the stream's links lead.
std::vector<std::string> SinksOf(const TestClient& client) {
  const std::string beginning = std::string(kName) + ":";
  std::vector<std::string> sinks;
  for (const std::string& link : client.GetLinks()) {
    if (link.rfind(beginning, 0) == 0) {
      const std::string to = link.substr(link.find(' ') + 1);
      sinks.push_back(to.substr(0, to.find(':')));
    }
  }
  return sinks;
}

}  // namespace

ProgramStream::ProgramStream(TestClient& client, const std::string& target) : m_Client(client) {
  const pipewire::ThreadLoop::Lock lock(m_Client.GetLoop());
  pw_properties* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_NODE_NAME, kName,
                                                PW_KEY_TARGET_OBJECT, target.c_str(), nullptr);
  m_Stream = pw_stream_new(m_Client.GetConnection().GetCore(), kName, properties);
  static const pw_stream_events kNoEvents = [] {
    pw_stream_events events{};
    events.version = PW_VERSION_STREAM_EVENTS;
    return events;
  }();
  pw_stream_add_listener(m_Stream, &m_Hook, &kNoEvents, this);
  std::array<std::uint8_t, 512> bytes{};
  spa_pod_builder builder;
  spa_pod_builder_init(&builder, bytes.data(), bytes.size());
  spa_audio_info_raw format{};
  format.format = SPA_AUDIO_FORMAT_F32;
  format.rate = 48000;
  format.channels = 1;
  format.position[0] = SPA_AUDIO_CHANNEL_MONO;
  const spa_pod* formats[] = {spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format)};
  pw_stream_connect(m_Stream, PW_DIRECTION_OUTPUT, PW_ID_ANY,
                    static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS), formats, 1);
}

ProgramStream::~ProgramStream() {
  const pipewire::ThreadLoop::Lock lock(m_Client.GetLoop());
  spa_hook_remove(&m_Hook);
  pw_stream_destroy(m_Stream);
}

bool ProgramStream::WaitForLinkTo(const std::string& sink) {
  return m_Client.WaitUntil([&] {
    const std::vector<std::string> sinks = SinksOf(m_Client);
    return std::find(sinks.begin(), sinks.end(), sink) != sinks.end();
  });
}

}  // namespace orvex::integration
