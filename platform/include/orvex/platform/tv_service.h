// Contract: queries of the television's service layer. Main loop's thread; tv_get_hdmi_input_count() MAY be called
// before main(). All objects and texts that are handed out belong to the port and are never released by the caller.
#pragma once

#include <cstdint>

// Results of the queries below that say done or failed.
constexpr int kTvDone = 0;     // done
constexpr int kTvFailed = -1;  // the query failed, its targets are untouched; a port MAY give another negative number

// Number of HDMI inputs, 0 or more; negative when unknown.
int tv_get_hdmi_input_count();

// The device that is active on a source.
struct TvActivityInfo {
  std::int32_t deviceType;  // the television's number for the kind of device
  const char* brandName;    // UTF-8, NUL-terminated, never null
};

// Information on the device active on `source`, or null when there is none or the query failed. Valid until the next
// call.
const TvActivityInfo* tv_get_activity_info_by_source(int source);

// The video signal's details.
struct TvResolution {
  std::int32_t frequency;  // Hz as the television counts it
};

// Video queries.
class IAVControl {
public:
  // `*resolution` goes in as the query's selector and comes back as the resolution code; `*record` is filled.
  // Results: kTvDone, kTvFailed.
  virtual int getResolution(std::int32_t* resolution, TvResolution* record) = 0;

protected:
  ~IAVControl() = default;
};

// Gives the video control of a screen (`profile` 1, `screen` 0 is the main picture).
// kTvDone: `*control` is not null. kTvFailed.
int tv_create_av_control(int profile, int screen, IAVControl** control);

// Number of an input source, as the television counts them.
enum ESource : std::int32_t {};

// Source queries.
class ISourceControl {
public:
  // kTvDone: `*source` holds the current source. kTvFailed.
  virtual int getCurrentSource(ESource* source) = 0;

protected:
  ~ISourceControl() = default;
};

// Gives the source control; arguments and results as tv_create_av_control(). On failure `*control` is untouched.
int tv_create_source_control(int profile, int screen, ISourceControl** control);
