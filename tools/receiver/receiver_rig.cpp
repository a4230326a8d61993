// The shipped receiver without a television. It tells of itself in its log lines; the rig's log takes their values
// before they are rounded into a text, and formats nothing.
#include "receiver/receiver_rig.h"

#include <cstdarg>
#include <cstring>
#include <string>
#include <utility>

#include "orvex/platform/system_log.h"

namespace orvex::tools {
namespace {

// The rig that this thread feeds.
struct Feeding {
  ReceiverListener* listener = nullptr;
  const OrvexReceiver* receiver = nullptr;
  BufferCount* count = nullptr;
};
thread_local Feeding feeding;

class FeedingScope {
public:
  explicit FeedingScope(const Feeding& one) { feeding = one; }
  ~FeedingScope() { feeding = {}; }
  FeedingScope(const FeedingScope&) = delete;
  FeedingScope& operator=(const FeedingScope&) = delete;
};

// Behind the prefix that every line has: file, function, line number.
void SkipPrefix(va_list& arguments) {
  static_cast<void>(va_arg(arguments, const char*));
  static_cast<void>(va_arg(arguments, const char*));
  static_cast<void>(va_arg(arguments, int));
}

double TakeWide(va_list& arguments) {
  return static_cast<double>(va_arg(arguments, long double));
}

void TakeBlock(std::int32_t buffer, va_list& arguments) {
  BlockLevels levels;
  static_cast<void>(va_arg(arguments, int));
  levels.at17000 = TakeWide(arguments);
  levels.at19000 = TakeWide(arguments);
  levels.at17500 = TakeWide(arguments);
  levels.at18000 = TakeWide(arguments);
  levels.ratio17 = TakeWide(arguments);
  levels.ratio19 = TakeWide(arguments);
  levels.ambient17000 = va_arg(arguments, double);
  levels.ambient19000 = va_arg(arguments, double);
  levels.ambient17500 = va_arg(arguments, double);
  levels.ambient18000 = va_arg(arguments, double);
  feeding.listener->OnBlock(buffer, levels);
}

void TakeNoisy(std::int32_t buffer, Tone tone, va_list& arguments) {
  static_cast<void>(TakeWide(arguments));
  feeding.listener->OnNoisy(buffer, tone, va_arg(arguments, int));
}

// The two results are logged in the order 17 kHz, 19 kHz; the listener gets the order of detection.
void TakeResult(std::int32_t buffer, bool isReverse, va_list& arguments) {
  std::int32_t first = va_arg(arguments, int);
  std::int32_t second = va_arg(arguments, int);
  if (isReverse) {
    std::swap(first, second);
  }
  feeding.listener->OnResult(buffer, feeding.count->Earlier(first), feeding.count->Earlier(second),
                             va_arg(arguments, double));
}

struct Line {
  const char* message;
  void (*take)(std::int32_t buffer, va_list& arguments);
};

constexpr Line kLines[] = {
    {"%d / %Lf %Lf %Lf %Lf / %Lf %Lf / %lf %lf %lf %lf", TakeBlock},
    {"completed ambient noise", [](std::int32_t buffer, va_list&) { feeding.listener->OnAmbient(buffer); }},
    {"  ====> @ g_first index \n",
     [](std::int32_t buffer, va_list&) { feeding.listener->OnFirst(buffer, Tone::k17000Hz); }},
    {"@ g_first index (reverse)\n",
     [](std::int32_t buffer, va_list&) { feeding.listener->OnFirst(buffer, Tone::k19000Hz); }},
    {"syquence error -> recheck \n", [](std::int32_t buffer, va_list&) { feeding.listener->OnSequence(buffer); }},
    {"noise is high / %Lf / %d",
     [](std::int32_t buffer, va_list& arguments) { TakeNoisy(buffer, Tone::k17000Hz, arguments); }},
    {"noise value is too high/ %Lf / %d",
     [](std::int32_t buffer, va_list& arguments) { TakeNoisy(buffer, Tone::k19000Hz, arguments); }},
    {"@ [RESULT] [%d] - [%d] : %0.4f s\n",
     [](std::int32_t buffer, va_list& arguments) { TakeResult(buffer, false, arguments); }},
    {"(ruvo)   ====> @ [RESULT] [%d] - [%d] : %0.4f s\n",
     [](std::int32_t buffer, va_list& arguments) { TakeResult(buffer, true, arguments); }},
    {"by abnormal input", [](std::int32_t buffer, va_list&) { feeding.listener->OnAbnormal(buffer); }},
    {"[Recorder] Extend bt audio recorder", [](std::int32_t buffer, va_list&) { feeding.listener->OnExtend(buffer); }},
};

// The message within a line's format: behind "%s: %s(%d) > " and a colour escape, before the reset.
bool HasMessage(const char* format, const char* message) {
  constexpr std::size_t kBeginning = 13 + 5;
  const std::size_t length = std::strlen(message);
  return std::strncmp(format + kBeginning, message, length) == 0 && format[kBeginning + length] == '\033';
}

}  // namespace

ReceiverRig::ReceiverRig(ReceiverListener& listener, bool hearable)
    : m_Listener(listener), m_Receiver(OrvexReceiverCallbacks{}) {
  m_Receiver.SetHearable(hearable);
  m_Receiver.StartBTRecoder();
}

ReceiverRig::~ReceiverRig() = default;

void ReceiverRig::Deliver(const std::uint8_t* bytes, std::uint16_t byteCount) {
  if (m_Receiver.GetBufferCount() == 0) {  // it has been started
    m_Count = {};
  }
  const FeedingScope scope({&m_Listener, &m_Receiver, &m_Count});
  const VoiceData record{byteCount, bytes};
  OrvexReceiver::m_ReceiveBTAudioDataCB(&record, &m_Receiver);
}

}  // namespace orvex::tools

// The platform's log listens; the rest of the platform is in null_platform.cpp.

int system_log_print(LogBuffer /*buffer*/, LogPriority /*priority*/, const char* /*tag*/, const char* format, ...) {
  using orvex::tools::feeding;
  if (feeding.listener == nullptr) {
    return 0;
  }
  for (const auto& line : orvex::tools::kLines) {
    if (orvex::tools::HasMessage(format, line.message)) {
      va_list arguments;
      va_start(arguments, format);
      orvex::tools::SkipPrefix(arguments);
      line.take(feeding.count->CountOn(feeding.receiver->GetBufferCount()), arguments);
      va_end(arguments);
      break;
    }
  }
  return 0;
}
