// SendEvent(): what reaches the application, when, and in which order.
#include <array>

#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

using testing::ElementsAre;

class Events : public PortTest {};

TEST_F(Events, AreDeliveredInTheirOrderAndNeverInsideTheCall) {
  application.onCreate = [&] {
    for (const std::int32_t type : {7, 5, 6}) {
      application.Send(type);
      EXPECT_THAT(application.calls, ElementsAre("create")) << "inside the call";
    }
  };
  application.Until("three events", [&] { return application.calls.size() == 4; }).Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "event 7", "event 5", "event 6", "destroy"));
}

TEST_F(Events, OfAHandlerComeAfterItAndAfterThoseThatWereQueued) {
  bool isHandling = false;
  application.onCreate = [&] {
    application.Send(1);
    application.Send(2);
  };
  application.onEvent = [&](std::int32_t type) {
    EXPECT_FALSE(isHandling) << "event " << type << " inside another";
    isHandling = true;
    if (type == 1) {
      application.Send(3);
      application.Send(4);
    }
    isHandling = false;
  };
  application.Until("four events", [&] { return application.calls.size() == 5; }).Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "event 1", "event 2", "event 3", "event 4", "destroy"));
}

TEST_F(Events, OfAThreadAndOfTheMainLoopHaveOneOrder) {
  // The main loop waits for each thread, so there is one true order.
  constexpr std::int32_t kEvents = 100;
  std::int32_t next = 0;
  application.onCreate = [&] {
    for (std::int32_t type = 0; type < kEvents; type += 2) {
      application.Send(type);
      Thread([&] { application.Send(type + 1); }).Join();
    }
  };
  application.onEvent = [&](std::int32_t type) { EXPECT_EQ(type, next++); };
  application.Until("all events", [&] { return next == kEvents; }).Run();
}

TEST_F(Events, OfFourThreadsAreAllDeliveredOneAtATimeOnTheMainLoop) {
  constexpr std::size_t kThreads = 4;
  constexpr std::size_t kEvents = 500;
  std::vector<std::unique_ptr<Thread>> threads;
  application.onCreate = [&] {
    for (std::size_t number = 0; number < kThreads; ++number) {
      threads.push_back(std::make_unique<Thread>([&, number] {
        for (std::size_t event = 0; event < kEvents; ++event) {
          application.Send(static_cast<std::int32_t>(number * kEvents + event));
        }
      }));
    }
  };
  std::array<std::size_t, kThreads> next{};
  std::size_t count = 0;
  const std::string mainLoop = Port().CurrentThread();
  application.onEvent = [&](std::int32_t type) {
    const auto number = static_cast<std::size_t>(type);
    EXPECT_EQ(Port().CurrentThread(), mainLoop);
    EXPECT_EQ(number % kEvents, next.at(number / kEvents)++) << "of one sender";
    ++count;
  };
  application.Until("all events", [&] { return count == kThreads * kEvents; }).Run();
}

TEST_F(Events, AreDroppedOnceTheEndIsRequested) {
  const FwEvent late(3, application.GetEventReceiver());
  application.onCreate = [&] {
    application.Send(1);
    application.Send(2);
  };
  application.onEvent = [&](std::int32_t) {
    ui_app_exit();
    EXPECT_FALSE(SendEvent(late));
    Thread([&] { EXPECT_FALSE(SendEvent(late)); }).Join();
  };
  application.onDestroy = [&] { EXPECT_FALSE(SendEvent(late)); };
  application.UntilTheEnd().Run();
  EXPECT_FALSE(SendEvent(late));
  EXPECT_THAT(application.calls, ElementsAre("create", "event 1", "destroy"));
}

TEST_F(Events, ForNobodyAreAcceptedAndDeliveredToNobody) {
  application.onCreate = [&] {
    EXPECT_TRUE(SendEvent(FwEvent(1, nullptr)));
    application.Send(2);
  };
  application.Until("the event that has a receiver", [&] { return application.calls.size() == 2; }).Run();
  EXPECT_THAT(application.calls, ElementsAre("create", "event 2", "destroy"));
}

TEST_F(Events, SentBeforeTheMainLoopAreRefusedOrDeliveredAfterTheCreateStep) {
  const bool isQueued = SendEvent(FwEvent(1, application.GetEventReceiver()));
  application.onCreate = [&] { application.Send(2); };
  application.Until("the event of the create step", [&] { return application.calls.back() == "event 2"; }).Run();
  if (isQueued) {
    EXPECT_THAT(application.calls, ElementsAre("create", "event 1", "event 2", "destroy"));
  } else {
    EXPECT_THAT(application.calls, ElementsAre("create", "event 2", "destroy"));
  }
}

}  // namespace
}  // namespace orvex::conformance
