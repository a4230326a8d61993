// The steps of a run as fragments of a golden journal: the blocks that are heard, and the sound that is played.
#include <algorithm>
#include <cstdio>

#include "orvex/platform/remote_voice.h"
#include "world/runs/golden_steps.h"

namespace orvex::runs {

namespace {

constexpr int kFirstAnalysed = 5;
constexpr int kLastAmbient = 35;
// The device takes 4915 frames at once and asks for chunks of 8 periods of 1228 frames.
constexpr int kBufferFrames = 4915;
constexpr int kChunkFrames = 8 * 1228;
constexpr int kFrameBytes = 4;
constexpr double kFramesPerMs = 48.0;

std::string Seconds(int buffers) {
  char text[32];
  std::snprintf(text, sizeof text, "%0.4f", buffers * kVoiceBlockSamples / kVoiceRateHz);
  return text;
}

}  // namespace

RunGolden& RunGolden::Blocks(int first, int last) {
  for (int block = first; block <= last; ++block) {
    Block(block);
  }
  return *this;
}

RunGolden& RunGolden::Block(int block) {
  At(m_DeliveredAtMs(block, m_RecordingMs)).On("delivery").Set("buffer", block);
  Set("index", block - kFirstAnalysed).Set("at", Seconds(block));
  Add(R"(
I0 m_ReceiveBTAudioDataCB
I0 buffer: ${buffer}
)");
  if (block >= kFirstAnalysed) {
    Add("I0 ${index} / {f} {f} {f} {f} / {f} {f} / {f} {f} {f} {f}");
  }
  return *this;
}

RunGolden& RunGolden::LastAmbientBlock() {
  Block(kLastAmbient).Add(R"(
E0 completed ambient noise
I0 m_OnEndAmientNoiseCallback
> SendEvent(10002)
)");
  return *this;
}

RunGolden& RunGolden::FirstTone17(int block) {
  Block(block).Add(R"(
I0 [${buffer}] ${at} s {f}, {f}\n
I0   ====> @ g_first index \n
)");
  return *this;
}

RunGolden& RunGolden::FirstTone19(int block) {
  Block(block).Add(R"(
I0 (ruvo_19k)[${buffer}] ${at} s {f}, {f}\n
I0 @ g_first index (reverse)\n
)");
  return *this;
}

RunGolden& RunGolden::SecondTone19(int block, int first) {
  Block(block).Set("first", first).Set("seconds", Seconds(block - first)).Add(R"(
I0 (ruvo_19k)[${buffer}] ${at} s {f}, {f}\n
I0 @ [RESULT] [${first}] - [${buffer}] : ${seconds} s\n
)");
  return CompletePair();
}

RunGolden& RunGolden::SecondTone17(int block, int first) {
  Block(block).Set("first", first).Set("seconds", Seconds(first - block)).Add(R"(
I0 [${buffer}] ${at} s {f}, {f}\n
I0 (ruvo)   ====> @ [RESULT] [${buffer}] - [${first}] : ${seconds} s\n
)");
  return CompletePair();
}

RunGolden& RunGolden::CompletePair() {
  Add(R"(
E0 completed calculation of delay
I0 m_OnEndCalculationDiffCallback
> SendEvent(10001)
> SendEvent(10007)
)");
  return *this;
}

RunGolden& RunGolden::NoisyTone19(int block, int noises) {
  Block(block).Set("noises", noises).Add(R"(
I0 (ruvo_19k)[${buffer}] ${at} s {f}, {f}\n
I0 ###################################################
I0 noise value is too high/ {f} / ${noises}
)");
  return *this;
}

RunGolden& RunGolden::OpenDevice() {
  On("main").Add(R"(
> snd_pcm_open("hw:0,8", playback, 0) = 0
I0 snd_pcm_open hw:0,8 successed handle {p}
> snd_pcm_hw_params_any() = 0
> snd_pcm_hw_params_set_access(3) = 0
> snd_pcm_hw_params_set_format(2) = 0
> snd_pcm_hw_params_set_channels(2) = 0
> snd_pcm_hw_params_set_rate(48000, 0) = 0
> snd_pcm_hw_params_set_buffer_time_near(102400, null) = 0
> snd_pcm_hw_params_set_period_time_near(25600, null) = 0
> snd_pcm_hw_params_get_buffer_size() = 0
> snd_pcm_hw_params_get_period_size() = 0
I0 buffer time:${bufferUs}, period time:${periodUs}
I0 buffer size:4915, period size:1228
> snd_pcm_hw_params() = 0
I0 InitHwParam ok
> snd_pcm_sw_params_current() = 0
> snd_pcm_sw_params_set_avail_min(1228) = 0
> snd_pcm_sw_params_set_start_threshold(2457) = 0
> snd_pcm_sw_params_set_stop_threshold(4915) = 0
> snd_pcm_sw_params() = 0
I0 InitSwParam ok
> snd_pcm_drop() = 0
> snd_pcm_frames_to_bytes(1) = 4
I0 frame size =  4
)");
  return *this;
}

RunGolden& RunGolden::AskForSound() {
  Event(10002, "I0 ORVEX_PLAY_INAUDIBLE_SOUND").Add(R"(
I0 Start Orvex[2]
I0 start Sound Player
I0 start Player ${}
)");
  return *this;
}

RunGolden& RunGolden::StartSound() {
  AskForSound().OpenDevice().Add("> ecore_thread_run()");
  return *this;
}

RunGolden& RunGolden::Worker() {
  const double startMs = Now();
  On("worker").Set("bytes", m_SoundFrames * kFrameBytes).Add(R"(
I0 m_StartPlay
I0 ${}
> file_location("/usr/apps/com.norvel.tv.orvex-service/res/sound/LR_test_sample_17_19.wav")
I0 buffer length ${bytes}
I0 period size[1228].
E0 framesize = 4, periodsize = 1228, chunkbytes = 39296
)");
  for (int written = 0; written < m_SoundFrames;) {
    const int frames = std::min(kChunkFrames, m_SoundFrames - written);
    Set("offset", written * kFrameBytes).Set("left", (m_SoundFrames - written) * kFrameBytes);
    Set("frames", frames).Set("size", frames * kFrameBytes);
    Add(R"(
D0 playOffset = ${offset}, leftLen = ${left}
D0 playSize = ${size}
)");
    if (written == 0) {
      Add("> snd_pcm_prepare() = 0");
    }
    Add("I0 pcm start writing, buf {p}, frames to write${frames}.");
    written += frames;
    // A write returns when all that was written but one buffer has been played.
    At(startMs + std::max(0, written - kBufferFrames) / kFramesPerMs).Add(R"(
> snd_pcm_writei(${frames}) = ${frames}
I0 write return : ${frames}.
)");
  }
  m_WritesEndMs = Now();
  At(startMs);
  return *this;
}

RunGolden& RunGolden::UntilPlaying(Speaker speaker, Consent consent) {
  return UntilRecording(speaker, consent).Blocks(1, kLastAmbient - 1).LastAmbientBlock().StartSound().Worker();
}

RunGolden& RunGolden::PlayerEnds() {
  On("main").Add(R"(
I0 m_EndPlayerCB
I0 m_OnEndWavPlayCallback
> SendEvent(10001)
> SendEvent(10007)
)");
  return CloseDevice();
}

RunGolden& RunGolden::PlayerIsCancelled() {
  On("main").Add("I0 m_CancelPlayCB");
  CloseDevice().Add("I0 m_OnCancelWavPlayCallback");
  return *this;
}

RunGolden& RunGolden::CloseDevice() {
  Add(R"(
I0 Destroy
> snd_pcm_drop() = 0
I0 Done drop
> snd_pcm_close() = 0
I0 Done close
)");
  return *this;
}

}  // namespace orvex::runs
