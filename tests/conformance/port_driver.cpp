// A driver that can tell the time and nothing else.
#include "conformance/port_driver.h"

#include <pthread.h>

#include <chrono>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace orvex::conformance {
namespace {

[[noreturn]] void Refuse(const char* operation) {
  throw std::logic_error(std::string(operation) + "() is declared as an ability, but the driver does not override it");
}

}  // namespace

std::set<Ability> AllAbilities() {
  constexpr auto kLast = static_cast<int>(Ability::kBreakEventLog);
  std::set<Ability> abilities;
  for (int number = 0; number <= kLast; ++number) {
    abilities.insert(static_cast<Ability>(number));
  }
  return abilities;
}

std::optional<LogRecord> ParseLogRecord(const std::string& line) {
  static const std::regex form(R"((main|system) ([DIWE]) ([^:]*): )");
  std::smatch match;
  if (!std::regex_search(line, match, form, std::regex_constants::match_continuous)) {
    return std::nullopt;
  }
  const LogBuffer buffer = match[1] == "main" ? LogBuffer::kMain : LogBuffer::kSystem;
  const auto priority =
      static_cast<int>(LogPriority::kDebug) + static_cast<int>(std::string("DIWE").find(match[2].str()));
  return LogRecord{buffer, static_cast<LogPriority>(priority), match[3], match.suffix()};
}

double PortDriver::NowMs() const {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double, std::milli>(now).count();
}

std::string PortDriver::CurrentThread() const {
  std::ostringstream text;
  text << std::this_thread::get_id();
  return text.str();
}

// No address space has room for the stack that a new thread gets.
void PortDriver::WithoutThreads(const std::function<void()>& action) {
  constexpr std::size_t kTooLargeStack = std::size_t{0xE} << (8 * sizeof(std::size_t) - 4);
  pthread_attr_t attributes;
  pthread_getattr_default_np(&attributes);
  std::size_t usualStack = 0;
  pthread_attr_getstacksize(&attributes, &usualStack);
  pthread_attr_setstacksize(&attributes, kTooLargeStack);
  pthread_setattr_default_np(&attributes);
  action();
  pthread_attr_setstacksize(&attributes, usualStack);
  pthread_setattr_default_np(&attributes);
  pthread_attr_destroy(&attributes);
}

void PortDriver::PlaceFile(const std::string& /*fixedPath*/, const std::string& /*content*/) {
  Refuse("PlaceFile");
}
std::vector<LogRecord> PortDriver::LogRecords() const {
  Refuse("LogRecords");
}
void PortDriver::PutSetting(const std::string& /*key*/, int /*value*/) {
  Refuse("PutSetting");
}
void PortDriver::SpoilSetting(const std::string& /*key*/) {
  Refuse("SpoilSetting");
}
void PortDriver::SendTerminationSignal(int /*number*/) {
  Refuse("SendTerminationSignal");
}
void PortDriver::SendMessage(const FwMessage& /*message*/) {
  Refuse("SendMessage");
}
std::vector<Json::Value> PortDriver::Replies() const {
  Refuse("Replies");
}
void PortDriver::SelectSpeaker(std::int32_t /*selection*/) {
  Refuse("SelectSpeaker");
}
void PortDriver::PutTvState(const TvState& /*state*/) {
  Refuse("PutTvState");
}
std::vector<EventRecord> PortDriver::EventRecords() const {
  Refuse("EventRecords");
}
void PortDriver::ShortenVoiceWindow(int /*windowMs*/) {
  Refuse("ShortenVoiceWindow");
}
void PortDriver::LoseVoiceBlocks() {
  Refuse("LoseVoiceBlocks");
}
void PortDriver::RefuseVoiceStart(int /*result*/) {
  Refuse("RefuseVoiceStart");
}
void PortDriver::Break(Ability /*service*/) {
  Refuse("Break");
}

}  // namespace orvex::conformance
