// What the conformance suite needs of a port beyond the platform contract: control of the television behind it.
//
// A port's driver derives from PortDriver, overrides what it can do and defines MakePortDriver(). An ability that it
// does not declare skips the tests that need it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "orvex/platform/application.h"
#include "orvex/platform/system_log.h"

namespace orvex::conformance {

enum class Ability {
  // The port has this service. Without it the service's tests are skipped but for those of an absent service.
  kSettings,
  kSoundManager,
  kOutputDelay,
  kVoice,
  // Each one stands for the operation of PortDriver that has its name, unless it names others.
  kPlaceFile,
  kReadLog,  // LogRecords()
  kPutSetting,
  kSpoilSetting,
  kSendTerminationSignal,
  kSendMessage,  // and Replies()
  kSelectSpeaker,
  kPutTvState,
  kReadEventRecords,  // EventRecords()
  kShortenVoiceWindow,
  kLoseVoiceBlocks,
  kRefuseVoiceStart,
  // Break(), for the service of this name.
  kBreakSettings,
  kBreakSoundManager,
  kBreakOutputDelay,
  kBreakTvService,
  kBreakEventLog,
};

std::set<Ability> AllAbilities();

struct LogRecord {
  LogBuffer buffer;
  LogPriority priority;
  std::string tag;
  std::string text;
};
// "main I tag: text", as the ports on Linux write a record, or empty.
std::optional<LogRecord> ParseLogRecord(const std::string& line);

struct EventRecord {
  std::string service, event, category, value;
};

// What the queries of the service layer and of the audio control are to answer.
struct TvState {
  int hdmiInputs = 4;
  std::int32_t deviceType = 1;
  std::string brand = "Example";
  std::int32_t resolution = 6;
  std::int32_t frequency = 60;
  std::int32_t source = 1;
  std::int32_t codec = 0;
};

// One television, as new: made before a test and destroyed after it, when the application is gone. Operations are
// called on the main loop, before AppMain() or after it, unless they say otherwise; they do not wait for the main loop.
class PortDriver {
public:
  explicit PortDriver(std::set<Ability> abilities) : m_Abilities(std::move(abilities)) {}
  virtual ~PortDriver() = default;
  PortDriver(const PortDriver&) = delete;
  PortDriver& operator=(const PortDriver&) = delete;

  bool Can(Ability ability) const { return m_Abilities.count(ability) != 0; }

  // The time in which the port lives, in ms from any beginning. Any thread.
  virtual double NowMs() const;
  // A name of the thread that calls: the main loop has its own, and so has the delivery thread of the voice. Any
  // thread.
  virtual std::string CurrentThread() const;
  // Does `action` while no further thread can be created.
  virtual void WithoutThreads(const std::function<void()>& action);

  // Lets a file with this content lie at a fixed absolute path of the television.
  virtual void PlaceFile(const std::string& fixedPath, const std::string& content);
  // The records that the system log holds, oldest first.
  virtual std::vector<LogRecord> LogRecords() const;
  // Writes a settings key, as another process of the television does. Keys begin with "db/conformance/".
  virtual void PutSetting(const std::string& key, int value);
  // Leaves a value that is no 32-bit integer under the key.
  virtual void SpoilSetting(const std::string& key);
  // Sends this process SIGTERM, SIGINT, SIGHUP or SIGQUIT.
  virtual void SendTerminationSignal(int number);
  // Begins to send a message to the application, as another process does. A null body: the message has none.
  virtual void SendMessage(const FwMessage& message);
  // The body of the reply to each message so far, in the order of sending, as far as they have come.
  virtual std::vector<Json::Value> Replies() const;
  // Selects a sound output, 0: the television's own speaker.
  virtual void SelectSpeaker(std::int32_t selection);
  virtual void PutTvState(const TvState& state);
  // The records that the event-log collector holds, oldest first.
  virtual std::vector<EventRecord> EventRecords() const;

  // Before the first call of the voice channel: the remote falls silent so long after a start or "go on" command.
  virtual void ShortenVoiceWindow(int windowMs);
  // Before the first call of the voice channel: about every second block is lost on its way.
  virtual void LoseVoiceBlocks();
  // The next start command fails with this result.
  virtual void RefuseVoiceStart(int result);

  // From now on the service cannot be reached: each of its operations fails as its header says.
  virtual void Break(Ability service);

private:
  std::set<Ability> m_Abilities;
};

// Defined by the port's driver. A process makes drivers one after the other.
std::unique_ptr<PortDriver> MakePortDriver();

}  // namespace orvex::conformance
