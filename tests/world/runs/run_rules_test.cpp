// The rules for every run notice a run that breaks them.
#include "world/runs/run_rules.h"

#include <gmock/gmock.h>

#include <functional>

#include "world/runs/golden_run.h"
#include "world/runs/good_room.h"

namespace {

using orvex::runs::CheckRun;
using orvex::runs::GoldenRun;
using orvex::runs::ServiceRun;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

// Something that must not be so after a run, and a word of what the rules say to it.
struct Breach {
  const char* name;
  std::function<void(ServiceRun& run)> commit;
  const char* word;
};

void PrintTo(const Breach& breach, std::ostream* out) {
  *out << breach.name;
}

void Log(ServiceRun& run, const std::string& thread, const std::string& text, const std::string& file = "") {
  run.world.journal.Add({run.world.scheduler.Now(), thread, text, file, ""});
}

class Rules : public GoldenRun, public testing::WithParamInterface<Breach> {
protected:
  Rules() {
    orvex::runs::PrepareGoodRun(run);
    remote.HearThreeBuffersLate();
  }
};

TEST_P(Rules, NoticeABreach) {
  RunToEnd();
  ASSERT_THAT(CheckRun(run), IsEmpty());
  GetParam().commit(run);
  EXPECT_THAT(CheckRun(run), Contains(HasSubstr(GetParam().word)));
}

INSTANTIATE_TEST_SUITE_P(
    All, Rules,
    testing::Values(
        Breach{"ASecondDestroyStep", [](ServiceRun& run) { Log(run, "main", "I0 Destroy", "OrvexManager.cpp"); },
               "does not run once"},
        Breach{"WorkAfterTheRequestToEnd",
               [](ServiceRun& run) {
                 Log(run, "main", "> ui_app_exit()");
                 Log(run, "main", "I0 Create");
               },
               "between the request to end"},
        Breach{"ALaterLine",
               [](ServiceRun& run) {
                 run.world.journal.Add({std::chrono::seconds(20), "main", "I0 Done drop", "", ""});
               },
               "goes on after its end"},
        Breach{"AnUnknownLine", [](ServiceRun& run) { Log(run, "main", "I0 hello"); }, "no such line"},
        Breach{"AForeignThread", [](ServiceRun& run) { Log(run, "worker", "I0 Create"); }, "not on the thread"},
        Breach{"AnotherVolume", [](ServiceRun& run) { run.world.volume = 3; }, "mute or volume"},
        Breach{"AnotherMute", [](ServiceRun& run) { run.world.muted = false; }, "mute or volume"},
        Breach{"AnotherCallForTheSpeaker",
               [](ServiceRun& run) { Log(run, "main", "> sound_manager_set_tv_master_volume(1) = 0"); },
               "asked too much"},
        Breach{"AnotherDelay", [](ServiceRun& run) { run.world.delayMs = 52; }, "the delay is neither"},
        Breach{"AWrongCorrection", [](ServiceRun& run) { Log(run, "main", "> avoc_set_delay(52, 1) = 0"); },
               "a wrong delay"},
        Breach{"AWrongDifference", [](ServiceRun& run) { Log(run, "main", "I0 diff time = 0.0330\n"); },
               "another difference"},
        Breach{"APairTooFarApart",
               [](ServiceRun& run) { Log(run, "delivery", "I0 @ [RESULT] [50] - [70] : 0.3300 s\n"); },
               "a pair that is none"},
        Breach{"ARecordTooMany",
               [](ServiceRun& run) { Log(run, "main", "I0 text = {result=pass;delay=51;du=904;terminate=done}"); },
               "not one end record"},
        Breach{"AWrongRecord",
               [](ServiceRun& run) { Log(run, "main", "I0 text = {result=fail;delay=51;du=904;terminate=done}"); },
               "expected I0 text = {result=pass"},
        Breach{"ARecordThatNobodySent",
               [](ServiceRun& run) {
                 run.world.events.push_back({"21_remocon", "ORVEXSET", "EV012", "{}"});
               },
               "other records"},
        Breach{"ATimer", [](ServiceRun& run) { run.world.openTimers = 1; }, "left behind: a timer"},
        Breach{"AnAlarm", [](ServiceRun& run) { run.world.openAlarms = 1; }, "left behind: an alarm"},
        Breach{"AThread", [](ServiceRun& run) { Log(run, "main", "> pthread_create() = 0"); }, "left behind: a thread"},
        Breach{"ASubscription",
               [](ServiceRun& run) {
                 run.world.subscriptions.push_back({"db/x", nullptr, nullptr});
               },
               "left behind: the optical"},
        Breach{"AReceiver", [](ServiceRun& run) { run.world.voiceCallback = [](const VoiceData*, void*) {}; },
               "left behind: the receiver"},
        Breach{"TheVoice", [](ServiceRun& run) { run.world.voiceSending = true; }, "left behind: the remote"},
        Breach{"AWorker", [](ServiceRun& run) { run.world.runningWorkers = 1; }, "left behind: a worker"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(GoldenRun, ARunThatHasNotEndedBreaksTheRules) {
  ASSERT_TRUE(run.Start());
  EXPECT_THAT(CheckRun(run), Contains("the process does not end"));
  run.Terminate();
  ASSERT_TRUE(run.ToEnd());
}

}  // namespace
