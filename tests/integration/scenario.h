// One run of the service as a row of a table: the television before, what happens meanwhile, what is there afterwards.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <json/value.h>

#include "integration/service_run.h"

namespace orvex::integration {

using Preparation = std::function<void(const TestTelevision&)>;

struct Step {
  std::string line;  // pattern; waited for behind the line of the step before
  std::function<void(ServiceRun&)> act;
};

struct Scenario {
  std::string name;
  Preparation prepare;
  std::vector<Step> steps;
  std::map<std::string, std::string> environment;
  std::string shell = "";  // begins the service, see ServiceRun
};

// What a run has left behind.
struct Observation {
  std::string name;
  ProcessEnding ending;
  std::string problem;  // a step that could not be taken; empty: none
  std::vector<LogLine> lines;
  std::vector<std::string> notes;  // what the steps have noted
  std::string output;
  std::string dump;  // of the first recording
  std::string result;
  std::string secondDump;            // empty: no second recording
  std::vector<Json::Value> records;  // of events.jsonl
  bool hasRecordFile = false;
  std::int64_t delayMs = -1;  // -1: unreadable, as are the two below
  std::int64_t mute = -1;
  std::int64_t volume = -1;
};

// Runs the scenarios, some at a time, each on a television of its own. The order of the answers is that of the rows.
std::vector<Observation> Perform(const std::vector<Scenario>& scenarios);
Observation Perform(const Scenario& scenario);

// Steps that are met often.
Step SignalAt(const std::string& line, int number);
Step SetAt(const std::string& line, const std::string& name, const std::string& text);
Step InjectAt(const std::string& line, int event);  // notes the reply

// The environment in which a service takes events from outside.
std::map<std::string, std::string> WithInjection();

// Lines that tell how far a run has come.
constexpr char kIsConstructed[] = "m_ElapsedTimeStr: {s}";
constexpr char kIsCreating[] = "Orvex Service Create!";
constexpr char kIsLearningNoise[] = "buffer: 12";
constexpr char kIsPlaying[] = "m_StartPlay";
constexpr char kIsHearingTones[] = "  ====> @ g_first index \n";

// Ways to prepare a television.
inline void LeaveAsItIs(const TestTelevision& /*television*/) {}
Preparation WithValue(const std::string& name, const std::string& text);
Preparation WithFile(const std::string& name, const std::string& content);
Preparation WithFaults(const std::string& json);
Preparation WithRoom(const sim::RoomConfig& room);
Preparation Both(const Preparation& first, const Preparation& second);

// Rooms.
sim::RoomConfig RoomWithDifference(double differenceMs, double delayMs);  // with that delay of the optical output
sim::RoomConfig RoomWithoutOpticalSound();
sim::RoomConfig RoomThatFallsSilent();  // before the ambient noise is learnt
sim::RoomConfig RoomWithoutBlocks();    // the remote accepts every command and delivers nothing

}  // namespace orvex::integration
