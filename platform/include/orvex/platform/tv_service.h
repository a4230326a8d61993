// Contract: queries of the television's service layer. Main loop's thread; tv_get_hdmi_input_count() is called before
// main(), when the port has not been started, and MUST answer then.
//
// What they answer is logged and sent as telemetry; no decision of a run depends on it. All objects and texts that are
// handed out belong to the port and are never released by the caller.
#pragma once

#include <cstdint>

// Results of the queries below that say done or failed.

// The targets hold the answer.
constexpr int kTvDone = 0;
// The query failed: the service layer is not there, or it knows no answer now. All targets are untouched. A port MAY
// give another negative number.
constexpr int kTvFailed = -1;

// Number of HDMI inputs, 0 or more; negative when unknown. The service does not use the answer.
int tv_get_hdmi_input_count();

// The device that is active on a source.
struct TvActivityInfo {
  std::int32_t deviceType;  // the television's number for the kind of device
  const char* brandName;    // UTF-8, NUL-terminated, never null
};

// Information on the device active on `source`, or null when there is none or the query failed. Record and text are
// valid until the next call. The service asks for source 99.
const TvActivityInfo* tv_get_activity_info_by_source(int source);

// The video signal's details.
struct TvResolution {
  std::int32_t frequency;  // Hz as the television counts it
};

// Video queries. Has no virtual destructor and needs none: nobody deletes one through this type.
class IAVControl {
public:
  // `*resolution` goes in as the query's selector, 2, and comes back as the resolution code; `*record` is filled. One
  // control is asked again after the service layer has failed, and fails then.
  // Results: kTvDone, kTvFailed.
  virtual int getResolution(std::int32_t* resolution, TvResolution* record) = 0;

protected:
  ~IAVControl() = default;
};

// Gives the video control of a screen (`profile` 1, `screen` 0 is the main picture). The port MUST hand out an object
// with kTvDone and none with a failure. The object lives until the process ends; each call MAY give the same one.
// Results: kTvDone (`*control` is not null), kTvFailed (`*control` is untouched).
int tv_create_av_control(int profile, int screen, IAVControl** control);

// Number of an input source, as the television counts them. The enumerators are the television's own; the service shows
// the number.
enum ESource : std::int32_t {};

// Source queries. Nobody deletes one through this type either.
class ISourceControl {
public:
  // The source that the main picture shows.
  // Results: kTvDone (`*source` holds it), kTvFailed.
  virtual int getCurrentSource(ESource* source) = 0;

protected:
  ~ISourceControl() = default;
};

// Gives the source control; arguments, lifetime and results as of tv_create_av_control().
int tv_create_source_control(int profile, int screen, ISourceControl** control);
