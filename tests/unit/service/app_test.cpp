// The application object: its watchdog, what it is notified of, and events that it does not hand on.
#include "Application/OrvexApp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "orvex/platform/watchdog.h"
#include "support/journal.h"

namespace {

using orvex::test::During;
using orvex::world::kOpticalFlagKey;
using orvex::world::World;
using testing::ElementsAre;
using testing::IsSupersetOf;

class App : public testing::Test {
protected:
  World world;
  COrvexApp app;
};

TEST_F(App, CarriesItsIdentifierAndFixedAnswers) {
  EXPECT_EQ(app.GetIdentifier(), "org.velta.orvex-service");
  EXPECT_FALSE(app.t_HasWindow());
  EXPECT_FALSE(app.t_IsSuspendable());
  EXPECT_TRUE(app.t_RunsInBackground());
  EXPECT_EQ(g_pOrvexApp, &app);
}

TEST_F(App, ItsAlarmCallsTheApplicationItself) {
  EXPECT_TRUE(app.t_OnCreate());
  EXPECT_EQ(world.alarmInput, &app);
  EXPECT_EQ(world.alarmUserData, &app);
  app.t_OnDestroy();
}

TEST_F(App, ARejectedWatchdogRegistrationIsLoggedAndTheRunGoesOn) {
  world.answers.Always("watchdog_register", kWatchdogFailed);
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
  // Without the timer of 10 s nothing ends the run.
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
  world.answers.Always("watchdog_notify", kWatchdogFailed);
  world.Create(app);
  world.AdvanceMs(180000);
  EXPECT_EQ(world.journal.Count("> watchdog_notify() = -1"), 3);
  EXPECT_EQ(world.journal.Count("E2 Failed to notify watchdog"), 3);
  EXPECT_EQ(world.journal.Count("> FwAlarm's callback = false"), 3);
}

TEST_F(App, AnAlarmThatCouldNotBeMadeIsFreedButNotDestroyed) {
  world.answers.Always("FwAlarm::Create", 0);
  world.Create(app);
  app.t_OnDestroy();
  EXPECT_FALSE(world.journal.Has("> FwAlarm::Destroy()"));
  EXPECT_TRUE(world.journal.Has("> ~FwAlarm()"));
}

TEST_F(App, DestroyWithoutCreateHasNoTimerAndNoAlarmToEnd) {
  world.journal.Clear();
  app.t_OnDestroy();
  EXPECT_FALSE(world.journal.Has("> ecore_timer_del()"));
  EXPECT_FALSE(world.journal.Has("> ~FwAlarm()"));
  EXPECT_EQ(world.journal.CountStartingWith("I0 text = {result=fail;"), 1) << "but it reports";
}

TEST_F(App, TheRunningTimeCallbackWithoutAControllerDoesNothing) {
  world.journal.Clear();
  EXPECT_EQ(OrvexManager::m_OnRunningTimeEndTimerCallback(nullptr), 0);
  EXPECT_THAT(world.journal.Texts(), ElementsAre("I0 "));
}

TEST_F(App, ANotificationThatNamesAnotherKeyIsIgnored) {
  world.Create(app);
  world.AdvanceMs(1);
  world.NotifySetting(kOpticalFlagKey, "db/device-detector-service/optical_change_flag2");
  world.journal.Clear();
  world.AdvanceMs(1);
  EXPECT_THAT(world.journal.Texts(), ElementsAre("I0 "));
}

TEST_F(App, ANotificationWithoutANameIsAProgrammingErrorOfThePort) {
  world.Create(app);
  world.AdvanceMs(1);
  world.NotifySetting(kOpticalFlagKey, nullptr);
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

}  // namespace
