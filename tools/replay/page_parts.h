// The parts of the page that are the same for every recording.
#pragma once

namespace orvex::tools {

extern const char kPageBegin[];  // up to the title
extern const char kPageStyle[];
extern const char kFineStyle[];   // of the fine reading, after kPageStyle
extern const char kPageScript[];  // a cursor that reads the curves; needs `bufferS`, seconds per buffer
extern const char kPageNotes[];

extern const char kReadoutHint[];
extern const char kEventsLegend[];
extern const char kTonesLegend[];
extern const char kRatiosLegend[];
extern const char kNeighboursLegend[];
extern const char kOnset17Legend[];
extern const char kOnset19Legend[];
extern const char kIntervalLegend[];
extern const char kFineNotes[];

}  // namespace orvex::tools
