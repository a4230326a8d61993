// Which thread runs when: a run in which threads are held back at chosen lines of the journal in favour of others.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "world/runs/service_run.h"

namespace orvex::runs {

// A held thread goes on after this time at the latest, when the one that it gave way to had nothing to do.
constexpr world::Time kLongestHold = std::chrono::milliseconds(200);

// At the line with this number, from 0: the thread that made it is held back until thread `choice` ("main", "recorder",
// "delivery" or "worker") has taken its next turn. Or another application sends an event: "STOP", "PLAY", "END" or
// "EXIT", for which every thread but the main loop's is held back until the main loop has taken a turn.
struct Preemption {
  std::size_t line = 0;
  std::string choice;
};

// As "120:main,300:STOP", the form in which a failure names it and in which it is read back. Throws
// std::invalid_argument for another text.
using Schedule = std::vector<Preemption>;
std::string ToText(const Schedule& schedule);
Schedule ParseSchedule(const std::string& text);

// Follows a schedule in a run that has not started yet. Of the lines that every block makes only those count for which
// `isOfInterest` says so.
class ScheduleFollower {
public:
  ScheduleFollower(ServiceRun& run, Schedule schedule, std::function<bool(const world::Entry& entry)> isOfInterest);
  ~ScheduleFollower();
  ScheduleFollower(const ScheduleFollower&) = delete;
  ScheduleFollower& operator=(const ScheduleFollower&) = delete;

  // What could be chosen behind the schedule's last preemption, line by line.
  const std::vector<Preemption>& Choices() const { return m_Choices; }
  // Every preemption of the schedule has taken place.
  bool IsFollowed() const { return m_Next == m_Schedule.size(); }

private:
  void OnLine();
  void Preempt(const std::string& choice);
  void NoteChoices(std::size_t line);

  ServiceRun& m_Run;
  const Schedule m_Schedule;
  const std::function<bool(const world::Entry& entry)> m_IsOfInterest;
  std::size_t m_Next = 0;
  std::vector<Preemption> m_Choices;
};

}  // namespace orvex::runs
