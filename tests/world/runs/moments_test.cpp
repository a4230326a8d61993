// Something happens at each step of a run: right after each line of its journal, or after each fourth with sanitizers
// and under emulation.
#include <gmock/gmock.h>

#include <optional>
#include <set>

#include "Application/OrvexEventId.h"
#include "support/wave_file.h"
#include "world/runs/good_room.h"
#include "world/runs/journal_reading.h"
#include "world/runs/run_rules.h"
#include "world/runs/scripted_remote.h"

namespace {

using namespace orvex::runs;
using orvex::world::Entry;
using orvex::world::Time;
using testing::IsEmpty;

// Of the lines that every block makes, those of these blocks; the tones are in 50 and 53.
const std::set<std::int64_t> kBlocks = {1, 4, 5, 34, 35, 36, 50, 53};
// From the happening to the destroy step: a second try at the recorder thread, and a remote that is slow to stop, are
// not among what happens here.
constexpr Time kPrompt = std::chrono::milliseconds(1);
constexpr char kDestroyStep[] = "> settings_unsubscribe(\"db/device-detector-service/optical_change_flag\") = 0";

// The line after the time limit has begun to run.
constexpr char kLimitRuns[] = "> settings_subscribe(\"db/device-detector-service/optical_change_flag\") = 0";

enum class Ends { kYes, kNo };

struct Happening {
  const char* name;
  std::function<void(ServiceRun& run)> happen;
  Ends ends;                                      // does it end the run at once?
  const char* from = "I0 Orvex Service Create!";  // the first line after which it can happen
};

void PrintTo(const Happening& happening, std::ostream* out) {
  *out << happening.name;
}

class Moments : public testing::TestWithParam<Happening> {
protected:
  struct Run {
    explicit Run(const orvex::test::SilentWave& sound) : service(sound.Path()) {
      PrepareGoodRun(service);
      remote.HearThreeBuffersLate();
    }
    ServiceRun service;
    ScriptedRemote remote{service.world};
  };

  // The numbers of the lines after which it is to happen.
  std::vector<std::size_t> Steps() const {
    Run run(m_Sound);
    EXPECT_TRUE(run.service.Start() && run.service.ToEnd());
    std::vector<std::size_t> steps;
    std::int64_t block = 1;
    bool canHappen = false;
    const std::vector<Entry>& entries = run.service.world.journal.Entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
      canHappen = canHappen || entries[i].text == GetParam().from;
      block = NumberAfter(entries[i].text, "I0 buffer: ").value_or(block);
      if (canHappen && (entries[i].thread != "delivery" || kBlocks.count(block) > 0)) {
        steps.push_back(i);
      }
    }
    return steps;
  }
  void ExpectRunWith(std::size_t step) const {
    Run run(m_Sound);
    std::optional<Time> happened;
    orvex::world::Journal& journal = run.service.world.journal;
    journal.onAdd = [&] {
      if (!happened.has_value() && journal.Entries().size() == step + 1) {
        happened = journal.Entries().back().at;
        GetParam().happen(run.service);
      }
    };
    ASSERT_TRUE(run.service.Start());
    EXPECT_TRUE(run.service.ToEnd());
    SCOPED_TRACE("after line " + std::to_string(step + 1) + ": " + journal.Entries()[step].text);
    EXPECT_THAT(CheckRun(run.service), IsEmpty());
    if (GetParam().ends == Ends::kYes) {
      EXPECT_LE(journal.Find(kDestroyStep).at, *happened + kPrompt);
    }
  }

private:
  orvex::test::SilentWave m_Sound{0.5};
};

TEST_P(Moments, KeepAllRules) {
  const std::vector<std::size_t> steps = Steps();
  for (std::size_t i = 0; i < steps.size(); i += ORVEX_MOMENT_EVERY) {
    ExpectRunWith(steps[i]);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, Moments,
    testing::Values(Happening{"OpticalFlag", [](ServiceRun& run) { run.SwitchOpticalFlag(); }, Ends::kYes},
                    Happening{"TimeLimit", [](ServiceRun& run) { run.ReachTimeLimit(); }, Ends::kYes, kLimitRuns},
                    Happening{"Termination", [](ServiceRun& run) { run.Terminate(); }, Ends::kYes},
                    Happening{"GrantedRestart",
                              [](ServiceRun& run) {
                                run.ChangeDelay(80);
                                run.SendServiceEvent(ORVEX_RESTART_BT_RECODING);
                              },
                              Ends::kNo},
                    Happening{"RefusedRestart",
                              [](ServiceRun& run) { run.SendServiceEvent(ORVEX_RESTART_BT_RECODING); }, Ends::kNo},
                    Happening{"ConsentTakenBack", [](ServiceRun& run) { run.Consent(0); }, Ends::kNo},
                    Happening{"ConsentAgain", [](ServiceRun& run) { run.Consent(1); }, Ends::kNo},
                    Happening{"FinishedRecording",
                              [](ServiceRun& run) { run.SendServiceEvent(ORVEX_FINISH_BT_RECODING); }, Ends::kNo},
                    Happening{"AnEndOfSync", [](ServiceRun& run) { run.SendServiceEvent(ORVEX_END_SYNC); }, Ends::kNo}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
