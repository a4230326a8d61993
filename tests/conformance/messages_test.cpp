// Messages from other applications and the replies to them.
#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

class Messages : public PortTest {
protected:
  std::function<bool()> Replies(std::size_t number) {
    return [this, number] { return Port().Replies().size() >= number; };
  }
};

TEST_F(Messages, ReachTheApplicationOnTheMainLoopAndTheirReplyTheSender) {
  ORVEX_NEEDS(kSendMessage);
  const std::string mainLoop = Port().CurrentThread();
  FwMessage message{"request", Json::Value()};
  message.body["method"] = "tone – 17 kHz\n";
  message.body["count"] = 3;
  FwMessage got;
  application.onMessage = [&](const FwMessage& received, FwMessage& reply) {
    EXPECT_EQ(Port().CurrentThread(), mainLoop);
    got = received;
    reply.body["result"] = received.body["count"].asInt() + 1;
  };
  application
      .Do([&] {
        Port().SendMessage(message);
        EXPECT_EQ(application.calls.size(), 1U) << "inside another call";
      })
      .Until("the reply", Replies(1))
      .Run();
  EXPECT_EQ(got.type, "request");
  EXPECT_EQ(got.body, message.body);
  ASSERT_EQ(Port().Replies().size(), 1U);
  EXPECT_EQ(Port().Replies()[0]["result"], 4);
}

TEST_F(Messages, MayHaveNoTypeAndNoBody) {
  ORVEX_NEEDS(kSendMessage);
  FwMessage got{"unset", "unset"};
  application.onMessage = [&](const FwMessage& received, FwMessage& reply) {
    got = received;
    reply.body["ok"] = true;
  };
  application.Do([&] { Port().SendMessage({"", Json::Value()}); }).Until("the reply", Replies(1)).Run();
  EXPECT_EQ(got.type, "");
  EXPECT_TRUE(got.body.isNull());
}

TEST_F(Messages, ComeInOrderEachWithItsOwnReply) {
  ORVEX_NEEDS(kSendMessage);
  bool isAnswering = false;
  application.onMessage = [&](const FwMessage& received, FwMessage& reply) {
    EXPECT_FALSE(isAnswering) << "one at a time";
    isAnswering = true;
    EXPECT_TRUE(reply.body.isNull()) << "left from the message before";
    reply.body["to"] = received.type;
    isAnswering = false;
  };
  application
      .Do([&] {
        for (const char* type : {"a", "b", "c"}) {
          Port().SendMessage({type, Json::Value()});
        }
      })
      .Until("the replies", Replies(3))
      .Run();
  EXPECT_THAT(application.calls, testing::ElementsAre("create", "message a", "message b", "message c", "destroy"));
  const auto replies = Port().Replies();
  EXPECT_EQ(replies.at(0)["to"], "a");
  EXPECT_EQ(replies.at(1)["to"], "b");
  EXPECT_EQ(replies.at(2)["to"], "c");
}

TEST_F(Messages, MayEndTheApplicationWithoutLosingTheReply) {
  ORVEX_NEEDS(kSendMessage);
  application.onMessage = [&](const FwMessage&, FwMessage& reply) {
    reply.body["last"] = true;
    ui_app_exit();
  };
  application.Do([&] { Port().SendMessage({"end", Json::Value()}); }).UntilTheEnd().Run();
  ASSERT_EQ(Port().Replies().size(), 1U);
  EXPECT_EQ(Port().Replies()[0]["last"], true);
}

}  // namespace
}  // namespace orvex::conformance
