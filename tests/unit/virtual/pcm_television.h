// The virtual television of one test of sound and recording.
#pragma once

#include <string>

#include "unit/virtual/television.h"
#include "virtual/alsa_config.h"

namespace orvex::virtual_tv {

// A process has one room and one sound device, so each test needs a process of its own, as ctest gives it. room.json is
// written before their first use.
class PcmTelevision : public TelevisionTest {
protected:
  void SetUp() override {
    static bool isTaken = false;
    if (isTaken) {
      GTEST_SKIP() << "needs a process of its own: run it by ctest, or alone by --gtest_filter";
    }
    isTaken = true;
    TelevisionTest::SetUp();
    if (!IsSkipped()) {
      ConfigureAlsa();
    }
  }
};

}  // namespace orvex::virtual_tv
