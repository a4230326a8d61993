// Messages of other applications: each is accepted and none has a known method; the reply goes back as it came.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <json/json.h>

#include <sstream>

#include "Application/OrvexApp.h"
#include "support/journal.h"

namespace {

using orvex::test::During;
using orvex::test::Texts;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char kUnknown[] = "E0 UNKNOWN MESSAGE";
constexpr char kEmptyReply[] = "I0 reply empty...";
constexpr char kFilledReply[] = "I0 reply not empty!";

Json::Value Parsed(const std::string& text) {
  Json::Value value;
  std::istringstream(text) >> value;
  return value;
}

std::string Called(const std::string& type, const std::string& method) {
  return "I0 IfMessageReceived called,  message Type: " + type + ", method: " + method;
}

class Messages : public testing::Test {
protected:
  // What the journal shows of a message from somebody; the message must be taken.
  Texts Send(const FwMessage& message, FwMessage& reply, const std::string& sender = "org.velta.menu") {
    return During(world, [&] { EXPECT_TRUE(app.IfMessageReceived(sender, message, reply)); });
  }
  Texts Send(const FwMessage& message) {
    FwMessage reply;
    return Send(message, reply);
  }

  orvex::world::World world;
  COrvexApp app;
};

TEST_F(Messages, AMethodIsLoggedAndReportedAsUnknown) {
  EXPECT_THAT(Send({"request", Parsed(R"({"method": "x"})")}),
              ElementsAre(Called("request", "x"), kUnknown, kEmptyReply));
}

TEST_F(Messages, TheLinesNameTheirOrigin) {
  Send({"request", Parsed(R"({"method": "x"})")});
  for (const orvex::world::Entry& entry : world.journal.Entries()) {
    EXPECT_EQ(entry.file, "OrvexApp.cpp") << entry.text;
    EXPECT_EQ(entry.function, "IfMessageReceived") << entry.text;
  }
}

TEST_F(Messages, WithoutAMethodNothingIsUnknown) {
  for (const char* body : {R"({})", R"({"method": ""})", R"({"methods": "x"})", R"({"Method": "x"})", "null",
                           R"({"method": null})", R"({"params": {"method": "x"}})"}) {
    EXPECT_THAT(Send({"request", Parsed(body)}), ElementsAre(Called("request", ""), kEmptyReply)) << body;
  }
}

TEST_F(Messages, NoMethodIsKnownNotEvenThoseThatLookLikeTheServicesOwn) {
  for (const char* method : {"start", "stop", "ORVEX_EXIT", "10007", " ", "%s%n%d", "käse", "ui_app_exit"}) {
    FwMessage message{"request", {}};
    message.body["method"] = method;
    EXPECT_THAT(Send(message), ElementsAre(Called("request", method), kUnknown, kEmptyReply));
  }
}

TEST_F(Messages, AMethodThatIsNoTextIsReadAsOneIfThatIsPossible) {
  EXPECT_THAT(Send({"request", Parsed(R"({"method": 5})")}),
              ElementsAre(Called("request", "5"), kUnknown, kEmptyReply));
  EXPECT_THAT(Send({"request", Parsed(R"({"method": true})")}),
              ElementsAre(Called("request", "true"), kUnknown, kEmptyReply));
  for (const char* body : {R"({"method": ["x"]})", R"({"method": {"x": 1}})"}) {
    EXPECT_THAT(Send({"request", Parsed(body)}), ElementsAre(Called("request", ""), kEmptyReply)) << body;
  }
}

TEST_F(Messages, ABodyThatIsNoObjectHasNoMethod) {
  for (const Json::Value& body : {Json::Value("method"), Json::Value(1), Json::Value(true), Parsed(R"(["method"])")}) {
    EXPECT_THAT(Send({"request", body}), ElementsAre(Called("request", ""), kEmptyReply));
  }
}

TEST_F(Messages, EveryTypeIsTakenAndLoggedAsItStands) {
  for (const std::string& type :
       {std::string(), std::string("request"), std::string("%s %d %n"), std::string("Größe"), std::string(5000, 't')}) {
    EXPECT_THAT(Send({type, Parsed(R"({})")}), ElementsAre(Called(type, ""), kEmptyReply));
  }
}

TEST_F(Messages, TheSenderMakesNoDifference) {
  const FwMessage message{"request", Parsed(R"({"method": "x"})")};
  FwMessage reply;
  const Texts known = Send(message, reply);
  for (const char* sender : {"", "org.velta.orvex-service", "tester"}) {
    EXPECT_THAT(Send(message, reply, sender), ElementsAreArray(known)) << sender;
  }
}

TEST_F(Messages, AReplyGoesBackUnchanged) {
  for (const char* body : {R"({"result": "none", "list": [1, 2]})", R"({"method": "x"})", R"({"a": null})", "[0]"}) {
    FwMessage reply{"answer", Parsed(body)};
    EXPECT_THAT(Send({"request", Parsed(R"({"method": "x"})")}, reply),
                ElementsAre(Called("request", "x"), kUnknown, kFilledReply))
        << body;
    EXPECT_EQ(reply.type, "answer");
    EXPECT_EQ(reply.body, Parsed(body));
  }
}

TEST_F(Messages, AnEmptyReplyStaysEmptyWhateverTheRequestHolds) {
  for (const char* body : {"null", "{}", "[]"}) {
    FwMessage reply{"answer", Parsed(body)};
    EXPECT_THAT(Send({"request", Parsed(R"({"method": ""})")}, reply), ElementsAre(Called("request", ""), kEmptyReply));
    EXPECT_EQ(reply.type, "answer");
    EXPECT_EQ(reply.body, Parsed(body));
  }
}

TEST_F(Messages, DoNotDependOnEarlierOnes) {
  EXPECT_EQ(Send({"request", Parsed(R"({"method": "x"})")}).size(), 3U);
  EXPECT_EQ(Send({"request", Parsed(R"({})")}).size(), 2U);
  EXPECT_EQ(Send({"request", Parsed(R"({"method": "x"})")}).size(), 3U);
}

}  // namespace
