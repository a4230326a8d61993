// The parts of the page that are the same for every recording.
#pragma once

namespace orvex::tools {

extern const char kPageBegin[];  // up to the title
extern const char kPageStyle[];
extern const char kPageNotes[];

extern const char kReadoutHint[];

// Of the charts.
constexpr char kSpectrogramTitle[] = "Sound over time and frequency";
constexpr char kEventsTitle[] = "What the receiver reported";
constexpr char kTonesTitle[] = "The two tones";
constexpr char kRatiosTitle[] = "Each tone over the mean of 17.5 and 18 kHz";
constexpr char kNeighboursTitle[] = "The neighbour frequencies";

extern const char kSpectrogramLegend[];
extern const char kEventsLegend[];
extern const char kTonesLegend[];
extern const char kRatiosLegend[];
extern const char kNeighboursLegend[];
extern const char kOnset17Legend[];
extern const char kOnset19Legend[];
extern const char kReadingsLegend[];
extern const char kFineNotes[];

}  // namespace orvex::tools
