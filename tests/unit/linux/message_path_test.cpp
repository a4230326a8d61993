// A message socket whose path does not fit.
#include "linux/main_loop.h"
#include "linux/message_socket.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

class MessagePath : public PortTest {};

TEST_F(MessagePath, MayHave107BytesAndNoMore) {
  ASSERT_EQ(StartMainLoop(), "");
  constexpr std::size_t kLongest = 107;
  const std::size_t room = kLongest - Folder().native().size() - 1;
  MessageSocket fits(Folder() / std::string(room, 'x'), [](const std::string& line) { return line; });
  testing::internal::CaptureStderr();
  fits.Open();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  const auto tooLong = Folder() / std::string(room + 1, 'x');
  MessageSocket exceeds(tooLong, [](const std::string& line) { return line; });
  testing::internal::CaptureStderr();
  exceeds.Open();
  EXPECT_THAT(
      testing::internal::GetCapturedStderr(),
      testing::HasSubstr(tooLong.string() + ": a path of 108 bytes, expected at most 107; no messages are taken\n"));
  fits.Close();
  EXPECT_FALSE(std::filesystem::exists(Folder() / std::string(room, 'x')));
  StopMainLoop();
}

}  // namespace
}  // namespace orvex::port
