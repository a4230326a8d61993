// Names, numbers with their units, and the smallest elements for the report.
#pragma once

#include <cstdint>
#include <string>

#include "receiver/receiver_rig.h"

namespace orvex::tools {

// "17 kHz", "19 kHz".
const char* NameOf(Tone tone);
// What the tone is played on: "television's speaker", "optical output".
const char* OriginOf(Tone tone);
// "buffer 58 (0.957 s)"; the time is that of the buffer's end.
std::string BufferText(std::int32_t buffer);
// "1 block", "2 blocks".
std::string Counted(std::int64_t count, const char* what);

// A name and its value, within a list of facts. The value is escaped.
std::string Fact(const std::string& name, const std::string& value);
// What differs between the recordings of a page.
struct PagePart {
  std::string prefix;  // of the elements' names
  int heading = 2;     // level of the headings
};
std::string Heading(const PagePart& part, const std::string& html);
// Can be scrolled sideways where the window is narrow, also by the keyboard. The name is escaped.
std::string Scrollable(const std::string& name, const std::string& html);
// A chart below its title and legend. `where`, which tells charts of one title apart, is heard and not seen.
std::string Figure(const std::string& title, const std::string& legend, const std::string& chart,
                   const std::string& where = "");

// 20 log10; minus infinity for 0.
double Decibels(double ratio);
// A magnitude in dB below that of a sine at full scale that fills the block.
double LevelDbfs(double magnitude);

}  // namespace orvex::tools
