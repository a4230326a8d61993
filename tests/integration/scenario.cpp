// Performs scenarios and collects what they leave behind.
#include "integration/scenario.h"

#include <algorithm>
#include <filesystem>

#include "integration/parallel.h"
#include "tv/event_records.h"

namespace orvex::integration {
namespace {

std::int64_t NumberOrMinusOne(const TestTelevision& television, const char* name) {
  try {
    return television.Get(name);
  } catch (const virtual_tv::TelevisionError&) {
    return -1;
  }
}

void TakeSteps(const Scenario& scenario, ServiceRun& run, Observation& observation) {
  for (const Step& step : scenario.steps) {
    if (!run.WaitFor(step.line)) {
      observation.problem += "no line \"" + step.line + "\" came; ";
      return;
    }
    step.act(run);
  }
}

void Collect(const TestTelevision& television, const ServiceRun& run, Observation& observation) {
  observation.lines = run.GetLines();
  observation.notes = run.GetNotes();
  observation.output = run.ReadOutput();
  observation.dump = run.ReadDump(1);
  observation.result = run.ReadResult(1);
  observation.secondDump = run.ReadDump(2);
  const std::filesystem::path recordFile = television.PathOf("events.jsonl");
  observation.hasRecordFile = std::filesystem::exists(recordFile);
  observation.records = tools::ReadEventRecords(recordFile.string()).records;
  observation.delayMs = NumberOrMinusOne(television, "delay/spdif");
  observation.mute = NumberOrMinusOne(television, "sound/mute");
  observation.volume = NumberOrMinusOne(television, "sound/volume");
}

}  // namespace

Observation Perform(const Scenario& scenario) {
  Observation observation;
  observation.name = scenario.name;
  try {
    const TestTelevision television;
    scenario.prepare(television);
    ServiceRun run(television, scenario.environment, scenario.shell);
    TakeSteps(scenario, run, observation);
    observation.ending = run.WaitForEnd();
    Collect(television, run, observation);
  } catch (const std::exception& error) {
    observation.problem += error.what();
  }
  return observation;
}

std::vector<Observation> Perform(const std::vector<Scenario>& scenarios) {
  std::vector<Observation> observations(scenarios.size());
  InParallel(scenarios.size(), [&](std::size_t row) { observations[row] = Perform(scenarios[row]); });
  return observations;
}

Step SignalAt(const std::string& line, int number) {
  return {line, [number](ServiceRun& run) { run.Signal(number); }};
}

Step SetAt(const std::string& line, const std::string& name, const std::string& text) {
  return {line, [name, text](ServiceRun& run) { run.GetTelevision().Set(name, text); }};
}

Step InjectAt(const std::string& line, int event) {
  return {line, [event](ServiceRun& run) {
            run.Note(run.Exchange(R"({"type": "event", "body": {"id": )" + std::to_string(event) + "}}"));
          }};
}

std::map<std::string, std::string> WithInjection() {
  return {{"ORVEX_TV_INJECT", "1"}};
}

Preparation WithFaults(const std::string& json) {
  return [json](const TestTelevision& television) { television.SetFaults(json); };
}

Preparation WithValue(const std::string& name, const std::string& text) {
  return [name, text](const TestTelevision& television) { television.Set(name, text); };
}

Preparation WithFile(const std::string& name, const std::string& content) {
  return [name, content](const TestTelevision& television) { television.WriteFile(name, content); };
}

Preparation Both(const Preparation& first, const Preparation& second) {
  return [first, second](const TestTelevision& television) {
    first(television);
    second(television);
  };
}

Preparation WithRoom(const sim::RoomConfig& room) {
  return [room](const TestTelevision& television) { television.SetRoom(room); };
}

sim::RoomConfig RoomWithDifference(double differenceMs, double delayMs) {
  constexpr double kLatencyMs = 20.0;
  sim::RoomConfig room;
  const double lead = differenceMs - delayMs;  // of the television's speaker, without the delay
  room.tv.latencyMs = kLatencyMs + std::max(-lead, 0.0);
  room.optical.latencyMs = kLatencyMs + std::max(lead, 0.0);
  return room;
}

sim::RoomConfig RoomWithoutOpticalSound() {
  sim::RoomConfig room;
  room.opticalMuted = true;
  return room;
}

sim::RoomConfig RoomThatFallsSilent() {
  sim::RoomConfig room;
  room.silentAfterMs = 300.0;
  return room;
}

sim::RoomConfig RoomWithoutBlocks() {
  sim::RoomConfig room;
  room.voiceLossProbability = 1.0;
  return room;
}

}  // namespace orvex::integration
