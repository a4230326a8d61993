// orvex-tv as it is called: what it prints and its exit codes.
#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/json_text.h"
#include "unit/tools/tv_calls.h"

namespace orvex::tools {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST_F(TvCommandLine, SetsAndGetsAValueByItsShortName) {
  EXPECT_EQ(0, Call({"set", "--tv", m_Tv.c_str(), "delay", "120"}).exitCode);
  const TvOutcome get = Call({"get", "--tv", m_Tv.c_str(), "delay/spdif"});
  EXPECT_EQ(0, get.exitCode);
  EXPECT_EQ("120\n", get.out);
}

TEST_F(TvCommandLine, TakesAPieceOfANameThatOnlyOneHas) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "120"});
  for (const char* const piece : {"spdif", "agree", "disclaimer", "optical", "freq", "volu"}) {
    EXPECT_EQ(0, Call({"get", "--tv", m_Tv.c_str(), piece}).exitCode) << piece;
  }
}

TEST_F(TvCommandLine, RefusesUnknownNamesAndBadValues) {
  const TvOutcome name = Call({"get", "--tv", m_Tv.c_str(), "colour"});
  EXPECT_EQ(2, name.exitCode);
  EXPECT_THAT(name.error, AllOf(HasSubstr("\"colour\""), HasSubstr("delay/spdif")));
  EXPECT_THAT(Call({"get", "--tv", m_Tv.c_str(), "agere"}).error, HasSubstr(", did you mean \"agree\"?\nKnown "));
  EXPECT_THAT(Call({"get", "--tv", m_Tv.c_str(), "volmue"}).error, HasSubstr(", did you mean \"volume\"?\nKnown "));
  const TvOutcome value = Call({"set", "--tv", m_Tv.c_str(), "mute", "2"});
  EXPECT_EQ(2, value.exitCode);
  EXPECT_THAT(value.error, AllOf(HasSubstr("sound/mute: \"2\""), HasSubstr("an integer from 0 to 1")));
}

TEST_F(TvCommandLine, SaysWhenThereIsNoSuchTelevision) {
  const std::vector<std::vector<const char*>> calls = {
      {"get", "--tv", m_Tv.c_str(), "delay"}, {"list", "--tv", m_Tv.c_str()}, {"events", "--tv", m_Tv.c_str()}};
  for (const std::vector<const char*>& call : calls) {
    const TvOutcome outcome = Call(call);
    EXPECT_EQ(1, outcome.exitCode) << call.front();
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ("orvex-tv: " + m_Tv + ": no virtual television is there; orvex-tv run --tv " + m_Tv + " makes one\n",
              outcome.error);
    EXPECT_FALSE(std::filesystem::exists(m_Tv));
  }
}

TEST_F(TvCommandLine, ListsEveryValueWithItsMeaning) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "77"});
  std::filesystem::remove(m_Tv + "/tv/brand");
  m_Folder.Write("tv/sound/volume", "loud\n");
  const TvOutcome list = Call({"list", "--tv", m_Tv.c_str()});
  EXPECT_EQ(0, list.exitCode);
  EXPECT_THAT(list.out, testing::ContainsRegex("delay/spdif +77 ms +0\\.\\.4294967295 +delay of the optical output"));
  EXPECT_THAT(list.out, testing::ContainsRegex("tv/brand +\\(missing\\)"));
  EXPECT_THAT(list.out, testing::ContainsRegex("sound/volume +\\(unreadable\\)"));
}

TEST_F(TvCommandLine, PrintsValuesAsJson) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "77"});
  std::filesystem::remove(m_Tv + "/tv/brand");
  const Json::Value get = port::ParseJson(Call({"get", "--tv", m_Tv.c_str(), "--json", "delay"}).out);
  EXPECT_EQ("delay/spdif", get["name"].asString());
  EXPECT_EQ(77, get["value"].asInt());
  EXPECT_EQ("ms", get["unit"].asString());
  EXPECT_EQ(4294967295, get["maximum"].asInt64());
  std::istringstream lines(Call({"list", "--tv", m_Tv.c_str(), "--json"}).out);
  std::map<std::string, Json::Value> values;
  for (std::string line; std::getline(lines, line);) {
    const Json::Value value = port::ParseJson(line);
    values[value["name"].asString()] = value;
  }
  EXPECT_EQ(77, values["delay/spdif"]["value"].asInt());
  EXPECT_TRUE(values["tv/brand"]["value"].isNull());
  EXPECT_THAT(values["tv/brand"]["problem"].asString(), HasSubstr("does not exist"));
}

TEST_F(TvCommandLine, SaysWhyThereAreNoRecordsWhileTheUserHasNotAgreed) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "77"});
  const TvOutcome none = Call({"events", "--tv", m_Tv.c_str(), "--json"});
  EXPECT_EQ("", none.out);
  EXPECT_EQ("orvex-tv: no records are collected, as the user has not agreed; orvex-tv set --tv " + m_Tv +
                " agree 1 does that\n",
            none.error);
  Call({"set", "--tv", m_Tv.c_str(), "agree", "1"});
  EXPECT_EQ("", Call({"events", "--tv", m_Tv.c_str()}).error);
  m_Folder.Write("tv/events.jsonl", "{\"event\": \"ORVEXENV\"}\n");
  EXPECT_EQ("{\"event\":\"ORVEXENV\"}\n", Call({"events", "--tv", m_Tv.c_str(), "--json"}).out);
}

TEST_F(TvCommandLine, PrintsRecordsAndNamesTheLinesThatAreNone) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "77"});
  m_Folder.Write("tv/events.jsonl", "{\"event\":\"ORVEXENV\"}\n{\"eve");
  const TvOutcome events = Call({"events", "--tv", m_Tv.c_str()});
  EXPECT_EQ(0, events.exitCode);
  EXPECT_THAT(events.out, HasSubstr("ORVEXENV"));
  EXPECT_THAT(events.error, HasSubstr("line 2: no whole JSON value, skipped"));
}

TEST_F(TvCommandLine, FailsOnRecordsThatCannotBeRead) {
  std::filesystem::create_directories(m_Tv + "/events.jsonl");
  const TvOutcome events = Call({"events", "--tv", m_Tv.c_str()});
  EXPECT_EQ(1, events.exitCode);
  EXPECT_EQ("", events.out);
  EXPECT_THAT(events.error, HasSubstr(m_Tv + "/events.jsonl: no regular file"));
}

TEST_F(TvCommandLine, RefusesAMessageThatIsNoJsonObjectBeforeItLooksForTheService) {
  for (const char* const message : {"hello", "[]", "{\"type\": \"ask\"} {}", "", "{'type': 'ask'}"}) {
    const TvOutcome send = Call({"send", "--tv", m_Tv.c_str(), message});
    EXPECT_EQ(2, send.exitCode) << message;
    EXPECT_THAT(send.error, HasSubstr("\"" + std::string(message) + "\": expected a message like "));
  }
}

TEST_F(TvCommandLine, SaysThatNoServiceListens) {
  const TvOutcome send = Call({"send", "--tv", m_Tv.c_str(), "{}"});
  EXPECT_EQ(1, send.exitCode);
  EXPECT_THAT(send.error, HasSubstr("messages.sock: no service listens"));
}

TEST_F(TvCommandLine, ExplainsItselfAndRefusesWhatItDoesNotKnow) {
  EXPECT_EQ(0, Call({"--help"}).exitCode);
  EXPECT_EQ(0, Call({"run", "--help"}).exitCode);
  EXPECT_EQ(2, Call({}).exitCode);
  EXPECT_EQ(2, Call({"dance"}).exitCode);
}

TEST_F(TvCommandLine, RefusesNumbersBelowZeroAndTooLargeOnes) {
  const auto refusal = [](const char* option, const char* value) {
    const TvOutcome run = Call({"run", option, value, "--service", "/nonexistent/service"});
    EXPECT_EQ(2, run.exitCode) << option << " " << value;
    return run.error;
  };
  EXPECT_THAT(refusal("--seed", "-1"),
              HasSubstr("--seed: \"-1\": expected a whole number from 0 to 18446744073709551615"));
  EXPECT_THAT(refusal("--base-delay", "-1"),
              HasSubstr("--base-delay: \"-1\": expected a whole number of milliseconds from 0 to 4294967295"));
  EXPECT_THAT(refusal("--base-delay", "4294967296"),
              HasSubstr("--base-delay: \"4294967296\": expected a whole number of milliseconds"));
}

TEST_F(TvCommandLine, PrintsOneObjectOfARunWithTheRecordsOfThisRunOnly) {
  Call({"set", "--tv", m_Tv.c_str(), "delay", "100"});
  m_Folder.Write("tv/events.jsonl", "{\"event\":\"BEFORE\"}\n");
  const std::string service = Service(
      "echo 'A.cpp: f(1) > ORVEX_START_SYNC'; echo 'A.cpp: f(1) > avoc delay = 100'\n"
      "echo 'A.cpp: f(1) > diff time = 0.0400'; echo 'A.cpp: f(1) > after delay = 60'\n"
      "echo 60 >$ORVEX_TV/delay/spdif; echo '{\"event\":\"ORVEXSET\"}' >>$ORVEX_TV/events.jsonl\n");
  const TvOutcome run = Call({"run", "--json", "--tv", m_Tv.c_str(), "--service", service.c_str()});
  EXPECT_EQ(0, run.exitCode) << run.error;
  const Json::Value json = port::ParseJson(run.out);
  EXPECT_EQ("aligned", json["verdict"].asString());
  EXPECT_EQ("done", json["terminate"].asString());
  EXPECT_DOUBLE_EQ(40.0, json["misalignment_before_ms"].asDouble());
  EXPECT_DOUBLE_EQ(0.0, json["misalignment_after_ms"].asDouble());
  ASSERT_EQ(1u, json["events"].size());
  EXPECT_EQ("ORVEXSET", json["events"][0]["event"].asString());
}

TEST_F(TvCommandLine, FailsWhenTheRunDoesNotEndDoneOrInOrder) {
  const auto run = [&](const std::string& lines) {
    const std::string service = Service(lines);
    return Call({"run", "--service", service.c_str()});
  };
  EXPECT_EQ(1, run("echo 'A.cpp: f(1) > no_diff_detected!!'\n").exitCode);
  const TvOutcome crashed = run("echo 'A.cpp: f(1) > after delay = 60'; kill -ABRT $$\n");
  EXPECT_EQ(1, crashed.exitCode);
  EXPECT_THAT(crashed.error, HasSubstr("the service was ended by signal 6"));
  const TvOutcome missing = Call({"run", "--json", "--service", "/nonexistent/service"});
  EXPECT_EQ(1, missing.exitCode);
  EXPECT_THAT(missing.error, HasSubstr("/nonexistent/service cannot be started"));
  EXPECT_THAT(missing.out, HasSubstr("\"exit_code\" : null"));
}

TEST_F(TvCommandLine, FailsWhenARunHasNotDoneWhatItSaysOrHasMadeThingsWorse) {
  const auto run = [&](const std::string& room, const std::string& lines) {
    const std::string service = Service("echo 'A.cpp: f(1) > after delay = 0'\n" + lines);
    return Call({"run", "--optical-latency", room.c_str(), "--service", service.c_str()});
  };
  const std::string write = "echo 0 >$ORVEX_TV/delay/spdif\n";
  const TvOutcome notApplied = run("20", "");
  EXPECT_EQ(1, notApplied.exitCode);
  EXPECT_THAT(notApplied.out, AllOf(HasSubstr("delay not applied: 0 ms wanted, 100 ms in force\n"),
                                    HasSubstr("not_applied: 0 ms wanted, 100 ms in force; +40.0 ms remain\n")));
  const TvOutcome worse = run("20", write);
  EXPECT_EQ(1, worse.exitCode);
  EXPECT_THAT(worse.out, HasSubstr("worse: there were +40.0 ms before; -60.0 ms remain\n"));
  const TvOutcome clamped = run("150", write);
  EXPECT_EQ(0, clamped.exitCode);
  EXPECT_THAT(clamped.out, HasSubstr("clamped: the delay is 0 and cannot become less; +70.0 ms remain\n"));
}

TEST_F(TvCommandLine, ShowsTheRunAndOnRequestTheLog) {
  const std::string service = Service("echo 'A.cpp: f(1) > completed ambient noise' >&2\n");
  const TvOutcome quiet = Call({"run", "--service", service.c_str()});
  EXPECT_THAT(quiet.out, AllOf(HasSubstr("ambient noise measured"), HasSubstr("true misalignment")));
  EXPECT_EQ("", quiet.error);
  const TvOutcome verbose = Call({"run", "--verbose", "--service", service.c_str()});
  EXPECT_EQ("A.cpp: f(1) > completed ambient noise\n", verbose.error);
}

// What takes standard error here is no terminal.
TEST_F(TvCommandLine, ShowsTheLogWithoutItsColours) {
  const std::string service = Service("printf 'A.cpp: f(1) > \\033[32mDestroy\\033[0m\\n'\n");
  EXPECT_EQ("A.cpp: f(1) > Destroy\n", Call({"run", "--verbose", "--service", service.c_str()}).error);
}

}  // namespace
}  // namespace orvex::tools
