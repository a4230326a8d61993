// AppMain(): create step, main loop, destroy step, and the ways in which the main loop ends.
#include <signal.h>

#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

using testing::ElementsAre;

class Lifecycle : public PortTest {};

TEST_F(Lifecycle, CreatesLivesAndDestroysOnceOnOneThread) {
  const std::string mainLoop = Port().CurrentThread();
  application.onCreate = [&] {
    EXPECT_EQ(Port().CurrentThread(), mainLoop);
    application.Send(1);
  };
  application.onDestroy = [&] { EXPECT_EQ(Port().CurrentThread(), mainLoop); };
  application.Until("the event", [&] { return application.calls.size() == 2; }).Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "event 1", "destroy"));
}

TEST_F(Lifecycle, EndsAtOnceWithTheDestroyStepWhenTheCreateStepAnswersFalse) {
  application.createAnswer = false;
  application.onCreate = [&] { application.Send(1); };
  application.UntilTheEnd();
  AppMain(0, nullptr, &application);
  EXPECT_THAT(application.calls, ElementsAre("create", "destroy"));
}

TEST_F(Lifecycle, EndsWithTheDestroyStepWhenTheEndIsRequestedInTheCreateStep) {
  application.onCreate = [&] {
    application.Send(1);
    ui_app_exit();
    EXPECT_THAT(application.calls, ElementsAre("create")) << "inside the call";
  };
  application.UntilTheEnd().Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "destroy"));
}

TEST_F(Lifecycle, DestroysAfterTheCallerOfTheEndHasReturnedAndOnceForTwoRequests) {
  application.onCreate = [&] { application.Send(1); };
  application.onEvent = [&](std::int32_t) {
    ui_app_exit();
    ui_app_exit();
    EXPECT_THAT(application.calls, ElementsAre("create", "event 1")) << "inside the call";
  };
  application.onDestroy = [] { ui_app_exit(); };
  application.UntilTheEnd().Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "event 1", "destroy"));
}

TEST_F(Lifecycle, KeepsACopyOfTheIdentifier) {
  std::string identifier = "org.velta.copied";
  const ScriptedApplication named(Port(), identifier.c_str());
  identifier.assign(identifier.size(), 'x');
  EXPECT_EQ(named.GetIdentifier(), "org.velta.copied");
}

TEST_F(Lifecycle, AddressesEventsToTheApplicationItself) {
  EXPECT_EQ(&application.GetEventReceiver()->GetApplication(), &application);
}

class TerminationSignal : public PortTest, public testing::WithParamInterface<int> {};

TEST_P(TerminationSignal, EndsTheMainLoopWithTheDestroyStep) {
  ORVEX_NEEDS(kSendTerminationSignal);
  const FwEvent late(1, application.GetEventReceiver());
  application.onDestroy = [&] { EXPECT_FALSE(SendEvent(late)) << "as after ui_app_exit()"; };
  application.Do([&] { Port().SendTerminationSignal(GetParam()); }).UntilTheEnd().Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "destroy"));
}

TEST_P(TerminationSignal, IsNotLostInTheCreateStep) {
  ORVEX_NEEDS(kSendTerminationSignal);
  application.onCreate = [&] { Port().SendTerminationSignal(GetParam()); };
  application.UntilTheEnd().Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "destroy"));
}

TEST_P(TerminationSignal, IsNotLostBeforeTheMainLoopRuns) {
  ORVEX_NEEDS(kSendTerminationSignal);
  Port().SendTerminationSignal(GetParam());
  application.UntilTheEnd().Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "destroy"));
}

TEST_P(TerminationSignal, InTheDestroyStepDoesNotRepeatIt) {
  ORVEX_NEEDS(kSendTerminationSignal);
  application.onDestroy = [&] { Port().SendTerminationSignal(GetParam()); };
  application.Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "destroy"));
}

INSTANTIATE_TEST_SUITE_P(Of, TerminationSignal, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGQUIT),
                         [](const auto& signal) { return std::string("SIG") + sigabbrev_np(signal.param); });

}  // namespace
}  // namespace orvex::conformance
