// What the start record says of the television, with queries that fail alone and together.
#include <signal.h>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

constexpr char kDevice[] = "I type = 1, brandName = Example";
constexpr char kNoDevice[] = "I activity info is null";
constexpr char kPicture[] = "I resolution = 6, frequency = 60";
constexpr char kSource[] = "I source = 1";
constexpr char kNoSource[] = "F Can not Set Source by Source Control.";
constexpr char kCodec[] = "I type = 0";

struct Row {
  const char* name;
  std::function<void(const TestTelevision&)> change;
  Lines queries;
  const char* record;
};

std::function<void(const TestTelevision&)> Without(const std::string& name) {
  return [name](const TestTelevision& television) { television.Remove(name); };
}

std::function<void(const TestTelevision&)> With(const std::string& name, const std::string& text) {
  return [name, text](const TestTelevision& television) { television.Set(name, text); };
}

void RemoveAll(const TestTelevision& television) {
  television.Remove("tv");
  television.WriteFile("tv/nothing", "");
}

std::vector<Row> Rows() {
  return {
      {"brand missing",
       Without("tv/brand"),
       {kNoDevice, kPicture, kSource, kCodec},
       "{device=none|-1;source=1;videoinfo=tv|6|60;codec=0}"},
      {"kind of device missing",
       Without("tv/device_type"),
       {kNoDevice, kPicture, kSource, kCodec},
       "{device=none|-1;source=1;videoinfo=tv|6|60;codec=0}"},
      // The selector that was passed in is left.
      {"resolution missing",
       Without("tv/resolution"),
       {kDevice, "I resolution = 2, frequency = 0", kSource, kCodec},
       "{device=Example|1;source=1;videoinfo=tv|2|0;codec=0}"},
      {"frequency missing",
       Without("tv/frequency"),
       {kDevice, "I resolution = 2, frequency = 0", kSource, kCodec},
       "{device=Example|1;source=1;videoinfo=tv|2|0;codec=0}"},
      {"source missing",
       Without("tv/source"),
       {kDevice, kPicture, kNoSource, "I source = 0", kCodec},
       "{device=Example|1;source=0;videoinfo=tv|6|60;codec=0}"},
      {"codec missing",
       Without("tv/codec"),
       {kDevice, kPicture, kSource, kCodec},
       "{device=Example|1;source=1;videoinfo=tv|6|60;codec=0}"},
      {"number of inputs missing",
       Without("tv/hdmi_inputs"),
       {kDevice, kPicture, kSource, kCodec},
       "{device=Example|1;source=1;videoinfo=tv|6|60;codec=0}"},
      {"all missing",
       RemoveAll,
       {kNoDevice, "I resolution = 2, frequency = 0", kNoSource, "I source = 0", kCodec},
       "{device=none|-1;source=0;videoinfo=tv|2|0;codec=0}"},
      {"no controls",
       WithFaults(R"({"tv.av_control": -1, "tv.activity": -1, "audio_control.codec": -1})"),
       {kNoDevice, "F Create Resolution Control failed", kSource, kCodec},
       "{device=none|-1;source=1;videoinfo=none|0|0;codec=0}"},
      {"no source control",
       WithFaults(R"({"tv.source_control": -1})"),
       {kDevice, kPicture, "F Can not get Source Control.", "I source = 0", kCodec},
       "{device=Example|1;source=0;videoinfo=tv|6|60;codec=0}"},
      {"brand with the record's own signs",
       With("tv/brand", "A|B;C}D"),
       {"I type = 1, brandName = A|B;C}D", kPicture, kSource, kCodec},
       "{device=A|B;C}D|1;source=1;videoinfo=tv|6|60;codec=0}"},
      {"source below 0",
       With("tv/source", "-3"),
       {kDevice, kPicture, "I source = -3", kCodec},
       "{device=Example|1;source=-3;videoinfo=tv|6|60;codec=0}"},
      {"codec below 0",
       With("tv/codec", "-1"),
       {kDevice, kPicture, kSource, "I type = -1"},
       "{device=Example|1;source=1;videoinfo=tv|6|60;codec=4294967295}"},
  };
}

TEST(Queries, AFailedOneLeavesItsDefaultInTheStartRecord) {
  const std::vector<Row> rows = Rows();
  std::vector<Scenario> scenarios;
  for (const Row& row : rows) {
    const auto prepare = [&row](const TestTelevision& television) {
      television.SetRoom(RoomWithoutBlocks());
      row.change(television);
    };
    scenarios.push_back({row.name, prepare, {SignalAt(kIsRecording, SIGTERM)}, {}});
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < rows.size(); ++n) {
    ExpectedTelevision television;
    television.queries = rows[n].queries;
    television.startRecord = rows[n].record;
    Expectation expectation;
    expectation.runLines = ExpectedLog(television).UpToRecording().Destroyed().GetLines();
    expectation.terminate = "etc";
    expectation.records = Lines{std::string("EV013 ORVEXENV ") + rows[n].record,
                                "EV012 ORVEXSET {result=fail;delay=100;du=*;terminate=etc}"};
    Check(observations[n], expectation);
  }
}

// A diagnostic only: the delay itself comes from elsewhere.
TEST(Queries, WithoutAnAudioControlObjectTheRunGoesOn) {
  const Observation observation = Perform({"no audio control", WithFaults(R"({"audio_control": "absent"})"), {}, {}});
  CheckEnding(observation);
  CheckLogForm(observation);
  EXPECT_EQ(DelayFor(100, MeasuredDifferenceS(observation)), observation.delayMs);
  EXPECT_NE(100, observation.delayMs);
  EXPECT_EQ("", MissingInOrder(LinesOf(observation.lines, Theme::kRun),
                               {"F audio_control is null", "E spdif out delay = 0", "I avoc delay = 100",
                                "F audio_control is null", "E spdif out delay = 0",
                                "E main out delay = 0, avoc delay = 100", "I text = {result=pass;*;terminate=done}"}));
}

}  // namespace
}  // namespace orvex::integration
