// A message socket whose path does not fit.
#include "linux/main_loop.h"
#include "unit/virtual/television.h"
#include "virtual/message_socket.h"

namespace orvex::virtual_tv {
namespace {

class HostMessagePath : public HostTelevision {};

TEST_F(HostMessagePath, MayHave107BytesAndNoMore) {
  ASSERT_EQ(port::StartMainLoop(), "");
  constexpr std::size_t kLongest = 107;
  const std::size_t room = kLongest - Folder().native().size() - 1;
  MessageSocket fits(Folder() / std::string(room, 'x'), [](const std::string& line) { return line; });
  EXPECT_NO_THROW(fits.Open());
  const auto tooLong = Folder() / std::string(room + 1, 'x');
  MessageSocket exceeds(tooLong, [](const std::string& line) { return line; });
  try {
    exceeds.Open();
    ADD_FAILURE() << "a path of 108 bytes";
  } catch (const std::runtime_error& problem) {
    EXPECT_EQ(problem.what(), tooLong.string() + ": a path of 108 bytes, expected at most 107; no messages are taken");
  }
  fits.Close();
  EXPECT_FALSE(std::filesystem::exists(Folder() / std::string(room, 'x')));
  port::StopMainLoop();
}

}  // namespace
}  // namespace orvex::virtual_tv
