// The application object: create and destroy step, watchdog, running-time limit, optical change flag, way of events.
#include "Application/OrvexApp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "support/journal.h"

namespace {

using orvex::test::During;
using orvex::test::LastOf;
using orvex::test::Texts;
using orvex::world::World;
using testing::ElementsAre;
using testing::IsSupersetOf;

constexpr char kOpticalKey[] = "db/device-detector-service/optical_change_flag";

class App : public testing::Test {
protected:
  World world;
  COrvexApp app;

  void CreateAndForgetEvents() {
    world.Create(app);
    world.journal.Clear();
  }
};

TEST_F(App, CarriesItsIdentifierAndFixedAnswers) {
  EXPECT_EQ(app.GetIdentifier(), "org.velta.orvex-service");
  EXPECT_FALSE(app.t_HasWindow());
  EXPECT_FALSE(app.t_IsSuspendable());
  EXPECT_TRUE(app.t_RunsInBackground());
  EXPECT_EQ(g_pOrvexApp, &app);
}

TEST_F(App, CreateRegistersWithTheWatchdogThenStartsTheRun) {
  EXPECT_THAT(
      During(world, [this] { EXPECT_TRUE(app.t_OnCreate()); }),
      ElementsAre("I0 Orvex Service Create!", "> watchdog_register(120) = 0", "> FwAlarm::Create(60000, forever)",
                  "> FwAlarm::SetAlarmCallback()", "I0 Create", "> ecore_timer_add(10.000000)",
                  "> settings_subscribe(\"db/device-detector-service/optical_change_flag\") = 0",
                  "> sound_manager_get_device_mute(0) = 0", "I0 TV speaker mute status.[0]", "> SendEvent(10000)",
                  "I0 Orvex Service Create Done"));
  EXPECT_EQ(world.alarmInput, &app);
  EXPECT_EQ(world.alarmUserData, &app);
  app.t_OnDestroy();
}

TEST_F(App, ARejectedWatchdogRegistrationIsLoggedAndTheRunGoesOn) {
  world.answers.Always("watchdog_register", -1);
  EXPECT_THAT(During(world, [this] { EXPECT_TRUE(app.t_OnCreate()); }),
              IsSupersetOf({"E2 Failed to register Orvex Service in gravet!", "> FwAlarm::Create(60000, forever)",
                            "> SendEvent(10000)", "I0 Orvex Service Create Done"}));
  app.t_OnDestroy();
}

TEST_F(App, AnotherNegativeRegistrationResultIsNoRejection) {
  world.answers.Always("watchdog_register", -2);
  During(world, [this] { app.t_OnCreate(); });
  EXPECT_FALSE(world.journal.Has("E2 Failed to register Orvex Service in gravet!"));
  app.t_OnDestroy();
}

TEST_F(App, NotifiesTheWatchdogOncePerMinuteForAsLongAsItLives) {
  // Nothing reaches the main loop that would end the run: the timer of 10 s is the first thing to fail here.
  world.answers.Always("ecore_timer_add", 0);
  world.Create(app);
  world.AdvanceMs(59999);
  EXPECT_EQ(world.journal.Count("> watchdog_notify() = 0"), 0);
  world.AdvanceMs(1);
  EXPECT_EQ(world.journal.Count("> watchdog_notify() = 0"), 1);
  EXPECT_EQ(world.journal.Count("D0 notify systemd..."), 1);
  world.AdvanceMs(120000);
  EXPECT_EQ(world.journal.Count("> watchdog_notify() = 0"), 3);
  EXPECT_EQ(world.journal.Count("> FwAlarm's callback = true"), 3);
}

TEST_F(App, EveryFailedNotificationIsLoggedAndTheNextOneStillComes) {
  world.answers.Always("ecore_timer_add", 0);
  world.answers.Always("watchdog_notify", -1);
  world.Create(app);
  world.AdvanceMs(180000);
  EXPECT_EQ(world.journal.Count("> watchdog_notify() = -1"), 3);
  EXPECT_EQ(world.journal.Count("E2 Failed to notify watchdog"), 3);
  EXPECT_EQ(world.journal.Count("> FwAlarm's callback = false"), 3);
}

TEST_F(App, DestroyReportsStopsDeletesTheTimerRestoresAndEndsTheAlarmInThisOrder) {
  CreateAndForgetEvents();
  app.t_OnDestroy();
  const Texts texts = world.journal.Texts();
  EXPECT_THAT(texts, testing::Contains("I0 text = {result=fail;delay=100;du=" +
                                       std::to_string(static_cast<std::int32_t>(
                                           static_cast<std::uint32_t>(1'700'000'000U * 1000ULL))) +
                                       ";terminate=etc}"));
  EXPECT_THAT(
      Texts(texts.begin(), texts.begin() + 2),
      ElementsAre("I0 Destroy", "> settings_unsubscribe(\"db/device-detector-service/optical_change_flag\") = 0"));
  EXPECT_THAT(LastOf(texts, 9), ElementsAre("I0 Stop Orvex[3]", "I0 stop BT Recoder", "I0 BT Recoder is not started",
                                            "I0 stop Sound Player", "I0 Sound Player is not started",
                                            "> ecore_timer_del()", "I0 ", "> FwAlarm::Destroy()", "> ~FwAlarm()"));
  EXPECT_EQ(world.openAlarms, 0);
  EXPECT_EQ(world.openTimers, 0);
}

TEST_F(App, AnAlarmThatCouldNotBeMadeIsFreedButNotDestroyed) {
  world.answers.Always("FwAlarm::Create", 0);
  CreateAndForgetEvents();
  app.t_OnDestroy();
  EXPECT_FALSE(world.journal.Has("> FwAlarm::Destroy()"));
  EXPECT_TRUE(world.journal.Has("> ~FwAlarm()"));
}

TEST_F(App, DestroyWithoutCreateHasNoTimerAndNoAlarmToEnd) {
  world.journal.Clear();
  app.t_OnDestroy();
  EXPECT_FALSE(world.journal.Has("> ecore_timer_del()"));
  EXPECT_FALSE(world.journal.Has("> ~FwAlarm()"));
}

TEST_F(App, ARunThatDoesNotEndByItselfEndsAfterTenSeconds) {
  world.Create(app);
  world.AdvanceMs(9999.9);
  EXPECT_FALSE(world.HasEnded());
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_DOUBLE_EQ(world.EndedAtMs(), 10000.0);
  EXPECT_EQ(world.journal.Count("I0 ORVEX_EXIT"), 1);
  EXPECT_EQ(world.journal.CountStartingWith("I0 text = {result=fail;"), 1);
  EXPECT_TRUE(world.journal.Has("> bt_hid_rc_stop_sending_voice(null) = 0")) << "the recorder was stopped";
  EXPECT_FALSE(world.journal.Has("> ecore_timer_del()")) << "the timer had ended by itself";
  EXPECT_EQ(world.openTimers, 0);
}

TEST_F(App, TheRunningTimeCallbackWithoutAControllerDoesNothing) {
  world.journal.Clear();
  EXPECT_EQ(OrvexManager::m_OnRunningTimeEndTimerCallback(nullptr), 0);
  EXPECT_THAT(world.journal.Texts(), ElementsAre("I0 "));
}

TEST_F(App, AnyChangeOfTheOpticalFlagEndsTheRunAtOnce) {
  world.Create(app);
  world.AdvanceMs(100);
  world.ChangeSetting(kOpticalKey, 0);
  world.journal.Clear();
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_DOUBLE_EQ(world.EndedAtMs(), 100.0);
  EXPECT_EQ(world.journal.Texts().at(0), "I0 ");
  EXPECT_EQ(world.journal.Texts().at(1), "> SendEvent(10007)");
  EXPECT_FALSE(world.journal.Has("> settings_get_int(\"db/device-detector-service/optical_change_flag\") = 0"));
}

TEST_F(App, ANotificationThatNamesAnotherKeyIsIgnored) {
  world.Create(app);
  world.AdvanceMs(1);
  world.NotifySetting(kOpticalKey, "db/device-detector-service/optical_change_flag2");
  world.journal.Clear();
  world.AdvanceMs(1);
  EXPECT_THAT(world.journal.Texts(), ElementsAre("I0 "));
}

TEST_F(App, ANotificationWithoutANameIsAProgrammingErrorOfThePort) {
  world.Create(app);
  world.AdvanceMs(1);
  world.NotifySetting(kOpticalKey, nullptr);
  EXPECT_THROW(world.AdvanceMs(1), std::logic_error);
}

TEST_F(App, AnOpticalFlagNotificationWithoutAControllerIsLogged) {
  world.journal.Clear();
  OrvexManager::m_OnOpticalVconfCallback(nullptr, nullptr);
  EXPECT_THAT(world.journal.Texts(), ElementsAre("I0 ", "E2 pThis is NULL"));
}

TEST_F(App, AnEventThatTheFrameworkTakesIsNotDispatched) {
  world.consumesEvents = true;
  FwEvent event(10007, app.GetEventReceiver());
  EXPECT_THAT(During(world, [&] { EXPECT_TRUE(app.t_OnEvent(&event)); }), ElementsAre("E0 pEvent.type 10007"));
}

TEST_F(App, UnknownEventsAreLoggedAndTaken) {
  for (const int type : {9999, 10008, 0, -1}) {
    FwEvent event(type, app.GetEventReceiver());
    EXPECT_THAT(During(world, [&] { EXPECT_TRUE(app.t_OnEvent(&event)); }),
                ElementsAre("E0 pEvent.type " + std::to_string(type), "E2 other event"));
  }
}

TEST(AppAtProgramStart, AsksForTheHdmiInputsThenMakesTheApplication) {
  World world;
  const std::unique_ptr<COrvexApp> application(COrvexApp::CreateAtProgramStart());
  ASSERT_NE(application, nullptr);
  EXPECT_EQ(g_pOrvexApp, application.get());
  EXPECT_EQ(world.journal.Texts().at(0), "> tv_get_hdmi_input_count()");
  EXPECT_EQ(world.journal.Texts().at(1), "> FwEflApplication(\"org.velta.orvex-service\")");
}

}  // namespace
