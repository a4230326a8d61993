// The ALSA calls of the service in virtual time. A test can choose the answer of each.
#include <alsa/asoundlib.h>

#include <cerrno>
#include <cstring>

#include "world/world.h"

using orvex::world::PcmDevice;
using orvex::world::Quoted;
using orvex::world::Time;
using orvex::world::World;

// The parameter blocks hold nothing: the device knows what it makes of a request.
struct _snd_pcm_hw_params {
  char unused;
};
struct _snd_pcm_sw_params {
  PcmDevice::Thresholds thresholds;
};

namespace {

constexpr long kChannels = 2;
constexpr long kFrameBytes = 4;

// Adds the call to the journal and gives its result. A chosen failure stands in place of `work`; with a chosen success
// `work` is done all the same.
template <class Work>
long Answer(const char* function, const std::string& arguments, Work work) {
  World& world = World::Current();
  const auto answer = world.answers.Take(function);
  const long worked = answer.value_or(0) < 0 ? 0 : static_cast<long>(work());
  const long result = answer.value_or(worked);
  world.Call(std::string(function) + "(" + arguments + ") = " + std::to_string(result));
  return result;
}

int Step(const char* function, const std::string& arguments) {
  return static_cast<int>(Answer(function, arguments, [] { return 0; }));
}

PcmDevice& Device() {
  return *World::Current().pcm;
}

int Configured() {
  return Device().IsConfigured() ? 0 : -EIO;
}

}  // namespace

int snd_pcm_open(snd_pcm_t** pcm, const char* name, snd_pcm_stream_t stream, int mode) {
  const std::string arguments =
      Quoted(name) + ", " + (stream == SND_PCM_STREAM_PLAYBACK ? "playback" : "capture") + ", " + std::to_string(mode);
  return static_cast<int>(Answer("snd_pcm_open", arguments, [pcm] {
    World& world = World::Current();
    if (world.pcm != nullptr) {
      return -EBUSY;
    }
    world.pcm = std::make_unique<PcmDevice>(
        world.scheduler, world.pcmLimits,
        [&world](Time start, const std::int16_t* stereo, std::size_t frames) {
          if (world.room != nullptr) {
            world.room->Play(start, stereo, frames);
          }
        },
        [&world](Time from) {
          if (world.room != nullptr) {
            world.room->CutPlayback(from);
          }
        });
    *pcm = reinterpret_cast<snd_pcm_t*>(world.pcm.get());
    return 0;
  }));
}

int snd_pcm_close(snd_pcm_t* /*pcm*/) {
  World::Current().pcm.reset();
  return Step("snd_pcm_close", "");
}

int snd_pcm_drop(snd_pcm_t* /*pcm*/) {
  return static_cast<int>(Answer("snd_pcm_drop", "", [] { return Device().Drop(); }));
}

int snd_pcm_prepare(snd_pcm_t* /*pcm*/) {
  return static_cast<int>(Answer("snd_pcm_prepare", "", [] { return Device().Prepare(); }));
}

snd_pcm_state_t snd_pcm_state(snd_pcm_t* /*pcm*/) {
  return Device().State();
}

ssize_t snd_pcm_frames_to_bytes(snd_pcm_t* /*pcm*/, snd_pcm_sframes_t frames) {
  return Answer("snd_pcm_frames_to_bytes", std::to_string(frames),
                [frames]() -> long { return Device().IsConfigured() ? frames * kFrameBytes : -EIO; });
}

// A scripted count is written, and no more; a scripted error also puts the device into the state that goes with it.
snd_pcm_sframes_t snd_pcm_writei(snd_pcm_t* /*pcm*/, const void* buffer, snd_pcm_uframes_t size) {
  World& world = World::Current();
  const auto answer = world.answers.Take("snd_pcm_writei");
  snd_pcm_sframes_t result = answer.value_or(0);
  if (result == -EPIPE) {
    Device().Fail(SND_PCM_STATE_XRUN);
  } else if (result == -ESTRPIPE) {
    Device().Fail(SND_PCM_STATE_SUSPENDED);
  } else if (result == -ENODEV) {
    Device().Fail(SND_PCM_STATE_DISCONNECTED);
  } else if (!answer.has_value() || result > 0) {
    result = Device().Write(buffer, answer.has_value() ? static_cast<snd_pcm_uframes_t>(result) : size);
  }
  if (result > 0) {
    const auto* samples = static_cast<const std::int16_t*>(buffer);
    world.samplesTaken.insert(world.samplesTaken.end(), samples, samples + result * kChannels);
  }
  world.Call("snd_pcm_writei(" + std::to_string(size) + ") = " + std::to_string(result));
  return result;
}

int snd_pcm_wait(snd_pcm_t* /*pcm*/, int timeout) {
  return static_cast<int>(
      Answer("snd_pcm_wait", std::to_string(timeout), [timeout] { return Device().Wait(timeout); }));
}

int snd_pcm_resume(snd_pcm_t* /*pcm*/) {
  return static_cast<int>(Answer("snd_pcm_resume", "", [] { return Device().Resume(); }));
}

// A recovery that succeeds, also one that was told to, leaves the device prepared.
int snd_pcm_recover(snd_pcm_t* /*pcm*/, int err, int silent) {
  const std::string arguments = std::to_string(err) + ", " + std::to_string(silent);
  const int result = static_cast<int>(Answer("snd_pcm_recover", arguments, [err]() -> int {
    return err == -EPIPE || err == -ESTRPIPE ? Device().Prepare() : err == -EINTR ? 0 : err;
  }));
  if (result >= 0 && err != -EINTR) {
    static_cast<void>(Device().Prepare());
  }
  return result;
}

const char* snd_strerror(int errnum) {
  return std::strerror(-errnum);
}

size_t snd_pcm_hw_params_sizeof(void) {
  return sizeof(_snd_pcm_hw_params);
}
size_t snd_pcm_sw_params_sizeof(void) {
  return sizeof(_snd_pcm_sw_params);
}

int snd_pcm_hw_params_any(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/) {
  return Step("snd_pcm_hw_params_any", "");
}

int snd_pcm_hw_params_set_access(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/, snd_pcm_access_t access) {
  return Step("snd_pcm_hw_params_set_access", std::to_string(access));
}

int snd_pcm_hw_params_set_format(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/, snd_pcm_format_t format) {
  return Step("snd_pcm_hw_params_set_format", std::to_string(format));
}

int snd_pcm_hw_params_set_channels(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/, unsigned int channels) {
  return Step("snd_pcm_hw_params_set_channels", std::to_string(channels));
}

int snd_pcm_hw_params_set_rate(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/, unsigned int rate, int direction) {
  return Step("snd_pcm_hw_params_set_rate", std::to_string(rate) + ", " + std::to_string(direction));
}

int snd_pcm_hw_params_set_buffer_time_near(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/, unsigned int* time,
                                           int* direction) {
  const std::string arguments = std::to_string(*time) + ", " + (direction == nullptr ? "null" : "direction");
  *time = World::Current().pcmLimits.bufferTimeUs;
  return Step("snd_pcm_hw_params_set_buffer_time_near", arguments);
}

int snd_pcm_hw_params_set_period_time_near(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/, unsigned int* time,
                                           int* direction) {
  const std::string arguments = std::to_string(*time) + ", " + (direction == nullptr ? "null" : "direction");
  *time = World::Current().pcmLimits.periodTimeUs;
  return Step("snd_pcm_hw_params_set_period_time_near", arguments);
}

int snd_pcm_hw_params_get_buffer_size(const snd_pcm_hw_params_t* /*params*/, snd_pcm_uframes_t* frames) {
  *frames = World::Current().pcmLimits.bufferFrames;
  return Step("snd_pcm_hw_params_get_buffer_size", "");
}

int snd_pcm_hw_params_get_period_size(const snd_pcm_hw_params_t* /*params*/, snd_pcm_uframes_t* frames,
                                      int* /*direction*/) {
  *frames = World::Current().pcmLimits.periodFrames;
  return Step("snd_pcm_hw_params_get_period_size", "");
}

int snd_pcm_hw_params(snd_pcm_t* /*pcm*/, snd_pcm_hw_params_t* /*params*/) {
  return static_cast<int>(Answer("snd_pcm_hw_params", "", [] {
    Device().Configure();
    return 0;
  }));
}

int snd_pcm_sw_params_current(snd_pcm_t* /*pcm*/, snd_pcm_sw_params_t* params) {
  return static_cast<int>(Answer("snd_pcm_sw_params_current", "", [params] {
    params->thresholds = Device().GetThresholds();
    return Configured();
  }));
}

int snd_pcm_sw_params_set_avail_min(snd_pcm_t* /*pcm*/, snd_pcm_sw_params_t* params, snd_pcm_uframes_t frames) {
  params->thresholds.availMin = frames;
  return Step("snd_pcm_sw_params_set_avail_min", std::to_string(frames));
}

int snd_pcm_sw_params_set_start_threshold(snd_pcm_t* /*pcm*/, snd_pcm_sw_params_t* params, snd_pcm_uframes_t frames) {
  params->thresholds.start = frames;
  return Step("snd_pcm_sw_params_set_start_threshold", std::to_string(frames));
}

int snd_pcm_sw_params_set_stop_threshold(snd_pcm_t* /*pcm*/, snd_pcm_sw_params_t* params, snd_pcm_uframes_t frames) {
  params->thresholds.stop = frames;
  return Step("snd_pcm_sw_params_set_stop_threshold", std::to_string(frames));
}

int snd_pcm_sw_params(snd_pcm_t* /*pcm*/, snd_pcm_sw_params_t* params) {
  return static_cast<int>(Answer("snd_pcm_sw_params", "", [params] {
    Device().SetThresholds(params->thresholds);
    return Configured();
  }));
}
