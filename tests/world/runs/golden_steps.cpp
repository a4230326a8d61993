// The steps of a run as fragments of a golden journal.
#include "golden_steps.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orvex::runs {

namespace {

constexpr int kFirstAnalysed = 5;
constexpr int kLastAmbient = 35;
// The device takes 4915 frames at once and asks for chunks of 8 periods of 1228 frames.
constexpr int kBufferFrames = 4915;
constexpr int kChunkFrames = 8 * 1228;
constexpr int kFrameBytes = 4;
constexpr double kFramesPerMs = 48.0;

constexpr char kConsent[] = R"(
> settings_get_int("db/menu/tessar/homedatacontrol/defaultdisclaimeragree") = 0
I0 defaultdisclaimeragree=${agreed}
)";
constexpr char kStartText[] = "{device=acme|3;source=5;videoinfo=tv|7|60;codec=2}";

std::string Seconds(int buffers) {
  char text[32];
  std::snprintf(text, sizeof text, "%0.4f", buffers * 768 / 46545.0);
  return text;
}

}  // namespace

RunGolden::RunGolden(const ScriptedRemote& remote, int soundFrames) : m_Remote(remote), m_SoundFrames(soundFrames) {
  Set("pid", getpid());
  Set("delay", 100);
  SetNewInstances("");
}

RunGolden& RunGolden::SetNewInstances(const std::string& line) {
  Set("newInstance", line);
  return *this;
}

RunGolden& RunGolden::ProgramStart() {
  On("main").Add(R"(
> tv_get_hdmi_input_count()
> FwEflApplication("org.velta.orvex-service")
I0 SetStatusText value: ${}
I0 m_StatusStr: < > ${}
I0 SetCurrentDelayText value: -1
I0 m_CurrentSpdifStr: SPDIF Delay Setting : 4294967295
I0 SetAudioDealyText value: -1
I0 m_SyncSpdifStr: After Auto-sync Delay Setting : 4294967295
I0 SetDiffTimeText value: -1
I0 m_DiffStr: Diff Delay Time : ${}
I0 SetElapsedTimeText value: -1
I0 m_ElapsedTimeStr: Elapsed Time : ${}
> settings_subscribe("db/menu/tessar/homedatacontrol/defaultdisclaimeragree") = 0
)");
  return *this;
}

RunGolden& RunGolden::Create(Speaker speaker) {
  On("main").Add(R"(
I0 Orvex Service Create!
> watchdog_register(120) = 0
> FwAlarm::Create(60000, forever)
> FwAlarm::SetAlarmCallback()
I0 Create
> ecore_timer_add(10.000000)
> settings_subscribe("db/device-detector-service/optical_change_flag") = 0
> sound_manager_get_device_mute(0) = 0
)");
  Add(speaker == Speaker::kAudible ? "I0 TV speaker mute status.[0]" : R"(
I0 TV speaker mute status.[1]
> sound_manager_get_tv_master_volume() = 0
I0 TV speaker volume value.[15]
> sound_manager_set_tv_master_volume(0) = 0
> sound_manager_set_device_mute(0, false) = 0
)");
  Add(R"(
> SendEvent(10000)
I0 Orvex Service Create Done
)");
  return *this;
}

RunGolden& RunGolden::StartSync(Consent consent) {
  On("main").Add(R"(
E0 pEvent.type 10000
I0 ORVEX_START_SYNC
> tv_get_activity_info_by_source(99)
I0 type = 3, brandName = acme
> tv_create_av_control(1, 0) = 0
> getResolution(2) = 0
I0 resolution = 7, frequency = 60
> tv_create_source_control(1, 0) = 0
> getCurrentSource() = 0
I0 source = 5
> IAudioControl::getInstance() = object
> getSpdifOutCodec() = 0
I0 type = 2
)");
  Record("ORVEXENV", "EV013", kStartText, consent);
  Add(R"(
${newInstance}
> IAudioControl::getInstance() = object
> getSpdifOutDelay() = 0
E0 spdif out delay = ${delay}
> avoc_get_delay(1) = 0
I0 avoc delay = ${delay}
> SendEvent(10004)
I0 ${clock}
)");
  m_StartedMs = Now();
  return *this;
}

RunGolden& RunGolden::StartRecorder() {
  On("main").Add(R"(
E0 pEvent.type 10004
I0 ORVEX_START_BT_RECODING
I0 Start Orvex[1]
I0 start BT Recoder
> pthread_create() = 0
)");
  return *this;
}

RunGolden& RunGolden::SaveDelay() {
  Add(R"(
> IAudioControl::getInstance() = object
> getSpdifOutDelay() = 0
E0 spdif out delay = ${delay}
> avoc_get_delay(1) = 0
E0 main out delay = 0, avoc delay = ${delay}
)");
  return *this;
}

RunGolden& RunGolden::RecorderAsks() {
  On("recorder").Add("I0 m_StartBT");
  return SaveDelay();
}

RunGolden& RunGolden::RecorderRuns() {
  m_RecordingMs = Now();
  RecorderAsks().Add(R"(
> bt_hid_set_audio_data_receive_cb() = 0
> bt_hid_send_rc_command(null, 05 00, 2) = 0
E0 Start bt audio recorder
${newInstance}
I0 CDebugDumpImplFile start
E0 Temp file name=[/tmp/audio_dump_${pid}_{u}][/tmp/audio_result_${pid}_{u}.csv]
)");
  return *this;
}

RunGolden& RunGolden::UntilRecording(Speaker speaker, Consent consent) {
  return ProgramStart().Create(speaker).StartSync(consent).StartRecorder().RecorderRuns();
}

RunGolden& RunGolden::ConsentChanges(Consent consent) {
  On("main").Set("agreed", consent == Consent::kGiven ? 1 : 0).Add("* consent ${agreed}");
  Add(R"(
I0 ${}
I0 ${}
)");
  Add(kConsent);
  return consent == Consent::kGiven ? Send("ORVEXENV", "EV013", kStartText)
                                    : static_cast<RunGolden&>(Add("D0 user doesn't agree default disclaimer!"));
}

RunGolden& RunGolden::Blocks(int first, int last) {
  for (int block = first; block <= last; ++block) {
    Block(block);
  }
  return *this;
}

RunGolden& RunGolden::Block(int block) {
  At(m_Remote.DeliveredAtMs(block, m_RecordingMs)).On("delivery").Set("buffer", block);
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
E0 completed calculation of delay
I0 m_OnEndCalculationDiffCallback
> SendEvent(10001)
> SendEvent(10007)
)");
  return *this;
}

RunGolden& RunGolden::SecondTone17(int block, int first) {
  Block(block).Set("first", first).Set("seconds", Seconds(first - block)).Add(R"(
I0 [${buffer}] ${at} s {f}, {f}\n
I0 (ruvo)   ====> @ [RESULT] [${buffer}] - [${first}] : ${seconds} s\n
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
I0 buffer time:102396, period time:25583
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

RunGolden& RunGolden::StartSound() {
  On("main").Add(R"(
E0 pEvent.type 10002
I0 ORVEX_PLAY_INAUDIBLE_SOUND
I0 Start Orvex[2]
I0 start Sound Player
I0 start Player ${}
)");
  OpenDevice().Add("> ecore_thread_run()");
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
I0 Destroy
> snd_pcm_drop() = 0
I0 Done drop
> snd_pcm_close() = 0
I0 Done close
)");
  return *this;
}

RunGolden& RunGolden::PlayerIsCancelled() {
  On("main").Add(R"(
I0 m_CancelPlayCB
I0 Destroy
> snd_pcm_drop() = 0
I0 Done drop
> snd_pcm_close() = 0
I0 Done close
I0 m_OnCancelWavPlayCallback
)");
  return *this;
}

RunGolden& RunGolden::StopBoth(const Workers& workers) {
  On("main").Add(R"(
I0 Stop Orvex[3]
I0 stop BT Recoder
)");
  Add(workers.recording ? R"(
> pthread_join()
> bt_hid_unset_audio_data_receive_cb() = 0
> bt_hid_rc_stop_sending_voice(null) = 0
E0 Stop bt audio
)"
                        : "I0 BT Recoder is not started");
  Add("I0 stop Sound Player");
  Add(workers.playing ? R"(
I0 cancel_thread
> ecore_thread_cancel()
)"
                      : "I0 Sound Player is not started");
  return *this;
}

RunGolden& RunGolden::AskForRestart(long delayMs) {
  On("main").Set("delay", delayMs).Add(R"(
E0 pEvent.type 10005
I0 ORVEX_RESTART_BT_RECODING
I0 check retry
> IAudioControl::getInstance() = object
> getSpdifOutDelay() = 0
E0 spdif out delay = ${delay}
> avoc_get_delay(1) = 0
I0 avoc delay = ${delay}
)");
  return *this;
}

RunGolden& RunGolden::GrantRestart() {
  On("main").Add(R"(
> SendEvent(10004)
I0 ${clock}
)");
  m_StartedMs = Now();
  return *this;
}

RunGolden& RunGolden::EndSync(const Workers& workers, const std::string& seconds, const EndRecord& record) {
  On("main").Add(R"(
E0 pEvent.type 10001
I0 ORVEX_END_SYNC
)");
  return StopBoth(workers).ApplyDifference(seconds, record);
}

RunGolden& RunGolden::ApplyDifference(const std::string& seconds, const EndRecord& record) {
  Set("seconds", seconds).Set("delay", record.delayMs).Add(R"(I0 diff time = ${seconds}\n)");
  Add(record.terminate == "done" ? R"(
I0 delay = ${delay}
> avoc_set_delay(${delay}, 1) = 0
I0 after delay = ${delay}
)"
                                 : R"(E2 no_diff_detected!!\n)");
  SaveDelay().Add("I0 CDebugDumpImplFile Stop");
  return SendEndRecord(record);
}

RunGolden& RunGolden::Exit() {
  On("main").Add(R"(
E0 pEvent.type 10007
I0 ORVEX_EXIT
> ui_app_exit()
)");
  return *this;
}

RunGolden& RunGolden::SendEndRecord(const EndRecord& record) {
  const auto durationMs = static_cast<long>(std::floor(Now())) - static_cast<long>(std::floor(m_StartedMs));
  Set("delay", record.delayMs).Add(R"(
> IAudioControl::getInstance() = object
> getSpdifOutDelay() = 0
E0 spdif out delay = ${delay}
> avoc_get_delay(1) = 0
I0 avoc delay = ${delay}
I0 ${clock}
)");
  return Record("ORVEXSET", "EV012",
                "{result=" + record.result + ";delay=" + std::to_string(record.delayMs) +
                    ";du=" + std::to_string(durationMs) + ";terminate=" + record.terminate + "}",
                record.consent);
}

RunGolden& RunGolden::Record(const std::string& event, const std::string& category, const std::string& text,
                             Consent consent) {
  Set("text", text).Set("agreed", consent == Consent::kGiven ? 1 : 0).Add("I0 text = ${text}");
  if (consent == Consent::kGiven) {
    return Send(event, category, text);
  }
  Add(kConsent);
  return *this;
}

RunGolden& RunGolden::Send(const std::string& event, const std::string& category, const std::string& text) {
  Set("text", text).Set("event", event).Set("category", category).Add(kConsent);
  Add("I0 Service[] Event[${event}] Category[${category}] Value[${text}]");
  if (!m_HasLogger) {
    Add("> event_log_get_instance() = object");
    m_HasLogger = true;
  }
  Add(R"(
> event_log_add_sync(21_remocon, ${event}, ${category}, ${text}) = 1
I0 add event log sync:1
)");
  return *this;
}

RunGolden& RunGolden::Destroy(const Destruction& destruction) {
  On("main").Add(R"(
I0 Destroy
> settings_unsubscribe("db/device-detector-service/optical_change_flag") = 0
)");
  SendEndRecord(destruction.record).StopBoth(destruction.workers);
  if (destruction.timerRuns) {
    Add("> ecore_timer_del()");
  }
  Add("I0 ${}").Add(destruction.restored).Add(R"(
> FwAlarm::Destroy()
> ~FwAlarm()
)");
  return *this;
}

}  // namespace orvex::runs
