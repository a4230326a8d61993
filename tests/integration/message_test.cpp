// Messages of other applications while a run is on.
#include <signal.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

using testing::StartsWith;

struct MessageCase {
  std::string message;
  std::string reply;   // how it begins
  std::string logged;  // what the service logs of it; empty: the message does not reach the service
};

std::string Received(const std::string& type, const std::string& method) {
  return "I0 IfMessageReceived called,  message Type: " + type + ", method: " + method;
}

std::vector<MessageCase> Rows() {
  return {
      {R"({"type": "remote", "body": {"method": "x"}})", "{}", Received("remote", "x")},
      {R"({"type": "remote", "body": {"method": ""}})", "{}", Received("remote", "")},
      {R"({"type": "remote", "body": {"other": 1}})", "{}", Received("remote", "")},
      {R"({"type": "remote", "body": {"method": 7}})", "{}", Received("remote", "7")},
      {R"({"type": "remote", "body": {"method": [1]}})", "{}", Received("remote", "")},
      {R"({"type": "remote", "body": [1, 2]})", "{}", Received("remote", "")},
      {R"({"type": "remote", "body": "x"})", "{}", Received("remote", "")},
      {R"({"type": "remote"})", "{}", Received("remote", "")},
      {R"({})", "{}", Received("", "")},
      // Taken for a message like any other: this service takes no events from outside.
      {R"({"type": "event", "body": {"id": 10007}})", "{}", Received("event", "")},
      {R"({"type": 5})", R"({"error":"\"type\": 5: expected a text)", ""},
      {R"([1])", R"({"error":"expected one JSON object per line)", ""},
      {R"({"type": "remote")", R"({"error":"expected one JSON object per line)", ""},
      {"no JSON", R"({"error":"expected one JSON object per line)", ""},
      {"", R"({"error":"expected one JSON object per line)", ""},
      {std::string(200000, 'x'), R"({"error":"line too long: expected at most )", ""},
  };
}

void SendAllAndEnd(ServiceRun& run) {
  for (const MessageCase& row : Rows()) {
    run.Note(run.Exchange(row.message));
  }
  run.Signal(SIGTERM);
}

TEST(Message, IsAnsweredAndLoggedAndNeverDisturbsTheRun) {
  const Observation observation =
      Perform({"messages", WithRoom(RoomWithoutBlocks()), {{kIsRecording, SendAllAndEnd}}, {}});
  const std::vector<MessageCase> rows = Rows();
  ASSERT_EQ(rows.size(), observation.notes.size()) << observation.problem;
  Expectation expectation = EndedWith("etc");
  for (std::size_t n = 0; n < rows.size(); ++n) {
    EXPECT_THAT(observation.notes[n], StartsWith(rows[n].reply)) << rows[n].message.substr(0, 60);
    if (!rows[n].logged.empty()) {
      expectation.logged.push_back(rows[n].logged);
    }
  }
  Check(observation, expectation);
  EXPECT_EQ(expectation.logged.size(),
            static_cast<std::size_t>(CountOf(observation.lines, "IfMessageReceived called,{s}")));
}

TEST(Message, ThatIsNoEventIsRefusedWhereEventsAreTaken) {
  const Step step{kIsRecording, [](ServiceRun& run) {
                    for (const char* const body : {R"({"id": "10007"})", R"({})", R"(7)"}) {
                      run.Note(run.Exchange(std::string(R"({"type": "event", "body": )") + body + "}"));
                    }
                    run.Signal(SIGTERM);
                  }};
  const Observation observation = Perform({"bad events", WithRoom(RoomWithoutBlocks()), {step}, WithInjection()});
  EXPECT_THAT(observation.notes, testing::Each(StartsWith(R"({"error":"event \"id\": )")));
  EXPECT_EQ(3U, observation.notes.size());
  Check(observation, EndedWith("etc"));
  EXPECT_EQ(0, CountOf(observation.lines, "IfMessageReceived called,{s}"));
}

}  // namespace
}  // namespace orvex::integration
