// The colours of all pages and pictures.
#pragma once

#include <string>

namespace orvex::tools {

// Rules of a style sheet that name the colours, light ones and dark ones. Each --ink can be read on each --paper: a
// test computes the contrasts.
extern const char kPalette[];

// `style` with the light colours in place of their names, var(--ink), and once more with the dark ones for readers who
// have set that. For pictures that are files of their own: few programs but browsers know named colours.
std::string WithColours(const std::string& style);

}  // namespace orvex::tools
