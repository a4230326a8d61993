// The cards of a room as sound devices of libasound, which the daemon loads: PCMs of the type "orvexcard" with the
// room's file and "reference", "delayed" or "microphone".
#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <exception>
#include <memory>
#include <string>

#include "pipewire/room_cards.h"

namespace orvex::integration {
namespace {

constexpr unsigned kCardChannels = 2;
constexpr unsigned kCardFrameBytes = kCardChannels * sizeof(std::int16_t);

// A loudspeaker at some distance, and the largest amplitude of the microphone's noise.
constexpr double kLoudness = 0.3;
constexpr double kNoise = 0.004 * INT16_MAX;

// The same at each reading of a tick: libasound reads what a program has not taken yet once more.
double NoiseAt(std::int64_t tick) {
  auto bits = static_cast<std::uint64_t>(tick) * 0x9E3779B97F4A7C15U;
  bits = (bits ^ (bits >> 31U)) * 0xBF58476D1CE4E5B9U;
  return kNoise * (static_cast<double>(bits >> 32U) / 0x1p31 - 1.0);
}

// One open handle. libasound's lock of the handle guards it.
class CardPcm {
public:
  CardPcm(const std::string& file, const std::string& role)
      : m_Cards(file),
        m_IsMicrophone(role == "microphone"),
        m_Card(m_IsMicrophone ? m_Cards->microphone : (role == "delayed" ? m_Cards->delayed : m_Cards->reference)) {}
  ~CardPcm() {
    if (m_Io.poll_fd > 0) {
      ::close(m_Io.poll_fd);
    }
  }
  CardPcm(const CardPcm&) = delete;
  CardPcm& operator=(const CardPcm&) = delete;

  int Create(const char* name, snd_pcm_stream_t direction, int mode);
  int SetConstraints();
  snd_pcm_t* GetPcm() const { return m_Io.pcm; }

private:
  static CardPcm& Of(snd_pcm_ioplug_t* io) { return *static_cast<CardPcm*>(io->private_data); }
  static snd_pcm_ioplug_callback_t MakeCallbacks();
  std::int64_t Position() const;
  std::int64_t FramesOfProgram() const { return static_cast<std::int64_t>(m_Io.appl_ptr); }
  snd_pcm_sframes_t Pointer() const;
  snd_pcm_sframes_t Transfer(const snd_pcm_channel_area_t& area, snd_pcm_uframes_t offset,
                             snd_pcm_uframes_t count) const;
  std::int16_t Hear(std::int64_t tick) const;
  double HearCard(const RoomCard& card, double timeNs) const;

  const SharedRoomCards m_Cards;
  const bool m_IsMicrophone;
  RoomCard& m_Card;
  snd_pcm_ioplug_t m_Io{};
  bool m_IsRunning = false;
  std::int64_t m_StartTick = 0;
};

snd_pcm_ioplug_callback_t CardPcm::MakeCallbacks() {
  snd_pcm_ioplug_callback_t callbacks{};
  callbacks.start = [](snd_pcm_ioplug_t* io) {
    CardPcm& card = Of(io);
    card.m_StartTick = std::llround(card.m_Card.TickAt(MonotonicNs()));
    card.m_Card.Start(card.m_StartTick);
    card.m_IsRunning = true;
    return 0;
  };
  callbacks.stop = [](snd_pcm_ioplug_t* io) {
    Of(io).m_IsRunning = false;
    return 0;
  };
  callbacks.prepare = callbacks.stop;
  callbacks.pointer = [](snd_pcm_ioplug_t* io) { return Of(io).Pointer(); };
  callbacks.transfer = [](snd_pcm_ioplug_t* io, const snd_pcm_channel_area_t* areas, snd_pcm_uframes_t offset,
                          snd_pcm_uframes_t count) { return Of(io).Transfer(areas[0], offset, count); };
  callbacks.close = [](snd_pcm_ioplug_t* io) {
    delete &Of(io);
    return 0;
  };
  return callbacks;
}

int CardPcm::Create(const char* name, snd_pcm_stream_t direction, int mode) {
  static const snd_pcm_ioplug_callback_t callbacks = MakeCallbacks();
  if ((direction == SND_PCM_STREAM_CAPTURE) != m_IsMicrophone) {
    return -ENOENT;
  }
  // The daemon has timers of its own; a handle must have something to wait for.
  m_Io.poll_fd = ::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
  if (m_Io.poll_fd < 0) {
    return -errno;
  }
  m_Io.version = SND_PCM_IOPLUG_VERSION;
  m_Io.name = "Card in a room";
  m_Io.flags = SND_PCM_IOPLUG_FLAG_MONOTONIC;
  m_Io.poll_events = POLLIN;
  m_Io.callback = &callbacks;
  m_Io.private_data = this;
  return snd_pcm_ioplug_create(&m_Io, name, direction, mode);
}

int CardPcm::SetConstraints() {
  struct Constraint {
    int parameter;
    unsigned minimum;
    unsigned maximum;
  };
  constexpr std::array<Constraint, 6> kConstraints{{
      {SND_PCM_IOPLUG_HW_ACCESS, SND_PCM_ACCESS_MMAP_INTERLEAVED, SND_PCM_ACCESS_RW_INTERLEAVED},
      {SND_PCM_IOPLUG_HW_CHANNELS, kCardChannels, kCardChannels},
      {SND_PCM_IOPLUG_HW_RATE, RoomCard::kRateHz, RoomCard::kRateHz},
      {SND_PCM_IOPLUG_HW_PERIOD_BYTES, 64 * kCardFrameBytes, 8192 * kCardFrameBytes},
      {SND_PCM_IOPLUG_HW_BUFFER_BYTES, 256 * kCardFrameBytes, 32768 * kCardFrameBytes},
      {SND_PCM_IOPLUG_HW_PERIODS, 2, 512},
  }};
  for (const Constraint& constraint : kConstraints) {
    const bool isAccess = constraint.parameter == SND_PCM_IOPLUG_HW_ACCESS;
    const unsigned both[] = {constraint.minimum, constraint.maximum};
    const int result =
        isAccess ? snd_pcm_ioplug_set_param_list(&m_Io, constraint.parameter, 2, both)
                 : snd_pcm_ioplug_set_param_minmax(&m_Io, constraint.parameter, constraint.minimum, constraint.maximum);
    if (result < 0) {
      return result;
    }
  }
  const unsigned format = SND_PCM_FORMAT_S16_LE;
  return snd_pcm_ioplug_set_param_list(&m_Io, SND_PCM_IOPLUG_HW_FORMAT, 1, &format);
}

// Frames since the start.
std::int64_t CardPcm::Position() const {
  return m_IsRunning ? static_cast<std::int64_t>(m_Card.TickAt(MonotonicNs())) - m_StartTick : 0;
}

// -EPIPE: the program was late.
snd_pcm_sframes_t CardPcm::Pointer() const {
  const std::int64_t position = std::max<std::int64_t>(0, Position());
  const std::int64_t ahead = m_IsMicrophone ? position - FramesOfProgram() : FramesOfProgram() - position;
  const bool isLate = m_IsMicrophone ? ahead > static_cast<std::int64_t>(m_Io.buffer_size) : ahead < 0;
  if (m_IsRunning && isLate) {
    return -EPIPE;
  }
  return m_Io.buffer_size == 0 ? 0 : position % static_cast<std::int64_t>(m_Io.buffer_size);
}

// What is written before the start is played as silence: it is not known yet when.
snd_pcm_sframes_t CardPcm::Transfer(const snd_pcm_channel_area_t& area, snd_pcm_uframes_t offset,
                                    snd_pcm_uframes_t count) const {
  auto* const samples =
      reinterpret_cast<std::int16_t*>(static_cast<std::uint8_t*>(area.addr) + (area.first + area.step * offset) / 8);
  const std::int64_t tick = m_StartTick + FramesOfProgram();
  if (m_IsMicrophone) {
    for (snd_pcm_uframes_t n = 0; n < count; ++n) {
      const std::int16_t heard = Hear(tick + static_cast<std::int64_t>(n));
      samples[n * kCardChannels] = heard;
      samples[n * kCardChannels + 1] = heard;
    }
  } else if (m_IsRunning) {
    m_Card.Play(tick, samples, kCardChannels, count);
  }
  return static_cast<snd_pcm_sframes_t>(count);
}

std::int16_t CardPcm::Hear(std::int64_t tick) const {
  const double timeNs = m_Card.NsOf(static_cast<double>(tick));
  const double level = HearCard(m_Cards->reference, timeNs) + HearCard(m_Cards->delayed, timeNs) + NoiseAt(tick);
  return static_cast<std::int16_t>(std::lround(std::clamp<double>(level, -INT16_MAX, INT16_MAX)));
}

double CardPcm::HearCard(const RoomCard& card, double timeNs) const {
  return kLoudness * card.GetLevel(card.TickAt(std::llround(timeNs - card.GetWayMs() * 1e6)));
}

// The text of `key`.
std::string TextOf(snd_config_t* config, const char* key) {
  snd_config_t* entry = nullptr;
  const char* text = "";
  if (snd_config_search(config, key, &entry) >= 0) {
    snd_config_get_string(entry, &text);
  }
  return text;
}

int OpenCard(snd_pcm_t** pcm, const char* name, snd_config_t* config, snd_pcm_stream_t direction, int mode) {
  try {
    auto card = std::make_unique<CardPcm>(TextOf(config, "room"), TextOf(config, "card"));
    if (const int result = card->Create(name, direction, mode); result < 0) {
      return result;
    }
    CardPcm* const owned = card.release();
    if (const int result = owned->SetConstraints(); result < 0) {
      snd_pcm_close(owned->GetPcm());
      return result;
    }
    *pcm = owned->GetPcm();
    return 0;
  } catch (const std::exception& problem) {
    SNDERR("%s", problem.what());
    return -EIO;
  }
}

}  // namespace
}  // namespace orvex::integration

extern "C" {

SND_PCM_PLUGIN_DEFINE_FUNC(orvexcard) {
  static_cast<void>(root);
  return orvex::integration::OpenCard(pcmp, name, conf, stream, mode);
}

SND_PCM_PLUGIN_SYMBOL(orvexcard)

}  // extern "C"
