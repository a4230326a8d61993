// A log manager on a television in virtual time, whose owner agrees to telemetry or does not.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Util/OrvexLogManager.h"
#include "support/journal.h"

namespace orvex::test {

constexpr char kInstance[] = "> event_log_get_instance() = object";

class LogManagerTest : public testing::Test {
protected:
  static constexpr char kConsentKey[] = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";

  LogManagerTest() : manager(std::make_unique<COrvexLogManager>()) {}

  // The setting as a new process finds it.
  void Consent(int value) { world.settings[kConsentKey] = value; }
  // Somebody writes the setting; what the journal shows of the notification.
  Texts Write(int value) {
    return During(world, [&] {
      world.ChangeSetting(kConsentKey, value);
      world.AdvanceMs(0);
    });
  }

  // A record that differs from others in its value.
  static FwMessage Record(const std::string& value) {
    FwMessage message;
    message.body["event_name"] = "ORVEXSET";
    message.body["category_name"] = "EV012";
    message.body["value_string"] = value;
    return message;
  }
  void Keep(const Texts& values) {
    Consent(0);
    for (const std::string& value : values) {
      EXPECT_EQ(manager->AddEventLog(Record(value)), 1);
    }
  }
  Texts ValuesSent() const {
    Texts values;
    for (const world::EventRecord& record : world.events) {
      values.push_back(record.value);
    }
    return values;
  }

  // Journal of a look at the setting, and of one record under way to a collector that is known.
  static Texts Asked(int value) {
    return {std::string("> settings_get_int(\"") + kConsentKey + "\") = 0",
            "I0 defaultdisclaimeragree=" + std::to_string(value)};
  }
  static Texts CouldNotAsk(int result) {
    const std::string text = std::to_string(result);
    return {std::string("> settings_get_int(\"") + kConsentKey + "\") = " + text,
            "E2 (r=" + text + ") get defaultdisclaimeragree failed"};
  }
  static std::string Announced(const std::string& value) {
    return "I0 Service[] Event[ORVEXSET] Category[EV012] Value[" + value + "]";
  }
  static std::string Added(const std::string& value, int result) {
    return "> event_log_add_sync(21_remocon, ORVEXSET, EV012, " + value + ") = " + std::to_string(result);
  }
  static Texts Sent(const std::string& value) { return {Announced(value), Added(value, 1), "I0 add event log sync:1"}; }
  static Texts Refused(const std::string& value, int result) {
    return {Announced(value), Added(value, result), "I0 add event log sync:" + std::to_string(result),
            "E2 Could not send event log"};
  }

  world::World world;
  std::unique_ptr<COrvexLogManager> manager;
};

}  // namespace orvex::test
