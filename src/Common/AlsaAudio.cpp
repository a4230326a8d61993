// Configures the device, writes in chunks and recovers from underruns and suspends.
#include "Common/AlsaAudio.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Util/OrvexLog.h"

namespace {

constexpr char kDeviceName[] = "hw:0,8";
constexpr unsigned int kChannels = 2;
constexpr unsigned int kRateHz = 48000;
constexpr unsigned int kBufferTimeUs = 102400;
constexpr unsigned int kPeriodTimeUs = 25600;
constexpr std::uint32_t kDefaultBufferFrames = 8192;
constexpr std::uint32_t kDefaultPeriodFrames = 2048;
// A chunk is eight times as many frames as a period: 32 bytes for each of the period's 4-byte frames.
constexpr unsigned int kChunkShift = 5;
constexpr int kLoggedFrameBytes = 4;
constexpr int kWaitMs = 1000;
constexpr unsigned int kResumePauseS = 1;

struct FreeDeleter {
  void operator()(std::uint8_t* memory) const { std::free(memory); }
};

}  // namespace

AlsaAudio::~AlsaAudio() {
  Destroy();
}

bool AlsaAudio::Open() {
  if (m_pcmHandle != nullptr) {
    ORVEX_WARNING("alsa device alreay open");
    return true;
  }
  if (snd_pcm_open(&m_pcmHandle, kDeviceName, SND_PCM_STREAM_PLAYBACK, 0) < 0) {
    ORVEX_FAILURE("Assertion failed");
    m_pcmHandle = nullptr;
    return false;
  }
  ORVEX_INFO("snd_pcm_open %s successed handle %p", kDeviceName, static_cast<void*>(m_pcmHandle));
  m_InitHwParam();
  ORVEX_INFO("InitHwParam ok");
  m_InitSwParam();
  ORVEX_INFO("InitSwParam ok");
  static_cast<void>(snd_pcm_drop(m_pcmHandle));
  m_frameBytes = static_cast<std::uint32_t>(snd_pcm_frames_to_bytes(m_pcmHandle, 1));
  ORVEX_INFO("frame size =  %d", static_cast<int>(m_frameBytes));
  return true;
}

void AlsaAudio::m_InitHwParam() {
  snd_pcm_hw_params_t* params = nullptr;
  snd_pcm_hw_params_alloca(&params);
  unsigned int bufferTimeUs = kBufferTimeUs;
  unsigned int periodTimeUs = kPeriodTimeUs;
  snd_pcm_uframes_t bufferFrames = 0;
  snd_pcm_uframes_t periodFrames = 0;
  bool accepted = snd_pcm_hw_params_any(m_pcmHandle, params) >= 0 &&
                  snd_pcm_hw_params_set_access(m_pcmHandle, params, SND_PCM_ACCESS_RW_INTERLEAVED) >= 0 &&
                  snd_pcm_hw_params_set_format(m_pcmHandle, params, SND_PCM_FORMAT_S16_LE) >= 0 &&
                  snd_pcm_hw_params_set_channels(m_pcmHandle, params, kChannels) >= 0 &&
                  snd_pcm_hw_params_set_rate(m_pcmHandle, params, kRateHz, 0) >= 0 &&
                  snd_pcm_hw_params_set_buffer_time_near(m_pcmHandle, params, &bufferTimeUs, nullptr) == 0 &&
                  snd_pcm_hw_params_set_period_time_near(m_pcmHandle, params, &periodTimeUs, nullptr) == 0 &&
                  snd_pcm_hw_params_get_buffer_size(params, &bufferFrames) >= 0;
  if (accepted) {
    m_bufferSize = static_cast<std::uint32_t>(bufferFrames);
    accepted = snd_pcm_hw_params_get_period_size(params, &periodFrames, nullptr) >= 0;
  }
  if (!accepted) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  m_periodSize = static_cast<std::uint32_t>(periodFrames);
  ORVEX_INFO("buffer time:%u, period time:%u", bufferTimeUs, periodTimeUs);
  ORVEX_INFO("buffer size:%lu, period size:%lu", bufferFrames, periodFrames);
  if (m_bufferSize == 0) {
    m_bufferSize = kDefaultBufferFrames;
  }
  if (m_periodSize == 0) {
    m_periodSize = kDefaultPeriodFrames;
  }
  m_chunkSize = m_periodSize;
  const int result = snd_pcm_hw_params(m_pcmHandle, params);
  if (result < 0) {
    ORVEX_FAILURE("snd_pcm_hw_params err: %s", snd_strerror(result));
    ORVEX_FAILURE("Assertion failed");
  }
}

void AlsaAudio::m_InitSwParam() {
  snd_pcm_sw_params_t* params = nullptr;
  snd_pcm_sw_params_alloca(&params);
  const bool installed = snd_pcm_sw_params_current(m_pcmHandle, params) >= 0 &&
                         snd_pcm_sw_params_set_avail_min(m_pcmHandle, params, m_periodSize) >= 0 &&
                         snd_pcm_sw_params_set_start_threshold(m_pcmHandle, params, m_bufferSize >> 1) >= 0 &&
                         snd_pcm_sw_params_set_stop_threshold(m_pcmHandle, params, m_bufferSize) >= 0 &&
                         snd_pcm_sw_params(m_pcmHandle, params) >= 0;
  if (!installed) {
    ORVEX_FAILURE("Assertion failed");
  }
}

void AlsaAudio::Play(const std::uint8_t* data, std::uint32_t length) {
  const std::uint32_t chunkBytes = m_chunkSize << kChunkShift;
  ORVEX_INFO("period size[%d].", static_cast<int>(m_chunkSize));
  ORVEX_MILESTONE("framesize = %d, periodsize = %d, chunkbytes = %d", kLoggedFrameBytes, static_cast<int>(m_chunkSize),
                  static_cast<int>(chunkBytes));
  if (chunkBytes == 0) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  const std::unique_ptr<std::uint8_t, FreeDeleter> chunk(static_cast<std::uint8_t*>(std::malloc(chunkBytes)));
  if (chunk == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  std::uint32_t playOffset = 0;
  std::uint32_t left = length;
  do {
    ORVEX_DEBUG("playOffset = %d, leftLen = %d", static_cast<int>(playOffset), static_cast<int>(left));
    std::memset(chunk.get(), 0, chunkBytes);
    const std::uint32_t playSize = std::min(chunkBytes, left);
    if (playSize == 0) {
      ORVEX_FAILURE("invalid param. buf = %p size = %d", static_cast<const void*>(data), static_cast<int>(left));
      continue;
    }
    std::memcpy(chunk.get(), data + playOffset, playSize);
    left -= playSize;
    ORVEX_DEBUG("playSize = %d", static_cast<int>(playSize));
    // The position moves before the write, so that a chunk that fails is skipped and not tried again.
    playOffset += playSize;
    m_Play(chunk.get(), playSize);
  } while (length > playOffset);
}

void AlsaAudio::m_Play(const std::uint8_t* chunk, std::uint32_t bytes) {
  if (m_pcmHandle == nullptr) {
    ORVEX_FAILURE("alsa device not open");
    return;
  }
  if (snd_pcm_state(m_pcmHandle) == SND_PCM_STATE_SETUP) {
    const int result = snd_pcm_prepare(m_pcmHandle);
    if (result < 0) {
      ORVEX_FAILURE("Prepare error: %s", snd_strerror(result));
      return;
    }
  }
  const std::uint32_t frames = m_frameBytes == 0 ? 0 : bytes / m_frameBytes;
  ORVEX_INFO("pcm start writing, buf %p, frames to write%d.", static_cast<const void*>(chunk),
             static_cast<int>(frames));
  if (m_frameBytes > bytes) {
    return;
  }
  const long error = m_WriteFrames(chunk, frames);
  if (error < 0) {
    m_HandleWriteError(error);
  }
}

// Writes until all frames are taken (0) or the device reports an error other than "not now" (that error).
long AlsaAudio::m_WriteFrames(const std::uint8_t* position, std::uint32_t frames) {
  for (;;) {
    const snd_pcm_sframes_t written = snd_pcm_writei(m_pcmHandle, position, frames);
    ORVEX_INFO("write return : %d.", static_cast<int>(written));
    if (written == -EAGAIN) {
      ORVEX_FAILURE("write wait : read_size:%d, cnt:%d", static_cast<int>(frames), static_cast<int>(written));
      static_cast<void>(snd_pcm_wait(m_pcmHandle, kWaitMs));
    } else if (written < 0) {
      ORVEX_FAILURE("write error: read_size:%d, cnt:%d, why:%s", static_cast<int>(frames), static_cast<int>(written),
                    snd_strerror(static_cast<int>(written)));
      return written;
    } else {
      frames -= static_cast<std::uint32_t>(written);
      position += m_frameBytes * static_cast<std::uint32_t>(written);
    }
    if (frames == 0) {
      return 0;
    }
  }
}

// The rest of the chunk is lost either way; a device that cannot be recovered is dropped and prepared anew for the
// next.
void AlsaAudio::m_HandleWriteError(long error) {
  if (!m_Recover(error)) {
    ORVEX_FAILURE("write error: drop...");
    static_cast<void>(snd_pcm_drop(m_pcmHandle));
  }
}

bool AlsaAudio::m_Recover(long error) {
  if (error == -EPIPE) {
    ORVEX_FAILURE("under run. state[%d]", static_cast<int>(snd_pcm_state(m_pcmHandle)));
    return snd_pcm_recover(m_pcmHandle, -EPIPE, 0) >= 0;
  }
  if (error == -ESTRPIPE) {
    int result = snd_pcm_resume(m_pcmHandle);
    while (result == -EAGAIN) {
      sleep(kResumePauseS);
      result = snd_pcm_resume(m_pcmHandle);
    }
    return result >= 0 || snd_pcm_recover(m_pcmHandle, result, 0) >= 0;
  }
  return false;
}

void AlsaAudio::Destroy() {
  ORVEX_INFO("Destroy");
  if (m_pcmHandle == nullptr) {
    ORVEX_WARNING("alsa device not open");
    return;
  }
  if (snd_pcm_drop(m_pcmHandle) < 0) {
    ORVEX_FAILURE("snd_pcm_drop failed");
  }
  ORVEX_INFO("Done drop");
  if (snd_pcm_close(m_pcmHandle) < 0) {
    ORVEX_FAILURE("snd_pcm_close failed");
  }
  ORVEX_INFO("Done close");
  m_pcmHandle = nullptr;
  m_frameBytes = 0;
  m_chunkSize = 0;
}
