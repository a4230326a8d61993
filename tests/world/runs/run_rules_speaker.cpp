// The speaker guard of a run: which calls it makes, in which order, and what is left behind.
#include "world/runs/journal_reading.h"
#include "world/runs/run_rules.h"

namespace orvex::runs {

namespace {

// A reading of the guard's calls: what it has to ask next, given what it was answered.
class Guard {
public:
  explicit Guard(const ServiceRun& run) : m_Run(run), m_Muted(run.Before().muted), m_Volume(run.Before().volume) {
    for (const world::Entry& entry : run.world.journal.Entries()) {
      if (StartsWith(entry.text, "> sound_manager_")) {
        m_Calls.push_back(entry.text.substr(2));
      }
      m_OpticalFlag = m_OpticalFlag || entry.function == "m_OnOpticalVconfCallback";
    }
  }

  void Check(Violations& violations) {
    Prepare();
    Restore();
    if (m_Next != m_Calls.size()) {
      m_Found.push_back("the sound manager is asked too much: " + m_Calls[m_Next]);
    }
    if (m_Run.world.muted != m_Muted || m_Run.world.volume != m_Volume) {
      m_Found.push_back("mute or volume are not as they have to be left");
    }
    violations.insert(violations.end(), m_Found.begin(), m_Found.end());
  }

private:
  void Prepare() {
    if (!Asks("sound_manager_get_device_mute(0)") || !m_Run.Before().muted) {
      return;
    }
    m_IsMuteSaved = true;
    if (Asks("sound_manager_get_tv_master_volume()")) {
      m_SavedVolume = m_Run.Before().volume;
    }
    SetsVolume(0);
    SetsMute(false);
  }
  void Restore() {
    if (m_IsMuteSaved && !m_OpticalFlag && Asks("sound_manager_get_speaker_selection()") && m_Run.world.speaker != 0) {
      SetsMute(true);
    }
    if (m_SavedVolume != -1) {
      SetsVolume(m_SavedVolume);
    }
  }
  void SetsVolume(std::int32_t level) {
    if (Asks("sound_manager_set_tv_master_volume(" + std::to_string(level) + ")")) {
      m_Volume = level;
    }
  }
  void SetsMute(bool muted) {
    if (Asks(std::string("sound_manager_set_device_mute(0, ") + (muted ? "true)" : "false)"))) {
      m_Muted = muted;
    }
  }
  // The next call has to be this one. True when it was answered with success.
  bool Asks(const std::string& call) {
    if (m_Next >= m_Calls.size() || !StartsWith(m_Calls[m_Next], call + " = ")) {
      m_Found.push_back("the sound manager is not asked in turn: " + call);
      return false;
    }
    return m_Calls[m_Next++] == call + " = 0";
  }

  const ServiceRun& m_Run;
  std::vector<std::string> m_Calls;
  std::size_t m_Next = 0;
  bool m_OpticalFlag = false;
  bool m_IsMuteSaved = false;
  std::int32_t m_SavedVolume = -1;
  bool m_Muted;  // as it has to be at the end
  std::int32_t m_Volume;
  Violations m_Found;
};

}  // namespace

void CheckSpeaker(const ServiceRun& run, Violations& violations) {
  Guard(run).Check(violations);
}

}  // namespace orvex::runs
