// Every schedule, not only every moment: at each platform call and log line of a run the thread that made it is held
// back in favour of each other one that has something to do, or an event comes from outside. All ways of doing so once,
// and a drawn share of the ways of doing it twice. The rules of every run hold in each.
//
// ORVEX_SCHEDULE=Found/120:main,300:STOP does that one schedule and prints its journal. ORVEX_SCHEDULES says how many
// of those with two preemptions are drawn for each kind of run, ORVEX_SCHEDULE_SEED which. ORVEX_SCHEDULE_EVERY=8 does
// every eighth of those with one.
#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <set>

#include "orvex/platform/remote_voice.h"
#include "support/wave_file.h"
#include "world/runs/environment.h"
#include "world/runs/good_room.h"
#include "world/runs/journal_reading.h"
#include "world/runs/run_rules.h"
#include "world/runs/schedule.h"
#include "world/runs/scripted_remote.h"

namespace {

using namespace orvex::runs;
using orvex::world::Entry;
using testing::IsEmpty;

constexpr std::uint64_t kEvery = ORVEX_SCHEDULE_EVERY;

// A kind of run; the schedules of all kinds are explored.
struct Kind {
  const char* name;
  void (*prepare)(ServiceRun& run, ScriptedRemote& remote);
  // Of the lines that every block makes, those of these blocks count.
  std::set<std::int64_t> blocks;
};

void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.name;
}

// What became of one schedule.
struct Outcome {
  Violations violations;
  bool isFollowed = false;
  std::vector<Preemption> choices;
};

class Schedules : public testing::TestWithParam<Kind> {
protected:
  Outcome Perform(const Schedule& schedule, std::ostream* journal = nullptr) const {
    ServiceRun run(m_Sound.Path());
    PrepareGoodRun(run);
    ScriptedRemote remote(run.world);
    GetParam().prepare(run, remote);
    std::int64_t block = 0;
    ScheduleFollower follower(run, schedule, [&](const Entry& entry) {
      block = NumberAfter(entry.text, "I0 buffer: ").value_or(block);
      return entry.thread != "delivery" || GetParam().blocks.count(block) > 0;
    });
    EXPECT_TRUE(run.Start());
    static_cast<void>(run.ToEnd());
    if (journal != nullptr) {
      run.world.journal.Print(*journal);
    }
    return {CheckRun(run), follower.IsFollowed(), follower.Choices()};
  }
  // Performs it and says how to do so again when a rule is broken; a file says so when the process does not survive.
  Outcome Explore(const Schedule& schedule) const {
    const std::string again = "ORVEX_SCHEDULE=" + std::string(GetParam().name) + "/" + ToText(schedule);
    std::ofstream(m_UnderWay) << again << std::endl;
    Outcome outcome = Perform(schedule);
    EXPECT_TRUE(outcome.isFollowed) << again;
    EXPECT_THAT(outcome.violations, IsEmpty()) << "again: " << again;
    return outcome;
  }

  void SetUp() override { std::cout << "the schedule that is under way stands in " << m_UnderWay << std::endl; }
  void TearDown() override { std::remove(m_UnderWay.c_str()); }

private:
  const std::string m_UnderWay = testing::TempDir() + "orvex_schedule_" + std::to_string(::getpid());
  orvex::test::SilentWave m_Sound{0.5};
};

TEST_P(Schedules, WithOnePreemptionAndADrawnShareOfThoseWithTwoKeepAllRules) {
  if (const char* const wanted = std::getenv("ORVEX_SCHEDULE")) {
    const std::string text = wanted;
    const std::string own = std::string(GetParam().name) + "/";
    if (!StartsWith(text, own)) {
      GTEST_SKIP() << "another kind of run is asked for";
    }
    EXPECT_THAT(Perform(ParseSchedule(text.substr(own.size())), &std::cout).violations, IsEmpty());
    return;
  }
  const auto every = static_cast<std::size_t>(FromEnvironment("ORVEX_SCHEDULE_EVERY", kEvery));
  ASSERT_GT(every, 0U);
  const std::vector<Preemption> all = Explore({}).choices;
  std::size_t ofTwo = 0;
  std::vector<Preemption> first;
  std::vector<std::vector<Preemption>> second;
  for (std::size_t i = 0; i < all.size(); i += every) {
    first.push_back(all[i]);
    second.push_back(Explore({all[i]}).choices);
    ofTwo += second.back().size();
  }
  std::mt19937_64 random(FromEnvironment("ORVEX_SCHEDULE_SEED", 1));
  const std::uint64_t drawn = std::min<std::uint64_t>(FromEnvironment("ORVEX_SCHEDULES", 500 / every), ofTwo);
  for (std::uint64_t i = 0; i < drawn; ++i) {
    auto number = static_cast<std::size_t>(random() % ofTwo);
    std::size_t at = 0;
    while (number >= second[at].size()) {
      number -= second[at++].size();
    }
    Explore({first[at], second[at][number]});
  }
  std::cout << first.size() << " of " << all.size() << " schedules with one preemption, " << drawn << " of " << ofTwo
            << " with two\n";
}

INSTANTIATE_TEST_SUITE_P(
    Of, Schedules,
    testing::Values(Kind{"Found",
                         [](ServiceRun&, ScriptedRemote& remote) {
                           remote.Hear(50, Heard::k17kHz);
                           remote.Hear(53, Heard::k19kHz);
                           remote.Hear(54, Heard::kWeak19kHz);
                           remote.Hear(55, Heard::k17kHz);
                         },
                         {1, 4, 5, 34, 35, 36, 50, 53, 54, 55}},
                    Kind{"Nothing", [](ServiceRun&, ScriptedRemote&) {}, {1, 5, 35, 36, 58}},
                    Kind{"BusyRemote",
                         [](ServiceRun& run, ScriptedRemote& remote) {
                           run.world.answers.Next("bt_hid_send_rc_command", {kVoiceInProgress, kVoiceInProgress});
                           run.world.answers.Next("bt_hid_rc_stop_sending_voice", {kVoiceInProgress});
                           remote.Hear(50, Heard::k19kHz);
                           remote.Hear(52, Heard::k17kHz);
                         },
                         {1, 35, 52, 53}}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
