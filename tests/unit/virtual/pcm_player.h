// Plays through libasound with the parameters that the service sets.
#pragma once

#include <alsa/asoundlib.h>

#include <cerrno>
#include <cstdint>
#include <iterator>
#include <vector>

namespace orvex::virtual_tv {

class PcmPlayer {
public:
  static constexpr unsigned kRateHz = 48000;

  PcmPlayer() { m_OpenResult = snd_pcm_open(&m_Pcm, "hw:0,8", SND_PCM_STREAM_PLAYBACK, 0); }
  ~PcmPlayer() { Close(); }
  PcmPlayer(const PcmPlayer&) = delete;
  PcmPlayer& operator=(const PcmPlayer&) = delete;

  int OpenResult() const { return m_OpenResult; }
  snd_pcm_t* Pcm() const { return m_Pcm; }
  snd_pcm_uframes_t BufferFrames() const { return m_BufferFrames; }
  snd_pcm_uframes_t PeriodFrames() const { return m_PeriodFrames; }

  void Close() {
    if (m_Pcm != nullptr) {
      snd_pcm_close(m_Pcm);
      m_Pcm = nullptr;
    }
  }

  // The first negative result, else 0. `startThreshold` 0: half a buffer, as the service sets it.
  int Configure(snd_pcm_uframes_t startThreshold = 0) {
    const int hardware = SetHardware();
    return hardware < 0 ? hardware : SetSoftware(startThreshold);
  }

  // Writes all frames, or as far as a write fails: then that result, else their number.
  snd_pcm_sframes_t Write(const std::vector<std::int16_t>& stereo) {
    snd_pcm_sframes_t done = 0;
    return WriteFrom(stereo, done);
  }

  // As Write(), but goes on behind an underrun: a busy machine may be late, which is not what a test looks at.
  snd_pcm_sframes_t WriteThrough(const std::vector<std::int16_t>& stereo) {
    snd_pcm_sframes_t done = 0;
    snd_pcm_sframes_t result = WriteFrom(stereo, done);
    while (result == -EPIPE && snd_pcm_recover(m_Pcm, -EPIPE, 1) == 0) {
      result = WriteFrom(stereo, done);
    }
    return result;
  }

  static std::vector<std::int16_t> Silence(std::size_t frames) { return std::vector<std::int16_t>(2 * frames); }

private:
  snd_pcm_sframes_t WriteFrom(const std::vector<std::int16_t>& stereo, snd_pcm_sframes_t& done) {
    const auto all = static_cast<snd_pcm_sframes_t>(stereo.size() / 2);
    while (done < all) {
      const auto count = static_cast<snd_pcm_uframes_t>(all - done);
      const auto result = snd_pcm_writei(m_Pcm, stereo.data() + 2 * done, count);
      if (result < 0) {
        return result;
      }
      done += result;
    }
    return done;
  }

  int SetHardware() {
    snd_pcm_hw_params_t* params = nullptr;
    snd_pcm_hw_params_alloca(&params);
    unsigned bufferUs = 102400;
    unsigned periodUs = 25600;
    const int results[] = {
        snd_pcm_hw_params_any(m_Pcm, params),
        snd_pcm_hw_params_set_access(m_Pcm, params, SND_PCM_ACCESS_RW_INTERLEAVED),
        snd_pcm_hw_params_set_format(m_Pcm, params, SND_PCM_FORMAT_S16_LE),
        snd_pcm_hw_params_set_channels(m_Pcm, params, 2),
        snd_pcm_hw_params_set_rate(m_Pcm, params, kRateHz, 0),
        snd_pcm_hw_params_set_buffer_time_near(m_Pcm, params, &bufferUs, nullptr),
        snd_pcm_hw_params_set_period_time_near(m_Pcm, params, &periodUs, nullptr),
        snd_pcm_hw_params_get_buffer_size(params, &m_BufferFrames),
        snd_pcm_hw_params_get_period_size(params, &m_PeriodFrames, nullptr),
        snd_pcm_hw_params(m_Pcm, params),
    };
    return FirstFailure(results, std::size(results));
  }

  int SetSoftware(snd_pcm_uframes_t startThreshold) {
    snd_pcm_sw_params_t* params = nullptr;
    snd_pcm_sw_params_alloca(&params);
    const int results[] = {
        snd_pcm_sw_params_current(m_Pcm, params),
        snd_pcm_sw_params_set_avail_min(m_Pcm, params, m_PeriodFrames),
        snd_pcm_sw_params_set_start_threshold(m_Pcm, params, startThreshold == 0 ? m_BufferFrames / 2 : startThreshold),
        snd_pcm_sw_params_set_stop_threshold(m_Pcm, params, m_BufferFrames),
        snd_pcm_sw_params(m_Pcm, params),
    };
    return FirstFailure(results, std::size(results));
  }

  static int FirstFailure(const int* results, std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
      if (results[index] < 0) {
        return results[index];
      }
    }
    return 0;
  }

  snd_pcm_t* m_Pcm = nullptr;
  int m_OpenResult = 0;
  snd_pcm_uframes_t m_BufferFrames = 0;
  snd_pcm_uframes_t m_PeriodFrames = 0;
};

}  // namespace orvex::virtual_tv
