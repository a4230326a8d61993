// The event-log collector: accepted records are whole lines, whatever happened to the file before.
#include <fcntl.h>
#include <json/json.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "orvex/platform/event_log.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

using testing::HasSubstr;

class EventLog : public PortTest {
protected:
  static int Add(const std::string& value) {
    return event_log_add_sync(event_log_get_instance(), "21_remocon", "ORVEXSET", "EV012", value);
  }

  // Every line as JSON; a line that is none is a failure.
  std::vector<Json::Value> Records() const {
    std::vector<Json::Value> records;
    std::istringstream lines(Content("events.jsonl"));
    std::string line;
    while (std::getline(lines, line)) {
      Json::Value record;
      std::istringstream(line) >> record;
      records.push_back(record);
    }
    return records;
  }
};

TEST_F(EventLog, LosesNothingBehindBytesThatAreNoText) {
  EXPECT_EQ(Add("{device=B\xF6 \xE2\x82|1;source=5}"), 1);
  const auto records = Records();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0]["value"], "{device=B\uFFFD \uFFFD\uFFFD|1;source=5}");
}

TEST_F(EventLog, IsUnreachableAtAPipeADeviceOrALink) {
  const std::string path = (Folder() / "events.jsonl").string();
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(Add("x"), -1);
  Remove("events.jsonl");
  std::filesystem::create_symlink("/dev/null", path);
  EXPECT_EQ(Add("x"), -1);
}

TEST_F(EventLog, KeepsOneLinePerRecord) {
  EXPECT_EQ(Add("{result=pass}"), 1);
  EXPECT_EQ(Add("two\nlines \"and\" größer \xff"), 1);
  const auto records = Records();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0]["service"], "21_remocon");
  EXPECT_EQ(records[0]["event"], "ORVEXSET");
  EXPECT_EQ(records[0]["category"], "EV012");
  EXPECT_EQ(records[0]["value"], "{result=pass}");
  EXPECT_EQ(records[0]["time"].asString().size(), std::string("2031-05-04T09:08:07.123456Z").size());
  EXPECT_THAT(records[1]["value"].asString(), HasSubstr("two\nlines \"and\" größer "));
}

TEST_F(EventLog, IsReadableByItsOwnerOnly) {
  Add("x");
  struct stat state {};
  ASSERT_EQ(stat((Folder() / "events.jsonl").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0600U);
}

TEST_F(EventLog, RemovesALineThatWasCutOff) {
  for (const std::string& cut : {std::string("{\"time\":\"20"), std::string("x"), std::string(20000, 'y')}) {
    Remove("events.jsonl");
    Echo("events.jsonl", "{\"value\":\"first\"}\n" + cut);
    testing::internal::CaptureStderr();
    EXPECT_EQ(Add("second"), 1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("removed a last line that was cut off, " + std::to_string(cut.size()) + " bytes"));
    const auto records = Records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0]["value"], "first");
    EXPECT_EQ(records[1]["value"], "second");
  }
}

TEST_F(EventLog, AppendsToACollectionOf5GiB) {
  constexpr std::uintmax_t kBytes = std::uintmax_t{5} << 30U;
  const auto file = Folder() / "events.jsonl";
  Echo("events.jsonl", "");
  std::filesystem::resize_file(file, kBytes - 1);  // takes no room on the disk
  std::ofstream(file, std::ios::app) << '\n';
  EXPECT_EQ(Add("x"), 1);
  std::ifstream end(file);
  end.seekg(static_cast<std::streamoff>(kBytes));
  Json::Value record;
  end >> record;
  EXPECT_EQ(record["value"], "x");
}

TEST_F(EventLog, RemovesACutLineThatIsAllThereIs) {
  Echo("events.jsonl", "{\"ti");
  EXPECT_EQ(Add("only"), 1);
  ASSERT_EQ(Records().size(), 1U);
}

TEST_F(EventLog, KeepsAWholeRecordThatLacksItsLineBreak) {
  Echo("events.jsonl", R"({"value":"first"})");
  EXPECT_EQ(Add("second"), 1);
  const auto records = Records();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0]["value"], "first");
}

TEST_F(EventLog, TakesRecordsOfManyWritersWhole) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([number] {
      for (int record = 0; record < 25; ++record) {
        EXPECT_EQ(Add(std::to_string(number) + std::string(3000, 'z')), 1);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(Records().size(), 100U);
}

TEST_F(EventLog, SaysWhyItCannotBeReached) {
  std::filesystem::create_directory(Folder() / "events.jsonl");
  testing::internal::CaptureStderr();
  EXPECT_LT(Add("x"), 0);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("cannot write " + (Folder() / "events.jsonl").string() + ": Is a directory"));
}

TEST_F(EventLog, DoesNotFollowALink) {
  std::filesystem::create_symlink(Folder() / "elsewhere", Folder() / "events.jsonl");
  EXPECT_LT(Add("x"), 0);
  EXPECT_FALSE(std::filesystem::exists(Folder() / "elsewhere"));
}

}  // namespace
}  // namespace orvex::port
