// Records leave the service only while the user agrees.
#include <signal.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "Application/OrvexEventId.h"
#include "integration/expectation.h"

namespace orvex::integration {
namespace {

const std::string kStart = std::string("EV013 ORVEXENV ") + kStartRecord;
constexpr char kSecondStart[] = "EV013 ORVEXENV {device=Second|1;source=1;videoinfo=tv|6|60;codec=0}";
constexpr char kEnd[] = "EV012 ORVEXSET {result=fail;delay=100;du={u};terminate=etc}";

struct ConsentCase {
  const char* name;
  Preparation prepare;
  std::vector<Step> steps;
  Lines records;
  Lines hostLines;
};

Preparation WithConsent(const std::string& text) {
  return WithFile(kConsent, text);
}

void PutFolderInPlaceOfConsent(const TestTelevision& television) {
  television.Remove(kConsent);
  std::filesystem::create_directory(television.PathOf(kConsent));
}

Step EndAt(const std::string& line) {
  return SignalAt(line, SIGTERM);
}

void StartAgainWithAnotherDevice(ServiceRun& run) {
  run.GetTelevision().Set("tv/brand", "Second");
  InjectAt(kIsRecording, ORVEX_START_SYNC).act(run);
}

std::vector<ConsentCase> Rows() {
  return {
      {"given", WithConsent("1"), {EndAt(kIsRecording)}, {kStart, kEnd}, {}},
      {"given, by another number", WithConsent("-7"), {EndAt(kIsRecording)}, {kStart, kEnd}, {}},
      {"missing", WithConsent("0"), {EndAt(kIsRecording)}, {}, {}},
      // What was held is sent once, however often the consent is written.
      {"given while two start records are held",
       WithConsent("0"),
       {{kIsRecording, StartAgainWithAnotherDevice},
        SetAt("BT Recoder already started", kConsent, "1"),
        {"add event log sync:1", [](ServiceRun&) {}},
        SetAt("add event log sync:1", kConsent, "2"),
        EndAt("defaultdisclaimeragree=2")},
       {kStart, kSecondStart, kEnd},
       {}},
      {"written meanwhile, but not given",
       WithConsent("0"),
       {SetAt(kIsRecording, kConsent, "0"), EndAt("user doesn't agree{s}")},
       {},
       {}},
      {"taken back meanwhile",
       WithConsent("1"),
       {SetAt(kIsRecording, kConsent, "0"), EndAt("user doesn't agree{s}")},
       {kStart},
       {}},
      {"unreadable",
       PutFolderInPlaceOfConsent,
       {EndAt(kIsRecording)},
       {},
       {"E2 orvex-host: cannot read {s}/defaultdisclaimeragree: Is a directory"}},
      {"no number",
       WithConsent("yes"),
       {EndAt(kIsRecording)},
       {},
       {"E2 orvex-host: {s}/defaultdisclaimeragree: \"yes\": expected an integer from -2147483648 to 2147483647"}},
      {"read fails", WithFaults(R"({"settings.get": -41})"), {EndAt(kIsRecording)}, {}, {}},
      {"no collector", WithFaults(R"({"event_log": "absent"})"), {EndAt(kIsRecording)}, {}, {}},
      {"collector refuses once", WithFaults(R"({"event_log.add": [0]})"), {EndAt(kIsRecording)}, {kEnd}, {}},
  };
}

TEST(Consent, RecordsLeaveOnlyWhileTheUserAgrees) {
  std::vector<ExpectedRun> runs;
  for (const ConsentCase& row : Rows()) {
    Expectation expectation = EndedWith("etc");
    expectation.records = row.records;
    expectation.hostLines = row.hostLines;
    runs.push_back(
        {{row.name, Both(WithRoom(RoomWithoutBlocks()), row.prepare), row.steps, WithInjection()}, expectation});
  }
  PerformAndCheck(runs);
}

TEST(Consent, ARunWithoutItCorrectsTheDelayAndTellsNobody) {
  const Observation observation = Perform({"missing", WithConsent("0"), {}, {}});
  Expectation expectation = DifferenceApplied();
  expectation.records = Lines{};
  Check(observation, expectation);
}

}  // namespace
}  // namespace orvex::integration
