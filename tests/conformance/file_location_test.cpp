// Where a file of the television is found.
#include "orvex/platform/file_location.h"

#include <fstream>
#include <sstream>

#include "conformance/port_test.h"

namespace orvex::conformance {
namespace {

constexpr const char* kFixedPath = "/usr/share/orvex-conformance/file.bin";

std::string ContentOf(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

class FileLocation : public PortTest {};

TEST_F(FileLocation, LeadsToTheTelevisionsFileOnAnyThread) {
  ORVEX_NEEDS(kPlaceFile);
  const std::string content("bytes \0 of\na file", 17);
  Port().PlaceFile(kFixedPath, content);
  EXPECT_EQ(ContentOf(file_location(kFixedPath)), content);
  Thread([&] { EXPECT_EQ(ContentOf(file_location(kFixedPath)), content); }).Join();
}

TEST_F(FileLocation, OfAFileThatDoesNotExistLeadsNowhere) {
  const std::string path = file_location("/usr/share/orvex-conformance/nowhere");
  EXPECT_FALSE(path.empty());
  EXPECT_FALSE(std::ifstream(path).is_open()) << path;
}

}  // namespace
}  // namespace orvex::conformance
