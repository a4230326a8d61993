// What the start record says of the television, with queries that fail alone and together.
#include <signal.h>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

struct QueryCase {
  const char* name;
  Preparation change;
  const char* record;
};

Preparation Without(const std::string& name) {
  return [name](const TestTelevision& television) { television.Remove(name); };
}

void RemoveAll(const TestTelevision& television) {
  television.Remove("tv");
  television.WriteFile("tv/nothing", "");
}

std::vector<QueryCase> Rows() {
  return {
      {"brand missing", Without("tv/brand"), "{device=none|-1;source=1;videoinfo=tv|6|60;codec=0}"},
      {"kind of device missing", Without("tv/device_type"), "{device=none|-1;source=1;videoinfo=tv|6|60;codec=0}"},
      // The selector that was passed in is left.
      {"resolution missing", Without("tv/resolution"), "{device=Example|1;source=1;videoinfo=tv|2|0;codec=0}"},
      {"frequency missing", Without("tv/frequency"), "{device=Example|1;source=1;videoinfo=tv|2|0;codec=0}"},
      {"source missing", Without("tv/source"), "{device=Example|1;source=0;videoinfo=tv|6|60;codec=0}"},
      {"codec missing", Without("tv/codec"), "{device=Example|1;source=1;videoinfo=tv|6|60;codec=0}"},
      {"number of inputs missing", Without("tv/hdmi_inputs"), kStartRecord},
      {"all missing", RemoveAll, "{device=none|-1;source=0;videoinfo=tv|2|0;codec=0}"},
      {"no controls", WithFaults(R"({"tv.av_control": -1, "tv.activity": -1, "audio_control.codec": -1})"),
       "{device=none|-1;source=1;videoinfo=none|0|0;codec=0}"},
      {"no source control", WithFaults(R"({"tv.source_control": -1})"),
       "{device=Example|1;source=0;videoinfo=tv|6|60;codec=0}"},
      {"brand with the record's own signs", WithValue("tv/brand", "A|B;C}D"),
       "{device=A|B;C}D|1;source=1;videoinfo=tv|6|60;codec=0}"},
      {"source below 0", WithValue("tv/source", "-3"), "{device=Example|1;source=-3;videoinfo=tv|6|60;codec=0}"},
      {"codec below 0", WithValue("tv/codec", "-1"), "{device=Example|1;source=1;videoinfo=tv|6|60;codec=4294967295}"},
  };
}

TEST(Queries, AFailedOneLeavesItsDefaultInTheStartRecord) {
  std::vector<ExpectedRun> runs;
  for (const QueryCase& row : Rows()) {
    Expectation expectation = EndedWith("etc");
    expectation.startRecord = row.record;
    runs.push_back({{row.name, Both(WithRoom(RoomWithoutBlocks()), row.change), {SignalAt(kIsRecording, SIGTERM)}, {}},
                    expectation});
  }
  PerformAndCheck(runs);
}

// A diagnostic only: the delay itself comes from elsewhere.
TEST(Queries, WithoutAnAudioControlObjectTheRunGoesOn) {
  const Observation observation = Perform({"no audio control", WithFaults(R"({"audio_control": "absent"})"), {}, {}});
  Expectation expectation = DifferenceApplied();
  expectation.logged = {"E2 audio_control is null", "E0 spdif out delay = 0", "I0 avoc delay = 100"};
  Check(observation, expectation);
  EXPECT_NE(100, observation.delayMs);
}

}  // namespace
}  // namespace orvex::integration
