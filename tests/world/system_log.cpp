// The system log in virtual time: every line goes into the journal.
#include "orvex/platform/system_log.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "world/world.h"

using orvex::world::World;

namespace {

struct Style {
  LogPriority priority;
  char letter;
  const char* colour;
};

constexpr Style kStyles[] = {{LogPriority::kDebug, 'D', "\033[37m"},
                             {LogPriority::kInfo, 'I', "\033[32m"},
                             {LogPriority::kWarning, 'W', "\033[33m"},
                             {LogPriority::kError, 'E', "\033[31m"}};

// Takes "file: function(line) > <colour>message<reset>" apart; a line of another form, colour or tag stands out.
orvex::world::Entry Parse(LogBuffer buffer, LogPriority priority, const std::string& tag, const std::string& record) {
  World& world = World::Current();
  orvex::world::Entry entry{world.scheduler.Now(),
                            world.scheduler.CurrentThread(),
                            "MALFORMED " + record,
                            "",
                            "",
                            record,
                            tag,
                            buffer,
                            priority};
  const std::string reset = "\033[0m\n";
  const std::size_t colourAt = record.find(") > ");
  for (const Style& style : kStyles) {
    const std::string colour = style.colour;
    if (style.priority != priority || tag != "Orvex" || colourAt == std::string::npos ||
        record.compare(colourAt + 4, colour.size(), colour) != 0 || record.size() < reset.size() ||
        record.compare(record.size() - reset.size(), reset.size(), reset) != 0) {
      continue;
    }
    const std::size_t textAt = colourAt + 4 + colour.size();
    const std::size_t functionAt = record.find(": ");
    entry.file = record.substr(0, functionAt);
    entry.function = record.substr(functionAt + 2, record.rfind('(', colourAt) - functionAt - 2);
    entry.text = std::string(1, style.letter) + std::to_string(static_cast<int>(buffer)) + " " +
                 record.substr(textAt, record.size() - reset.size() - textAt);
  }
  return entry;
}

}  // namespace

int system_log_print(LogBuffer buffer, LogPriority priority, const char* tag, const char* format, ...) {
  World* world = World::CurrentOrNull();
  if (world == nullptr) {
    return 0;
  }
  va_list arguments;
  va_start(arguments, format);
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string record(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(record.data(), record.size() + 1, format, again);
  va_end(again);
  world->journal.Add(Parse(buffer, priority, tag, record));
  return length;
}
