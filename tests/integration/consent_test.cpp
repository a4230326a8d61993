// Records leave the service only while the user agrees.
#include <signal.h>

#include <filesystem>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

const std::string kStart = std::string("EV013 ORVEXENV ") + kStartRecord;
constexpr char kSecondStart[] = "EV013 ORVEXENV {device=Second|1;source=1;videoinfo=tv|6|60;codec=0}";
constexpr char kEnd[] = "EV012 ORVEXSET {result=fail;delay=100;du={u};terminate=etc}";

using Preparation = std::function<void(const TestTelevision&)>;

struct Row {
  const char* name;
  Preparation prepare;
  std::vector<Step> steps;
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

Step EndAt(const std::string& line) {
  return SignalAt(line, SIGTERM);
}

void StartAgainWithAnotherDevice(ServiceRun& run) {
  run.GetTelevision().Set("tv/brand", "Second");
  InjectAt(kIsRecording, 10000).act(run);
}

std::vector<Row> Rows() {
  return {
      {"given", WithConsentFile("1"), {EndAt(kIsRecording)}, {kStart, kEnd}, {}},
      {"given, by another number", WithConsentFile("-7"), {EndAt(kIsRecording)}, {kStart, kEnd}, {}},
      {"missing", WithConsentFile("0"), {EndAt(kIsRecording)}, {}, {}},
      // What was held is sent once, however often the consent is written.
      {"given while two start records are held",
       WithConsentFile("0"),
       {{kIsRecording, StartAgainWithAnotherDevice},
        SetAt("BT Recoder already started", kConsent, "1"),
        {"add event log sync:1", [](ServiceRun&) {}},
        SetAt("add event log sync:1", kConsent, "2"),
        EndAt("defaultdisclaimeragree=2")},
       {kStart, kSecondStart, kEnd},
       {}},
      {"written meanwhile, but not given",
       WithConsentFile("0"),
       {SetAt(kIsRecording, kConsent, "0"), EndAt("user doesn't agree{s}")},
       {},
       {}},
      {"taken back meanwhile",
       WithConsentFile("1"),
       {SetAt(kIsRecording, kConsent, "0"), EndAt("user doesn't agree{s}")},
       {kStart},
       {}},
      {"unreadable",
       PutFolderInPlaceOfConsent,
       {EndAt(kIsRecording)},
       {},
       {"E2 orvex-host: cannot read {s}/defaultdisclaimeragree: Is a directory"}},
      {"no number",
       WithConsentFile("yes"),
       {EndAt(kIsRecording)},
       {},
       {"E2 orvex-host: {s}/defaultdisclaimeragree: \"yes\": expected an integer from -2147483648 to 2147483647"}},
      {"read fails", WithFaults(R"({"settings.get": -41})"), {EndAt(kIsRecording)}, {}, {}},
      {"no collector", WithFaults(R"({"event_log": "absent"})"), {EndAt(kIsRecording)}, {}, {}},
      {"collector refuses once", WithFaults(R"({"event_log.add": [0]})"), {EndAt(kIsRecording)}, {kEnd}, {}},
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
    Expectation expectation = EndedWith("etc");
    expectation.records = rows[n].records;
    expectation.hostLines = rows[n].hostLines;
    Check(observations[n], expectation);
  }
}

TEST(Consent, ARunWithoutItCorrectsTheDelayAndTellsNobody) {
  const Observation observation = Perform({"missing", WithConsentFile("0"), {}, {}});
  Expectation expectation = DifferenceApplied();
  expectation.records = Lines{};
  Check(observation, expectation);
}

}  // namespace
}  // namespace orvex::integration
