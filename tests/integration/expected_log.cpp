// The lines of each happening.
#include "integration/expected_log.h"

namespace orvex::integration {

RecordHandling Sent(const std::string& agreed) {
  return {"I defaultdisclaimeragree=" + agreed, true, {"I add event log sync:1"}};
}

RecordHandling Held() {
  return {"I defaultdisclaimeragree=0", false, {}};
}

RecordHandling HeldUnread(int code) {
  return {"F (r=" + std::to_string(code) + ") get defaultdisclaimeragree failed", false, {}};
}

RecordHandling LostWithoutCollector() {
  return {"I defaultdisclaimeragree=1", true, {"F Get[CLogger]instance err"}};
}

RecordHandling Refused(int code) {
  return {"I defaultdisclaimeragree=1",
          true,
          {"I add event log sync:" + std::to_string(code), "F Could not send event log"}};
}

ExpectedLog& ExpectedLog::Add(const Lines& lines) {
  m_Lines.insert(m_Lines.end(), lines.begin(), lines.end());
  return *this;
}

ExpectedLog& ExpectedLog::SetDelay(const std::string& delay) {
  m_Television.delay = delay;
  return *this;
}

ExpectedLog& ExpectedLog::SetRecords(const RecordHandling& records) {
  m_Television.records = records;
  return *this;
}

ExpectedLog& ExpectedLog::SetTermination(const std::string& text) {
  m_Termination = text;
  return *this;
}

ExpectedLog& ExpectedLog::ForgetMute() {
  m_MuteIsForgotten = true;
  return *this;
}

ExpectedLog& ExpectedLog::Record(const std::string& event, const std::string& category, const std::string& value) {
  Add({m_Television.records.asked});
  if (m_Television.records.isTold) {
    Add({"I Service[] Event[" + event + "] Category[" + category + "] Value[" + value + "]"});
  }
  return Add(m_Television.records.answer);
}

ExpectedLog& ExpectedLog::DelayRead() {
  return Add({"E spdif out delay = " + m_Television.delay, "I avoc delay = " + m_Television.delay});
}

ExpectedLog& ExpectedLog::Event(int type, const std::string& name) {
  return Add({"E pEvent.type " + std::to_string(type), "I " + name});
}

ExpectedLog& ExpectedLog::Constructed() {
  return Add({"I SetStatusText value: ", "I m_StatusStr: < > ", "I SetCurrentDelayText value: -1",
              "I m_CurrentSpdifStr: SPDIF Delay Setting : 4294967295", "I SetAudioDealyText value: -1",
              "I m_SyncSpdifStr: After Auto-sync Delay Setting : 4294967295", "I SetDiffTimeText value: -1",
              "I m_DiffStr: Diff Delay Time : ", "I SetElapsedTimeText value: -1",
              "I m_ElapsedTimeStr: Elapsed Time : "});
}

ExpectedLog& ExpectedLog::Created() {
  Add({"I Orvex Service Create!", "I Create",
       std::string("I TV speaker mute status.[") + (m_Television.isMuted ? "1" : "0") + "]"});
  if (m_Television.isMuted) {
    Add({"I TV speaker volume value.[" + m_Television.volume + "]"});
  }
  return Add({"I Orvex Service Create Done"});
}

ExpectedLog& ExpectedLog::SyncStarted() {
  Event(10000, "ORVEX_START_SYNC").Add(m_Television.queries).Add({"I text = " + m_Television.startRecord});
  Record("ORVEXENV", "EV013", m_Television.startRecord);
  if (!m_HasReadDelay) {
    Add({"I [singleton] new instance"});
    m_HasReadDelay = true;
  }
  return DelayRead().Clock();
}

ExpectedLog& ExpectedLog::RecorderAsked() {
  return Event(10004, "ORVEX_START_BT_RECODING").Add({"I Start Orvex[1]", "I start BT Recoder"});
}

ExpectedLog& ExpectedLog::RecorderThread() {
  return Add({"I m_StartBT", "E spdif out delay = " + m_Television.delay,
              "E main out delay = 0, avoc delay = " + m_Television.delay});
}

ExpectedLog& ExpectedLog::Recording() {
  m_Recorder = Worker::kOn;
  Add({"E Start bt audio recorder"});
  if (++m_Recordings == 1) {
    Add({"I [singleton] new instance"});
  }
  const std::string number = std::to_string(m_Recordings);
  return Add({"I CDebugDumpImplFile start",
              "E Temp file name=[/tmp/audio_dump_*_" + number + "][/tmp/audio_result_*_" + number + ".csv]"});
}

ExpectedLog& ExpectedLog::RecorderFailed() {
  m_Recorder = Worker::kFailed;
  return Add({"F fail bt recoding"}).SetTermination("bt_fail");
}

ExpectedLog& ExpectedLog::Playing() {
  m_Player = Worker::kOn;
  return Event(10002, "ORVEX_PLAY_INAUDIBLE_SOUND")
      .Add({"I Start Orvex[2]", "I start Sound Player", "I start Player ", "I snd_pcm_open hw:0,8 successed handle 0x*",
            "I buffer time:*, period time:*", "I buffer size:*, period size:*", "I InitHwParam ok", "I InitSwParam ok",
            "I frame size =  4"});
}

ExpectedLog& ExpectedLog::PlayedToItsEnd() {
  return Add({"I m_EndPlayerCB", "I m_OnEndWavPlayCallback", "I Destroy", "I Done drop", "I Done close"});
}

ExpectedLog& ExpectedLog::SoundWithoutWorker() {
  m_Player = Worker::kFailed;
  return Add({"F Assertion failed"});
}

ExpectedLog& ExpectedLog::SoundStopped() {
  m_Player = Worker::kOff;
  return Add({"I Stop Orvex[2]", "I stop Sound Player", "I cancel_thread"});
}

ExpectedLog& ExpectedLog::EndedWithDifference() {
  Event(10001, "ORVEX_END_SYNC");
  WorkersStopped();
  Add({"I diff time = *\n", "I delay = *", "I after delay = *"});
  m_Result = "pass";
  m_Termination = "done";
  m_Television.delay = "*";
  EndingStored();
  return *this;
}

ExpectedLog& ExpectedLog::EndedWithoutDifference() {
  Event(10001, "ORVEX_END_SYNC");
  WorkersStopped();
  Add({"I diff time = 0.0000\n", "F no_diff_detected!!\n"});
  m_Termination = "diff_fail";
  EndingStored();
  return *this;
}

void ExpectedLog::EndingStored() {
  Add({"E spdif out delay = " + m_Television.delay, "E main out delay = 0, avoc delay = " + m_Television.delay,
       "I CDebugDumpImplFile Stop"});
  EndRecord();
}

void ExpectedLog::EndRecord() {
  const std::string value =
      "{result=" + m_Result + ";delay=" + m_Television.delay + ";du=*;terminate=" + m_Termination + "}";
  DelayRead().Clock().Add({"I text = " + value}).Record("ORVEXSET", "EV012", value);
}

void ExpectedLog::WorkersStopped() {
  Add({"I Stop Orvex[3]", "I stop BT Recoder"});
  switch (m_Recorder) {
    case Worker::kOff:
      Add({"I BT Recoder is not started"});
      break;
    case Worker::kOn:
      Add({"E Stop bt audio"});
      break;
    case Worker::kFailed:
      Add({"F Already ready state!!"});
      break;
  }
  Add({"I stop Sound Player"});
  switch (m_Player) {
    case Worker::kOff:
      Add({"I Sound Player is not started"});
      break;
    case Worker::kOn:
      Add({"I cancel_thread"});
      break;
    case Worker::kFailed:
      Add({"F already thread stop", "I Destroy", "I Done drop", "I Done close"});
      break;
  }
  m_Recorder = Worker::kOff;
  m_Player = Worker::kOff;
}

ExpectedLog& ExpectedLog::OpticalFlagChanged() {
  return Add({"I "}).Exit();
}

ExpectedLog& ExpectedLog::Destroyed() {
  Add({"I Destroy"});
  EndRecord();
  WorkersStopped();
  Add({"I "});
  if (m_Television.isMuted && !m_MuteIsForgotten) {
    Add({"I need to restore volume. original mute value[1]", "I current speaker [" + m_Television.speaker + "]"});
  }
  return m_Television.isMuted ? Add({"I original volume value[" + m_Television.volume + "]"}) : *this;
}

ExpectedLog& ExpectedLog::WorkerCancelled() {
  return Add({"I m_CancelPlayCB", "I Destroy", "I Done drop", "I Done close", "I m_OnCancelWavPlayCallback"});
}

ExpectedLog& ExpectedLog::ConsentGiven(const std::string& agreed) {
  return SetRecords(Sent(agreed)).Add({"I ", "I ", "I defaultdisclaimeragree=" + agreed});
}

ExpectedLog& ExpectedLog::UpToRecording() {
  return Constructed().Created().SyncStarted().RecorderAsked().RecorderThread().Recording();
}

}  // namespace orvex::integration
