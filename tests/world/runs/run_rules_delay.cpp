// The delay of a run: the old one, or the base minus the measured difference in whole milliseconds.
#include <cstdio>
#include <limits>

#include "orvex/platform/remote_voice.h"
#include "world/runs/journal_reading.h"
#include "world/runs/run_rules.h"
#include "world/runs/text_pattern.h"

namespace orvex::runs {

namespace {

constexpr int kPairingSpan = 19;

// Follows base, difference and delay through a journal.
class DelayReading {
public:
  DelayReading(const ServiceRun& run, Violations& violations)
      : m_InForce(run.Before().delayMs), m_Violations(violations) {}

  void Read(const world::Entry& entry) {
    ReadBase(entry.text);
    ReadRestart(entry.text);
    ReadDifference(entry);
    ReadResult(entry.text);
  }
  std::int64_t InForce() const { return m_InForce; }

private:
  void Require(bool kept, const std::string& violation) {
    if (!kept) {
      m_Violations.push_back(violation);
    }
  }
  // A start takes what it reads for its base; a restart only when it is granted.
  void ReadBase(const std::string& text) {
    if (text == "I0 ORVEX_START_SYNC" || text == "I0 check retry") {
      m_AwaitsBase = true;
      m_IsRestart = text == "I0 check retry";
    }
    const auto read = NumberAfter(text, "I0 avoc delay = ");
    if (!read.has_value() || !m_AwaitsBase) {
      return;
    }
    m_AwaitsBase = false;
    m_IsGranted = !m_IsRestart || (*read != 0 && *read != m_Base && m_Restarts < 2);
    m_IsDecided = false;
    m_Restarts = !m_IsRestart ? m_Restarts : m_IsGranted ? m_Restarts + 1 : 0;
    m_Base = m_IsGranted ? *read : m_Base;
  }
  void ReadRestart(const std::string& text) {
    const bool isRefused = text == "E2 no need to retry sync";
    if (!m_IsDecided && (isRefused || text == "> SendEvent(10004)")) {
      m_IsDecided = true;
      Require(isRefused != m_IsGranted, "a start or restart is decided the wrong way");
    }
  }
  void ReadDifference(const world::Entry& entry) {
    static const TextPattern kForward("I0 @ [RESULT] [{d}] - [{d}] : {f} s\n");
    static const TextPattern kReverse("I0 (ruvo)   ====> @ [RESULT] [{d}] - [{d}] : {f} s\n");
    if (entry.thread == "recorder") {
      m_Buffers = m_BeginsRecording && entry.text != "E2 Already recording in progress!!" ? 0 : m_Buffers;
      m_BeginsRecording = entry.text == "I0 m_StartBT";
    }
    for (const TextPattern* pattern : {&kForward, &kReverse}) {
      const std::vector<std::string> fields =
          StartsWith(entry.text, pattern->Beginning()) ? pattern->Fields(entry.text) : std::vector<std::string>();
      if (!fields.empty()) {
        Require(m_Buffers == 0, "a second result of one recording: " + entry.text);
        m_Buffers = std::stoi(fields[1]) - std::stoi(fields[0]);
        Require((m_Buffers > 0) == (pattern == &kForward) && std::abs(m_Buffers) <= kPairingSpan,
                "a pair that is none: " + entry.text);
      }
    }
  }
  void ReadResult(const std::string& text) {
    const double seconds = m_Buffers * kVoiceBlockSamples / kVoiceRateHz;
    if (StartsWith(text, "I0 diff time = ")) {
      char expected[64];
      std::snprintf(expected, sizeof expected, "I0 diff time = %0.4f\n", seconds);
      Require(text == expected, "another difference than was found: " + text);
    }
    Require(text != "E2 no_diff_detected!!\n" || m_Buffers == 0, "a difference is forgotten");
    const auto set = NumberAfter(text, "> avoc_set_delay(");
    if (set.has_value()) {
      Require(m_Buffers != 0 && *set == Corrected(seconds), "a wrong delay is set: " + text);
      m_InForce = AnswerOf(text, "avoc_set_delay") == 0 ? *set : m_InForce;
    }
    m_InForce = NumberAfter(text, "* delay ").value_or(m_InForce);
  }
  std::int64_t Corrected(double seconds) const {
    const std::int64_t delayMs = m_Base - static_cast<std::int64_t>(seconds * 1000.0);
    return delayMs < 0 || delayMs > std::numeric_limits<std::uint32_t>::max() ? 0 : delayMs;
  }

  std::int64_t m_InForce;
  Violations& m_Violations;
  std::int64_t m_Base = 0;
  int m_Restarts = 0;
  int m_Buffers = 0;
  bool m_AwaitsBase = false;
  bool m_IsRestart = false;
  bool m_IsGranted = false;
  bool m_IsDecided = true;
  bool m_BeginsRecording = false;
};

}  // namespace

void CheckDelay(const ServiceRun& run, Violations& violations) {
  DelayReading reading(run, violations);
  for (const world::Entry& entry : run.world.journal.Entries()) {
    reading.Read(entry);
  }
  if (run.world.delayMs != reading.InForce()) {
    violations.push_back("the delay is neither the old one nor the one that was set");
  }
}

}  // namespace orvex::runs
