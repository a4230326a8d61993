// The driver's share for a port that is built from the pieces of platform/linux: they keep a television's state in
// files and a socket.
#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "conformance/port_driver.h"

namespace orvex::conformance {

// Where the port has told its pieces to be. A piece that the port does not take has no place.
struct PiecePlaces {
  std::filesystem::path settingsFolder;
  std::filesystem::path eventLogFile;
  std::filesystem::path messageSocket;
};

// Does what kPutSetting, kSpoilSetting, kBreakSettings, kSendTerminationSignal, kSendMessage, kReadEventRecords and
// kBreakEventLog stand for. The derived driver declares those of them whose pieces its port takes.
class PiecesDriver : public PortDriver {
public:
  explicit PiecesDriver(const std::set<Ability>& abilities, PiecePlaces places = {});
  ~PiecesDriver() override;

  void PutSetting(const std::string& key, int value) override;
  void SpoilSetting(const std::string& key) override;
  void SendTerminationSignal(int number) override;
  void SendMessage(const FwMessage& message) override;
  std::vector<Json::Value> Replies() const override;
  std::vector<EventRecord> EventRecords() const override;
  void Break(Ability service) override;

protected:
  // Puts a link to itself in the place of a file or a folder: it can be neither read nor written, not even by a
  // privileged user.
  static void MakeInaccessible(const std::filesystem::path& path);

private:
  class Connection;

  const PiecePlaces m_Places;
  std::unique_ptr<Connection> m_Connection;
};

}  // namespace orvex::conformance
