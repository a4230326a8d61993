// The framework events that drive a run. Every decision of a run is taken in answer to one of them, on the main loop.
#pragma once

#include <cstdint>

enum OrvexEventId : std::int32_t {
  ORVEX_START_SYNC = 10000,            // begin the run
  ORVEX_END_SYNC = 10001,              // a difference was found, or the test sound is over
  ORVEX_PLAY_INAUDIBLE_SOUND = 10002,  // the ambient level is known
  ORVEX_STOP_INAUDIBLE_SOUND = 10003,
  ORVEX_START_BT_RECODING = 10004,
  ORVEX_RESTART_BT_RECODING = 10005,  // measure again, when the delay has changed meanwhile
  ORVEX_FINISH_BT_RECODING = 10006,
  ORVEX_EXIT = 10007,  // end the process
};
