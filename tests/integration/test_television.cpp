// Makes, fills and removes the directory of a virtual television.
#include "integration/test_television.h"

#include <stdlib.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "orvex/sim/room_json.h"

namespace orvex::integration {
namespace {

std::filesystem::path MakeDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvex-run-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), pattern);
  }
  return pattern;
}

}  // namespace

TestTelevision::TestTelevision() : m_Television(MakeDirectory()) {
  m_Television.Create();
  Set(kConsent, "1");
}

TestTelevision::~TestTelevision() {
  std::error_code ignored;
  std::filesystem::remove_all(GetDirectory(), ignored);
}

void TestTelevision::SetRoom(const sim::RoomConfig& room) const {
  WriteFile("room.json", sim::RoomToJson(room));
}

void TestTelevision::WriteFile(const std::string& name, const std::string& content) const {
  std::filesystem::create_directories(PathOf(name).parent_path());
  std::ofstream(PathOf(name), std::ios::binary) << content;
}

std::string TestTelevision::ReadFile(const std::string& name) const {
  return ReadWholeFile(PathOf(name));
}

void TestTelevision::Remove(const std::string& name) const {
  std::filesystem::remove_all(PathOf(name));
}

std::string ReadWholeFile(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    return "";  // a pipe would keep its reader
  }
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace orvex::integration
