// A page in a real browser, headless Chromium.
#pragma once

#include <json/value.h>

#include <string>

#include "unit/tools/temporary_folder.h"

namespace orvex::tools {

// Whether there is one.
bool HasBrowser();

// Shows the page in a window `width` pixels wide and returns what the browser made of it:
//   errors     script errors and everything that the page's own policy forbade
//   resources  files that it loaded
//   overflow   pixels that it is wider than the window
//   overlaps   the texts within one chart that lie on each other
//   headline, reasons, facts
//   charts     by name: curves { label, points, colour, peak, isInside }, the run's own pair as pairs { first, second
//   }, marks by style.
//              Buffers are measured from where the browser drew them.
//   readouts   what the cursor says at buffer `pointAt` of the first chart of tones
Json::Value LookAt(const std::string& page, int width, int pointAt, const TemporaryFolder& folder);

}  // namespace orvex::tools
