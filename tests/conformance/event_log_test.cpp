// The event-log collector: a record is kept whole, or not at all.
#include "orvex/platform/event_log.h"
#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

class EventLog : public PortTest {
protected:
  static int Add(const std::string& value) {
    return event_log_add_sync(event_log_get_instance(), "org.velta.conformance", "event", "category", value);
  }
};

TEST_F(EventLog, KeepsAnAcceptedRecordWholeAndInOrder) {
  ORVEX_NEEDS(kReadEventRecords);
  const std::string texts[] = {"plain", "", "{\"quoted\": \"\\ two\nlines – UTF-8\"}", std::string(20000, 'x')};
  OnMainLoop([&] {
    ASSERT_NE(event_log_get_instance(), nullptr);
    for (const std::string& text : texts) {
      EXPECT_EQ(Add(text), kEventLogAccepted);
    }
  });
  const std::vector<EventRecord> records = Port().EventRecords();
  ASSERT_EQ(records.size(), std::size(texts));
  for (std::size_t index = 0; index < records.size(); ++index) {
    EXPECT_EQ(records[index].service, "org.velta.conformance");
    EXPECT_EQ(records[index].event, "event");
    EXPECT_EQ(records[index].category, "category");
    EXPECT_EQ(records[index].value, texts[index]);
  }
}

TEST_F(EventLog, HoldsTheRecordWhenTheCallReturns) {
  ORVEX_NEEDS(kReadEventRecords);
  OnMainLoop([&] {
    ASSERT_EQ(Add("now"), kEventLogAccepted);
    EXPECT_EQ(Port().EventRecords().size(), 1U);
  });
}

TEST_F(EventLog, ThatCannotBeReachedSaysSo) {
  ORVEX_NEEDS(kBreakEventLog);
  Port().Break(Ability::kBreakEventLog);
  OnMainLoop([] {
    if (event_log_get_instance() != nullptr) {
      EXPECT_LT(Add("lost"), 0);
    }
  });
}

}  // namespace
}  // namespace orvex::conformance
