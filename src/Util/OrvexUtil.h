// Queries the television for the telemetry: device, video signal, source and codec.
#pragma once

#include <cstdint>
#include <string>

#include "orvex/platform/tv_service.h"

// No query fails to its caller: what cannot be found out keeps the default. Main loop only. The numbers are the
// television's own.
class OrvexUtil {
public:
  // Brand and type of the active device; "none" and -1.
  static void GetDeviceInfo(std::string& brandName, std::int32_t& deviceType);
  // "tv", resolution code and frequency of the video signal; "none", 0 and 0.
  static void GetSourceInfo(std::string& videoKind, std::uint32_t& resolution, std::uint32_t& frequency);
  // The current input source; 0.
  static void GetCurrentSource(ESource& source);
  // Codec of the S/PDIF output; 0.
  static void GetSPDIFOUTCodec(std::uint32_t& codec);
};
