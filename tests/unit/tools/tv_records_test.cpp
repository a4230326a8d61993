// Names of values, and collected records as a table.
#include <sys/stat.h>

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "options/errors.h"
#include "tv/event_records.h"
#include "tv/value_names.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(FullValueName, AcceptsFullNamesAndAnyPartThatOnlyOneHas) {
  EXPECT_EQ("delay/spdif", FullValueName("delay/spdif"));
  EXPECT_EQ("delay/spdif", FullValueName("delay"));
  EXPECT_EQ("delay/spdif", FullValueName("spdif"));
  EXPECT_EQ("sound/mute", FullValueName("mute"));
  EXPECT_EQ("settings/db/menu/tessar/homedatacontrol/defaultdisclaimeragree", FullValueName("defaultdisclaimeragree"));
  EXPECT_EQ("settings/db/any/key", FullValueName("settings/db/any/key"));
}

TEST(FullValueName, AcceptsAPieceOfANameThatOnlyOneHasFromFourLettersOn) {
  EXPECT_EQ("settings/db/menu/tessar/homedatacontrol/defaultdisclaimeragree", FullValueName("agree"));
  EXPECT_EQ("settings/db/device-detector-service/optical_change_flag", FullValueName("change_flag"));
  EXPECT_EQ("sound/volume", FullValueName("volu"));
  EXPECT_EQ("tv/hdmi_inputs", FullValueName("puts"));
  EXPECT_THROW(FullValueName("uts"), UsageError);
}

std::string Refusal(const std::string& name) {
  try {
    return "accepted as " + FullValueName(name);
  } catch (const UsageError& error) {
    return error.what();
  }
}

TEST(FullValueName, ListsWhatIsKnownOrMeant) {
  EXPECT_THAT(Refusal("volun"), AllOf(HasSubstr("\"volun\""), HasSubstr("sound/volume"), HasSubstr("tv/codec")));
  EXPECT_THAT(Refusal("sound"), AllOf(HasSubstr("sound/volume"), HasSubstr("sound/mute"), Not(HasSubstr("tv/codec"))));
  EXPECT_THAT(Refusal(""), HasSubstr("\"\""));
  EXPECT_THAT(Refusal("settings/../../escape"), HasSubstr("no value"));
}

const char kStart[] =
    R"({"category":"EV013","event":"ORVEXENV","service":"21_remocon","time":"2031-05-04T09:08:07Z","value":"{codec=0}"})";
const char kEnd[] = R"({"category":"EV012","event":"ORVEXSET","value":"two\nlines"})";

TEST(ReadEventRecords, ReadsRecordsInOrderAndSaysWhatItSkipped) {
  const TemporaryFolder folder;
  const std::string path = folder.Write(
      "events.jsonl", std::string(kStart) + "\n[1]\n\n" + kEnd + "\n" + std::string(5000, '[') + "\n" + R"({"cat)");
  const EventRecords events = ReadEventRecords(path);
  ASSERT_EQ(2u, events.records.size());
  EXPECT_EQ("EV013", events.records[0]["category"].asString());
  EXPECT_EQ("EV012", events.records[1]["category"].asString());
  EXPECT_THAT(events.problems,
              ElementsAre(path + ": line 2: no JSON object, skipped", HasSubstr(": line 5: nested too deeply, skipped"),
                          HasSubstr(": line 6: no whole JSON value, skipped")));
}

TEST(ReadEventRecords, FindsNothingInAMissingFile) {
  const TemporaryFolder folder;
  const EventRecords events = ReadEventRecords(folder / "events.jsonl");
  EXPECT_TRUE(events.records.empty() && events.problems.empty());
}

TEST(ReadEventRecords, RefusesWhatIsNoRegularFileWithoutWaitingForIt) {
  const TemporaryFolder folder;
  ASSERT_EQ(0, ::mkfifo((folder / "pipe").c_str(), 0600));
  std::filesystem::create_symlink("/dev/zero", folder / "device");
  for (const std::string& path : {folder / "pipe", folder / "device", folder.Path()}) {
    EXPECT_THAT([&] { ReadEventRecords(path); },
                testing::ThrowsMessage<CommandError>(HasSubstr(path + ": no regular file, expected one")));
  }
}

TEST(ReadEventRecords, RefusesAFileThatCannotBeRead) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("file", "") + "/events.jsonl";
  EXPECT_THAT([&] { ReadEventRecords(path); },
              testing::ThrowsMessage<CommandError>(HasSubstr(path + ": cannot be read: Not a directory")));
}

TEST(EventTable, ShowsNoControlCharacters) {
  const TemporaryFolder folder;
  const EventRecords events =
      ReadEventRecords(folder.Write("events.jsonl",
                                    "{\"event\":\"a\\u001b[2Jb\\u009bc\\u007fd\\te\",\"value\":\"\x7f\xc2\x9b|\x9b|"
                                    "\xc0\x9b|\xe2\x82|\xc2\xa0\xc3\xa4\xe2\x82\xac\"}\n"));
  EXPECT_THAT(EventTable(events.records),
              testing::EndsWith("a\\x1b[2Jb\\u009bc\\x7fd\\te  \\x7f\\u009b|\\x9b|\\xc0\\x9b|\\xe2\\x82|"
                                "\xc2\xa0\xc3\xa4\xe2\x82\xac\n"));
}

TEST(EventTable, AlignsColumnsAndKeepsARecordOnOneLine) {
  const TemporaryFolder folder;
  const EventRecords events = ReadEventRecords(folder.Write("events.jsonl", std::string(kStart) + "\n" + kEnd + "\n"));
  EXPECT_EQ(
      "time                  service     category  event     value\n"
      "2031-05-04T09:08:07Z  21_remocon  EV013     ORVEXENV  {codec=0}\n"
      "-                     -           EV012     ORVEXSET  two\\nlines\n",
      EventTable(events.records));
}

}  // namespace
}  // namespace orvex::tools
