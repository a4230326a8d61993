// The steps of a run as fragments of a golden journal. Every scenario names the steps in the order in which they come.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "world/runs/golden.h"

namespace orvex::runs {

class RunGolden : public Golden {
public:
  // When block `block` of a recording that was accepted at `startMs` is delivered.
  using BlockTime = std::function<double(int block, double startMs)>;
  RunGolden(BlockTime deliveredAtMs, int soundFrames);

  // Patterns in place of the times that only a television in virtual time keeps.
  RunGolden& InRealTime();

  // What the log says where a process-wide object is used for the first time; nothing unless it is set.
  RunGolden& SetNewInstances(const std::string& line);

  enum class Consent { kMissing, kGiven };
  enum class Speaker { kAudible, kMuted };
  // What the destroy step gives back of a speaker that was muted.
  enum class Restored {
    kNothing,           // it was audible
    kVolume,            // the mute is forgotten after the optical flag
    kVolumeOfSelected,  // the speaker is selected: it stays audible
    kVolumeAndMute,     // another output is selected
  };
  enum class Recorder { kNotStarted, kFailed, kRecording };
  // kFailed: its worker could not be started; kEnded: its worker's end function has run.
  enum class Sound { kNotStarted, kFailed, kWritten, kEnded };
  // What m_StopOrvex(3) finds.
  struct Workers {
    Recorder recorder = Recorder::kNotStarted;
    Sound sound = Sound::kNotStarted;
  };
  struct EndRecord {
    std::string result = "fail";
    std::int64_t delayMs = 100;
    std::string terminate = "etc";
    Consent consent = Consent::kMissing;
  };

  // What the application object logs and asks for before main() and in its create step.
  RunGolden& ProgramStart();
  RunGolden& Create(Speaker speaker = Speaker::kAudible);
  // The first event, up to the clock that is kept as the start of the run.
  RunGolden& StartSync(Consent consent = Consent::kMissing);
  // What the main loop logs of every event, the line with the event's name included.
  RunGolden& Event(int type, const std::string& line);
  // The second event, up to what pthread_create() answers to the recorder thread.
  RunGolden& StartRecorder(int answer = 0);
  // The recorder thread up to its start command, then with a remote that has accepted it.
  RunGolden& RecorderAsks();
  RunGolden& RecorderRuns();
  // ProgramStart() to RecorderRuns().
  RunGolden& UntilRecording(Speaker speaker = Speaker::kAudible, Consent consent = Consent::kMissing);

  // A user agrees, or takes it back; agreed: the kept start record goes out.
  RunGolden& ConsentChanges(Consent consent);

  // Blocks without anything to find, each at its time.
  RunGolden& Blocks(int first, int last);
  // One block up to its analysis; what it finds follows with At() at its time and On() the delivery thread.
  RunGolden& Block(int block);
  // Block 35, with which the ambient phase ends.
  RunGolden& LastAmbientBlock();
  RunGolden& FirstTone17(int block);
  RunGolden& FirstTone19(int block);
  // A pair is complete: END_SYNC and EXIT are sent.
  RunGolden& SecondTone19(int block, int first);
  RunGolden& SecondTone17(int block, int first);
  RunGolden& NoisyTone19(int block, int noises);

  // The event that starts the sound, up to the device; then the device and the worker.
  RunGolden& AskForSound();
  RunGolden& OpenDevice();
  RunGolden& StartSound();
  // The worker's load and writes. Ends at WritesEndMs().
  RunGolden& Worker();
  double WritesEndMs() const { return m_WritesEndMs; }
  // ProgramStart() to a sound that plays.
  RunGolden& UntilPlaying(Speaker speaker = Speaker::kAudible, Consent consent = Consent::kMissing);

  // The pool's last function, on the main loop, when the worker has ended by itself or was cancelled.
  RunGolden& PlayerEnds();
  RunGolden& PlayerIsCancelled();

  // The event that asks for a restart, up to the decision; then the granted one's next event and clock.
  RunGolden& AskForRestart(long delayMs);
  RunGolden& GrantRestart();

  // The time limit and the optical flag: EXIT is sent.
  RunGolden& AskForExit();
  // The end of a run: both workers stopped, then the delay set (or no difference), the dump closed, the end record.
  RunGolden& EndSync(const Workers& workers, const std::string& seconds, const EndRecord& record);
  RunGolden& ApplyDifference(const std::string& seconds, const EndRecord& record);
  RunGolden& Exit();
  RunGolden& StopBoth(const Workers& workers);
  RunGolden& StopRecorder(Recorder recorder = Recorder::kRecording);
  RunGolden& StopSound(Sound sound = Sound::kWritten);
  RunGolden& SendEndRecord(const EndRecord& record);

  // The destroy step.
  struct Destruction {
    Workers workers;
    EndRecord record;
    bool timerRuns = true;
    Restored restored = Restored::kNothing;
  };
  RunGolden& Destroy(const Destruction& destruction);

private:
  RunGolden& Record(const std::string& event, const std::string& category, const std::string& text, Consent consent);
  RunGolden& Send(const std::string& event, const std::string& category, const std::string& text);
  RunGolden& ReadDelay();
  RunGolden& SaveDelay();
  RunGolden& CloseDevice();
  RunGolden& CompletePair();
  RunGolden& RestoreSpeaker(Restored restored);

  BlockTime m_DeliveredAtMs;
  int m_SoundFrames;
  double m_StartedMs = 0.0;    // of the run, which the end record measures from
  double m_RecordingMs = 0.0;  // accepted start command
  double m_WritesEndMs = 0.0;
  bool m_HasLogger = false;
  bool m_IsInRealTime = false;
};

}  // namespace orvex::runs
