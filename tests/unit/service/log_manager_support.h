// A log manager on a television in virtual time, whose owner agrees to telemetry or does not.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Util/OrvexLogManager.h"
#include "support/journal.h"

namespace orvex::test {

class LogManagerTest : public testing::Test {
protected:
  // The setting as a new process finds it.
  void Consent(int value) { world.settings[world::kConsentKey] = value; }
  // Somebody writes the setting, and the manager is notified.
  void Write(int value) {
    world.ChangeSetting(world::kConsentKey, value);
    world.AdvanceMs(0);
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
  // Whether the manager answers that it has sent or kept the record.
  bool Add(const std::string& value) {
    const int answer = manager->AddEventLog(Record(value));
    EXPECT_TRUE(answer == 0 || answer == 1) << answer;
    return answer == 1;
  }
  // The values that the collector was handed and has accepted.
  Texts ValuesSent() const {
    Texts values;
    for (const world::EventRecord& record : world.events) {
      values.push_back(record.value);
    }
    return values;
  }

  world::World world;
  std::unique_ptr<COrvexLogManager> manager = std::make_unique<COrvexLogManager>();
};

}  // namespace orvex::test
