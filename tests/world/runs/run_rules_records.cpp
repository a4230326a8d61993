// The telemetry of a run: which records are made, what they say, and which of them leave.
#include <deque>
#include <optional>

#include "world/runs/journal_reading.h"
#include "world/runs/run_rules.h"
#include "world/runs/text_pattern.h"

namespace orvex::runs {

namespace {

// What an end record has to say, from the lines before it.
class Outcome {
public:
  void Read(const world::Entry& entry) {
    const std::string& text = entry.text;
    if (text == "E2 fail bt recoding" && entry.thread == "recorder") {
      m_Terminate = "bt_fail";
    } else if (text == "E2 fail to play wave") {
      m_Terminate = "play_fail";
    } else if (text == "I0 m_OnAbnomalStatusCallback") {
      m_Terminate = "abnormal_input_fail";
    } else if (text == "E2 no_diff_detected!!\n") {
      m_Terminate = "diff_fail";
    } else if (StartsWith(text, "I0 delay = ")) {
      m_Terminate = "done";
      m_Result = "pass";
    }
    m_DelayMs = NumberAfter(text, "I0 avoc delay = ").value_or(m_DelayMs);
    if (entry.thread == "main" && !StartsWith(text, "* ")) {
      ReadClock(text);
    }
  }
  std::string EndText() const {
    return "I0 text = {result=" + m_Result + ";delay=" + std::to_string(m_DelayMs) +
           ";du=" + std::to_string(static_cast<std::int32_t>(m_Clock - m_Start)) + ";terminate=" + m_Terminate + "}";
  }

private:
  // The clock that follows the event which starts the recorder is the start of the run.
  void ReadClock(const std::string& text) {
    static const TextPattern kClock("I0 {u}:{u}");
    const std::vector<std::string> fields = kClock.Fields(text);
    if (!fields.empty()) {
      m_Clock = static_cast<std::uint32_t>(std::stoull(fields[0]) * 1000 + std::stoull(fields[1]) / 1000);
      m_Start = m_IsStart ? m_Clock : m_Start;
    }
    m_IsStart = text == "> SendEvent(10004)";
  }

  std::string m_Terminate = "etc";
  std::string m_Result = "fail";
  std::int64_t m_DelayMs = 0;
  std::uint32_t m_Clock = 0;
  std::uint32_t m_Start = 0;
  bool m_IsStart = false;
};

// The way of the records: sent at once, kept, sent later, or lost.
class Consent {
public:
  explicit Consent(Violations& violations) : m_Violations(violations) {}

  void Read(const world::Entry& entry) {
    const std::string& text = entry.text;
    if (StartsWith(text, "I0 text = ")) {
      m_Fresh = text.substr(10);
    } else if (text == "I0 " && entry.function == "m_ProcessDefaultDsiclaimerAgreementChanged") {
      m_AsksForAll = true;
    } else if (StartsWith(text, "I0 defaultdisclaimeragree=")) {
      Answer(text != "I0 defaultdisclaimeragree=0");
    } else if (StartsWith(text, "E2 (r=")) {
      Answer(false);
    } else if (StartsWith(text, "I0 Service[]")) {
      Require(text == "I0 Service[] Event[" + Event() + "] Category[" + Category() + "] Value[" + m_Sending + "]",
              text);
    } else if (StartsWith(text, "> event_log_add_sync(")) {
      Send(text);
    }
  }
  const std::vector<std::string>& Sent() const { return m_Sent; }

private:
  std::string Event() const { return StartsWith(m_Sending, "{device=") ? "ORVEXENV" : "ORVEXSET"; }
  std::string Category() const { return StartsWith(m_Sending, "{device=") ? "EV013" : "EV012"; }

  void Require(bool kept, const std::string& text) {
    if (!kept) {
      m_Violations.push_back("not the record whose turn it is: " + text);
    }
  }
  void Answer(bool isAgreed) {
    if (m_AsksForAll) {
      m_AsksForAll = false;
      if (isAgreed) {
        std::swap(m_Leaving, m_Kept);
      }
    } else if (m_Fresh.has_value()) {
      if (isAgreed) {
        m_Sending = *m_Fresh;
      } else {
        m_Kept.push_back(*m_Fresh);
      }
      m_Fresh.reset();
    } else if (!m_Leaving.empty()) {
      // One that may not leave after all is lost.
      m_Sending = isAgreed ? m_Leaving.front() : "";
      m_Leaving.pop_front();
    } else {
      Require(false, "consent for nothing");
    }
  }
  void Send(const std::string& text) {
    const std::string call =
        "> event_log_add_sync(21_remocon, " + Event() + ", " + Category() + ", " + m_Sending + ") = ";
    Require(StartsWith(text, call), text);
    if (text == call + "1") {
      m_Sent.push_back(m_Sending);
    }
  }

  Violations& m_Violations;
  std::optional<std::string> m_Fresh;
  std::deque<std::string> m_Kept;
  std::deque<std::string> m_Leaving;
  std::string m_Sending;
  bool m_AsksForAll = false;
  std::vector<std::string> m_Sent;
};

}  // namespace

void CheckRecords(const ServiceRun& run, Violations& violations) {
  const world::Journal& journal = run.world.journal;
  Outcome outcome;
  Consent consent(violations);
  for (const world::Entry& entry : journal.Entries()) {
    outcome.Read(entry);
    consent.Read(entry);
    if (StartsWith(entry.text, "I0 text = {result=") && entry.text != outcome.EndText()) {
      violations.push_back("expected " + outcome.EndText() + ", not " + entry.text);
    }
  }
  if (journal.CountStartingWith("I0 text = {device=") != journal.Count("I0 ORVEX_START_SYNC")) {
    violations.push_back("not one start record for each start");
  }
  if (journal.CountStartingWith("I0 text = {result=") != journal.Count("I0 ORVEX_END_SYNC") + 1) {
    violations.push_back("not one end record for each end, and one for the destroy step");
  }
  std::vector<std::string> arrived;
  for (const world::EventRecord& record : run.world.events) {
    arrived.push_back(record.value);
  }
  if (arrived != consent.Sent()) {
    violations.push_back("other records have arrived than were sent");
  }
}

}  // namespace orvex::runs
