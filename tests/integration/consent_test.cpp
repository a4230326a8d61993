// Records leave the service only while the user agrees.
#include <signal.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

constexpr char kStartRecord[] = "EV013 ORVEXENV {device=Example|1;source=1;videoinfo=tv|6|60;codec=0}";
constexpr char kEndRecord[] = "EV012 ORVEXSET {result=fail;delay=100;du=*;terminate=etc}";

using Preparation = std::function<void(const TestTelevision&)>;

struct Row {
  const char* name;
  Preparation prepare;
  std::vector<Step> steps;
  ExpectedLog log;
  Lines records;
  Lines hostLines;
};

Preparation WithConsentFile(const std::string& content) {
  return [content](const TestTelevision& television) { television.WriteFile(kConsent, content); };
}

void PutFolderInPlaceOfConsent(const TestTelevision& television) {
  television.Remove(kConsent);
  std::filesystem::create_directory(television.PathOf(kConsent));
}

ExpectedLog Log(const RecordHandling& records) {
  ExpectedTelevision television;
  television.records = records;
  return ExpectedLog(television).UpToRecording();
}

Step EndAt(const std::string& line) {
  return SignalAt(line, SIGTERM);
}

ExpectedLog RefusedOnce() {
  return Log(Refused(0)).SetRecords(Sent()).Destroyed();
}

ExpectedLog Revoked() {
  return Log(Sent())
      .Add({"I ", "I ", "I defaultdisclaimeragree=0", "D user doesn't agree default disclaimer!"})
      .SetRecords(Held())
      .Destroyed();
}

ExpectedLog ChangedButStillMissing() {
  return Log(Held())
      .Add({"I ", "I ", "I defaultdisclaimeragree=0", "D user doesn't agree default disclaimer!"})
      .Destroyed();
}

// A second start record is made meanwhile, of another device. What was held is sent once, however often the consent is
// written.
ExpectedLog GivenWithTwoHeld() {
  constexpr char kFirst[] = "{device=Example|1;source=1;videoinfo=tv|6|60;codec=0}";
  constexpr char kSecond[] = "{device=Second|1;source=1;videoinfo=tv|6|60;codec=0}";
  ExpectedLog log = Log(Held());
  log.GetTelevision().queries.front() = "I type = 1, brandName = Second";
  log.GetTelevision().startRecord = kSecond;
  return log.SyncStarted()
      .RecorderAsked()
      .Add({"I BT Recoder already started"})
      .ConsentGiven()
      .Record("ORVEXENV", "EV013", kFirst)
      .Record("ORVEXENV", "EV013", kSecond)
      .ConsentGiven("2")
      .Destroyed();
}

void StartAgainWithAnotherDevice(ServiceRun& run) {
  run.GetTelevision().Set("tv/brand", "Second");
  InjectAt(kIsRecording, 10000).act(run);
}

std::vector<Row> Rows() {
  const std::string secondStart = "EV013 ORVEXENV {device=Second|1;source=1;videoinfo=tv|6|60;codec=0}";
  return {
      {"given", WithConsentFile("1"), {EndAt(kIsRecording)}, Log(Sent()).Destroyed(), {kStartRecord, kEndRecord}, {}},
      {"given, by another number",
       WithConsentFile("-7"),
       {EndAt(kIsRecording)},
       Log(Sent("-7")).Destroyed(),
       {kStartRecord, kEndRecord},
       {}},
      {"missing", WithConsentFile("0"), {EndAt(kIsRecording)}, Log(Held()).Destroyed(), {}, {}},
      {"given meanwhile",
       WithConsentFile("0"),
       {{kIsRecording, StartAgainWithAnotherDevice},
        SetAt("BT Recoder already started", kConsent, "1"),
        {"add event log sync:1", [](ServiceRun&) {}},
        SetAt("add event log sync:1", kConsent, "2"),
        EndAt("defaultdisclaimeragree=2")},
       GivenWithTwoHeld(),
       {kStartRecord, secondStart, kEndRecord},
       {}},
      {"written meanwhile, but not given",
       WithConsentFile("0"),
       {SetAt(kIsRecording, kConsent, "0"), EndAt("user doesn't agree*")},
       ChangedButStillMissing(),
       {},
       {}},
      {"taken back meanwhile",
       WithConsentFile("1"),
       {SetAt(kIsRecording, kConsent, "0"), EndAt("user doesn't agree*")},
       Revoked(),
       {kStartRecord},
       {}},
      {"unreadable",
       PutFolderInPlaceOfConsent,
       {EndAt(kIsRecording)},
       Log(HeldUnread(-3)).Destroyed(),
       {},
       {"F orvex-host: cannot read */defaultdisclaimeragree: Is a directory"}},
      {"no number",
       WithConsentFile("yes"),
       {EndAt(kIsRecording)},
       Log(HeldUnread(-2)).Destroyed(),
       {},
       {"F orvex-host: */defaultdisclaimeragree: \"yes\": expected an integer from -2147483648 to 2147483647"}},
      {"read fails",
       WithFaults(R"({"settings.get": -41})"),
       {EndAt(kIsRecording)},
       Log(HeldUnread(-41)).Destroyed(),
       {},
       {}},
      {"no collector",
       WithFaults(R"({"event_log": "absent"})"),
       {EndAt(kIsRecording)},
       Log(LostWithoutCollector()).Destroyed(),
       {},
       {}},
      {"collector refuses once",
       WithFaults(R"({"event_log.add": [0]})"),
       {EndAt(kIsRecording)},
       RefusedOnce(),
       {kEndRecord},
       {}},
  };
}

TEST(Consent, RecordsLeaveOnlyWhileTheUserAgrees) {
  const std::vector<Row> rows = Rows();
  std::vector<Scenario> scenarios;
  for (const Row& row : rows) {
    const auto prepare = [&row](const TestTelevision& television) {
      television.SetRoom(RoomWithoutBlocks());
      row.prepare(television);
    };
    scenarios.push_back({row.name, prepare, row.steps, WithInjection()});
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < rows.size(); ++n) {
    Expectation expectation;
    expectation.runLines = rows[n].log.GetLines();
    expectation.terminate = "etc";
    expectation.records = rows[n].records;
    expectation.hostLines = rows[n].hostLines;
    Check(observations[n], expectation);
  }
}

TEST(Consent, ARunWithoutItCorrectsTheDelayAndTellsNobody) {
  const Observation observation = Perform({"missing", WithConsentFile("0"), {}, {}});
  ExpectedTelevision television;
  television.records = Held();
  Expectation expectation;
  expectation.runLines =
      ExpectedLog(television).UpToPlaying().EndedWithDifference().Exit().Destroyed().WorkerCancelled().GetLines();
  expectation.terminate = "done";
  expectation.result = "pass";
  expectation.endRecords = 2;
  expectation.delayMs = std::nullopt;
  expectation.records = Lines{};
  Check(observation, expectation);
}

}  // namespace
}  // namespace orvex::integration
