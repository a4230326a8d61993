// Opens a page in headless Chromium and tells what it shows.
#pragma once

#include <json/value.h>

#include <string>

#include "unit/tools/temporary_folder.h"

namespace orvex::tools {

// Whether Chromium is installed.
bool HasBrowser();

// Shows the page in a window `width` pixels wide and returns what the browser made of it:
//   errors     script errors and everything that the page's own policy forbade
//   resources  files that it loaded
//   overflow   pixels that it is wider than the window
//   overlaps   pairs of texts of one chart that cover each other
//   headline, reasons, facts
//   charts     by name: curves { label, points, colour, peak, isInside }, pairs { first, second } with the run's own
//              pair alone, the number of thresholds, marks by style, uprights of onsets and ends of intervals,
//              intervals { from, to, dot }. Buffers, or what else the chart is over, are measured from where the
//              browser drew them.
//   readout    what the cursor says at buffer `pointAt` of the first chart of tones
Json::Value LookAt(const std::string& page, int width, int pointAt, const TemporaryFolder& folder);

}  // namespace orvex::tools
