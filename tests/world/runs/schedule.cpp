// Which thread runs when.
#include "world/runs/schedule.h"

#include <map>
#include <sstream>
#include <stdexcept>

#include "Application/OrvexEventId.h"

namespace orvex::runs {

namespace {

const std::map<std::string, std::int32_t>& ForeignEvents() {
  static const std::map<std::string, std::int32_t> events{{"STOP", ORVEX_STOP_INAUDIBLE_SOUND},
                                                          {"PLAY", ORVEX_PLAY_INAUDIBLE_SOUND},
                                                          {"END", ORVEX_END_SYNC},
                                                          {"EXIT", ORVEX_EXIT}};
  return events;
}

}  // namespace

std::string ToText(const Schedule& schedule) {
  std::string text;
  for (const Preemption& preemption : schedule) {
    text += (text.empty() ? "" : ",") + std::to_string(preemption.line) + ":" + preemption.choice;
  }
  return text;
}

Schedule ParseSchedule(const std::string& text) {
  Schedule schedule;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, ',');) {
    const std::size_t colon = part.find(':');
    if (colon == 0 || colon == std::string::npos || part.find_first_not_of("0123456789") != colon) {
      throw std::invalid_argument("\"" + part + "\": expected a line's number and a choice, such as 120:main");
    }
    schedule.push_back({std::stoul(part), part.substr(colon + 1)});
  }
  return schedule;
}

ScheduleFollower::ScheduleFollower(ServiceRun& run, Schedule schedule,
                                   std::function<bool(const world::Entry& entry)> isOfInterest)
    : m_Run(run), m_Schedule(std::move(schedule)), m_IsOfInterest(std::move(isOfInterest)) {
  m_Run.world.hasDeliveryThread = true;
  m_Run.holdsThreads = true;
  m_Run.world.journal.onAdd = [this] { OnLine(); };
}

ScheduleFollower::~ScheduleFollower() {
  m_Run.world.journal.onAdd = nullptr;
}

void ScheduleFollower::OnLine() {
  const std::vector<world::Entry>& entries = m_Run.world.journal.Entries();
  const std::size_t line = entries.size() - 1;
  if (!m_Run.HasStarted() || m_Run.world.HasEnded() || entries[line].text[0] == '*') {
    return;
  }
  if (m_Next < m_Schedule.size() && m_Schedule[m_Next].line == line) {
    Preempt(m_Schedule[m_Next++].choice);
  } else if (IsFollowed() && m_IsOfInterest(entries[line])) {
    NoteChoices(line);
  }
}

void ScheduleFollower::Preempt(const std::string& choice) {
  const auto event = ForeignEvents().find(choice);
  if (event == ForeignEvents().end()) {
    m_Run.world.scheduler.GiveWayTo(choice, kLongestHold);
  } else {
    m_Run.SendServiceEvent(event->second);
    m_Run.world.scheduler.GiveWayTo("main", kLongestHold);
  }
}

void ScheduleFollower::NoteChoices(std::size_t line) {
  for (const std::string& thread : m_Run.world.scheduler.OthersWithWork(kLongestHold)) {
    m_Choices.push_back({line, thread});
  }
  for (const auto& [name, type] : ForeignEvents()) {
    m_Choices.push_back({line, name});
  }
}

}  // namespace orvex::runs
