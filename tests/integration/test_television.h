// A virtual television for one run: a temporary directory, gone at the end.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "orvex/sim/room_config.h"
#include "virtual/television.h"

namespace orvex::integration {

constexpr char kConsent[] = "settings/db/menu/tessar/homedatacontrol/defaultdisclaimeragree";
constexpr char kOpticalChangeFlag[] = "settings/db/device-detector-service/optical_change_flag";

class TestTelevision {
public:
  // Every value at its default, with the user's consent.
  TestTelevision();
  ~TestTelevision();
  TestTelevision(const TestTelevision&) = delete;
  TestTelevision& operator=(const TestTelevision&) = delete;

  const std::filesystem::path& GetDirectory() const { return m_Television.GetDirectory(); }
  std::filesystem::path PathOf(const std::string& name) const { return m_Television.PathOf(name); }

  void Set(const std::string& name, const std::string& text) const { m_Television.Set(name, text); }
  std::int64_t Get(const std::string& name) const { return m_Television.GetNumber(name); }
  void SetRoom(const sim::RoomConfig& room) const;
  void SetFaults(const std::string& json) const { WriteFile("faults.json", json); }

  // Any file below the directory, whatever it is to the television.
  void WriteFile(const std::string& name, const std::string& content) const;
  std::string ReadFile(const std::string& name) const;
  void Remove(const std::string& name) const;

private:
  virtual_tv::Television m_Television;
};

// The whole file; empty when there is none, or something else.
std::string ReadWholeFile(const std::filesystem::path& path);

}  // namespace orvex::integration
