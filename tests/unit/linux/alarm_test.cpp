// Alarms: how often they go off, and that they can be ended and remade at any time.
#include <functional>
#include <memory>

#include "unit/linux/loop_application.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

class Alarm : public PortTest {
protected:
  static bool OnAlarm(void* test) {
    auto& self = *static_cast<Alarm*>(test);
    ++self.m_Count;
    self.m_OnAlarm();
    return false;  // failed work does not end an alarm
  }

  void RunWith(int repeatCount) {
    m_Application.onCreate = [this, repeatCount] {
      m_Alarm = std::make_unique<FwAlarm>();
      m_Alarm->SetAlarmCallback(&OnAlarm, this);
      EXPECT_TRUE(m_Alarm->Create(&m_Application, 1, repeatCount));
      EXPECT_TRUE(m_Alarm->IsActive());
    };
    m_Application.Run();
  }

  LoopApplication m_Application;
  std::unique_ptr<FwAlarm> m_Alarm;
  std::function<void()> m_OnAlarm = [] {};
  int m_Count = 0;
};

TEST_F(Alarm, GoesOnUntilItIsDestroyed) {
  m_OnAlarm = [this] {
    EXPECT_TRUE(m_Alarm->IsActive());
    if (m_Count == 5) {
      m_Alarm->Destroy();
      EXPECT_FALSE(m_Alarm->IsActive());
      ui_app_exit();
    }
  };
  RunWith(FwAlarm::kRepeatForever);
  EXPECT_EQ(m_Count, 5);
}

TEST_F(Alarm, EndsAfterItsRepetitionsAndCanBeMadeAnew) {
  m_OnAlarm = [this] {
    EXPECT_EQ(m_Alarm->IsActive(), m_Count != 3 && m_Count != 5);
    if (m_Count == 3) {
      EXPECT_TRUE(m_Alarm->Create(&m_Application, 1, 2));
    } else if (m_Count == 5) {
      ui_app_exit();
    }
  };
  RunWith(3);
  EXPECT_EQ(m_Count, 5);
}

TEST_F(Alarm, MayBeDeletedByItsOwnCallback) {
  m_OnAlarm = [this] {
    m_Alarm.reset();
    ui_app_exit();
  };
  RunWith(FwAlarm::kRepeatForever);
  EXPECT_EQ(m_Count, 1);
}

TEST_F(Alarm, MayBeRemadeByItsOwnCallback) {
  m_OnAlarm = [this] {
    m_Alarm->Destroy();
    if (m_Count == 3) {
      ui_app_exit();
    } else {
      EXPECT_TRUE(m_Alarm->Create(&m_Application, 1, FwAlarm::kRepeatForever));
    }
  };
  RunWith(FwAlarm::kRepeatForever);
  EXPECT_EQ(m_Count, 3);
}

TEST_F(Alarm, MayOutliveItsMainLoop) {
  m_OnAlarm = [] { ui_app_exit(); };
  RunWith(FwAlarm::kRepeatForever);
  EXPECT_FALSE(m_Alarm->IsActive());
  m_Alarm.reset();
}

TEST_F(Alarm, RefusesWhatMakesNoSenseAndASecondStart) {
  FwAlarm alarm;
  EXPECT_FALSE(alarm.Create(nullptr, 1000, 1)) << "without a main loop";
  m_Application.onCreate = [&] {
    EXPECT_FALSE(alarm.Create(nullptr, 0, 1));
    EXPECT_FALSE(alarm.Create(nullptr, 1000, 0));
    EXPECT_FALSE(alarm.Create(nullptr, 1000, -2));
    EXPECT_FALSE(alarm.IsActive());
    EXPECT_TRUE(alarm.Create(nullptr, 4294967295U, 1));
    EXPECT_FALSE(alarm.Create(nullptr, 1000, 1));
    EXPECT_TRUE(alarm.IsActive());
    alarm.Destroy();
    ui_app_exit();
  };
  m_Application.Run();
}

}  // namespace
}  // namespace orvex::port
