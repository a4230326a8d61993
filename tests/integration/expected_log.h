// What main loop and recorder thread log in a run, put together from what happens in it.
//
// Each operation adds the lines of one happening, as patterns of "kind text" (see LogLine), and remembers what later
// lines depend on: which worker runs, whether the speaker was muted, how the run has ended so far.
#pragma once

#include <string>
#include <vector>

namespace orvex::integration {

using Lines = std::vector<std::string>;

// What the log manager says when a record is handed to it.
struct RecordHandling {
  std::string asked;    // answer of the consent
  bool isTold = false;  // the record goes to the collector
  Lines answer;
};

RecordHandling Sent(const std::string& agreed = "1");
RecordHandling Held();
RecordHandling HeldUnread(int code);  // the consent cannot be read
RecordHandling LostWithoutCollector();
RecordHandling Refused(int code);

struct ExpectedTelevision {
  std::string delay = "100";  // of the optical output
  bool isMuted = false;
  std::string volume = "15";
  std::string speaker = "0";
  RecordHandling records = Sent();
  Lines queries{"I type = 1, brandName = Example", "I resolution = 6, frequency = 60", "I source = 1", "I type = 0"};
  std::string startRecord = "{device=Example|1;source=1;videoinfo=tv|6|60;codec=0}";
};

class ExpectedLog {
public:
  explicit ExpectedLog(ExpectedTelevision television = {}) : m_Television(std::move(television)) {}

  ExpectedLog& Constructed();
  ExpectedLog& Created();         // up to the first event
  ExpectedLog& SyncStarted();     // the start record, the base delay
  ExpectedLog& RecorderAsked();   // on the main loop
  ExpectedLog& RecorderThread();  // up to the start command
  ExpectedLog& Recording();       // the remote has accepted it
  ExpectedLog& RecorderFailed();
  ExpectedLog& Playing();
  ExpectedLog& PlayedToItsEnd();
  ExpectedLog& SoundWithoutWorker();   // there is no thread for it
  ExpectedLog& SoundStopped();         // the handler of ORVEX_STOP_INAUDIBLE_SOUND
  ExpectedLog& EndedWithDifference();  // the handler of ORVEX_END_SYNC
  ExpectedLog& EndedWithoutDifference();
  ExpectedLog& OpticalFlagChanged();  // or the running time over: the same line
  ExpectedLog& Event(int type, const std::string& name);
  ExpectedLog& Exit() { return Event(10007, "ORVEX_EXIT"); }
  ExpectedLog& Destroyed();
  ExpectedLog& WorkerCancelled();
  ExpectedLog& ConsentGiven(const std::string& agreed = "1");  // the notification, before what was held is sent

  // Whole stretches of the usual way.
  ExpectedLog& UpToRecording();
  ExpectedLog& UpToPlaying() { return UpToRecording().Playing(); }

  ExpectedLog& Add(const Lines& lines);
  ExpectedLog& Record(const std::string& event, const std::string& category, const std::string& value);
  ExpectedLog& DelayRead();
  ExpectedLog& Clock() { return Add({"I *:*"}); }

  ExpectedLog& SetDelay(const std::string& delay);
  ExpectedLog& SetRecords(const RecordHandling& records);
  ExpectedLog& SetTermination(const std::string& text);
  ExpectedLog& ForgetMute();  // the speaker will not be muted again

  const Lines& GetLines() const { return m_Lines; }
  ExpectedTelevision& GetTelevision() { return m_Television; }

private:
  enum class Worker { kOff, kOn, kFailed };

  void EndRecord();
  void WorkersStopped();
  void EndingStored();

  ExpectedTelevision m_Television;
  Lines m_Lines;
  std::string m_Result = "fail";
  std::string m_Termination = "etc";
  Worker m_Recorder = Worker::kOff;
  Worker m_Player = Worker::kOff;
  bool m_HasReadDelay = false;
  int m_Recordings = 0;
  bool m_MuteIsForgotten = false;
};

}  // namespace orvex::integration
