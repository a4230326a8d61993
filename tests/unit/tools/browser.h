// Opens a page in headless Chromium and tells what it shows.
#pragma once

#include <json/value.h>

#include <string>

#include "unit/tools/temporary_folder.h"

namespace orvex::tools {

// Whether Chromium is installed.
bool HasBrowser();

struct Window {
  int width;
  bool isDark = false;  // the reader's setting
};

// Shows the page and returns what the browser made of it. Only what looks is a script, which the page's own policy
// would not let run. All that is folded away is opened.
//   errors     script errors and everything that the page's own policy forbade
//   resources  files that it loaded
//   overflow   pixels that it is wider than the window
//   overlaps   pairs of texts of one chart that cover each other
//   cut        texts and marks that their chart has no room for, also those that are not shown yet
//   paper      colour behind the page
//   faint      texts that have less than 4.5 : 1 of contrast
//   small      texts that are less than 11.5 pixels high
//   unreached  what the keyboard cannot reach of what can be scrolled, opened or followed
//   headline, reasons, facts
//   charts     by name: curves { label, points, colour, peak, isInside }, pairs { first, second } with the run's own
//              pair alone, the number of thresholds, marks by style, uprights of onsets and ends of intervals,
//              intervals { from, to, dot }. Buffers, or what else the chart is over, are measured from where the
//              browser drew them.
//   readouts   what stands below the charts while a buffer is pointed at, and how many of them are shown without that
Json::Value LookAt(const std::string& page, const Window& window, const TemporaryFolder& folder);

}  // namespace orvex::tools
