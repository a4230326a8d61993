// An application for tests of the main loop: what happens is told by functions, and an alarm ends a loop that hangs.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "orvex/platform/application.h"

namespace orvex::port {

class LoopApplication : public FwEflApplication {
public:
  LoopApplication() : FwEflApplication("org.velta.loop-test") {}

  std::function<void()> onCreate = [] {};
  std::function<void()> onDestroy = [] {};
  std::function<void(std::int32_t)> onEvent = [](std::int32_t) {};
  std::function<Json::Value(const FwMessage&)> onMessage = [](const FwMessage&) { return Json::Value(); };
  bool createAnswer = true;
  // The lifecycle as it was: "create", "event 7", "destroy".
  std::vector<std::string> steps;

  int Run() { return AppMain(0, nullptr, this); }
  void Send(std::int32_t type) { EXPECT_TRUE(SendEvent(FwEvent(type, GetEventReceiver()))) << "event " << type; }

  bool t_HasWindow() override { return false; }
  bool t_IsSuspendable() override { return false; }
  bool t_RunsInBackground() override { return true; }

  bool t_OnCreate() override {
    steps.emplace_back("create");
    m_Guard.SetAlarmCallback(&LoopApplication::OnHang, this);
    EXPECT_TRUE(m_Guard.Create(this, kGuardMs, 1));
    onCreate();
    return createAnswer;
  }

  bool t_OnEvent(FwEvent* event) override {
    steps.push_back("event " + std::to_string(event->GetType()));
    onEvent(event->GetType());
    return true;
  }

  void t_OnDestroy() override {
    steps.emplace_back("destroy");
    onDestroy();
  }

  bool IfMessageReceived(const std::string& /*sender*/, const FwMessage& received, FwMessage& reply) override {
    reply.body = onMessage(received);
    return true;
  }

private:
  static constexpr std::uint32_t kGuardMs = 30000;

  static bool OnHang(void* /*application*/) {
    ADD_FAILURE() << "the main loop was not asked to end within 30 s";
    ui_app_exit();
    return true;
  }

  FwAlarm m_Guard;
};

}  // namespace orvex::port
