// Opens the virtual sound device: "hw:0,8" and no other.
#include "virtual/pcm_plugin.h"

#include <alsa/asoundlib.h>
#include <alsa/pcm_external.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string>
#include <utility>

#include "linux/no_destroy.h"
#include "virtual/faults.h"
#include "virtual/living_room.h"
#include "virtual/virtual_pcm.h"

namespace orvex::virtual_tv {
namespace {

std::deque<PcmFaultPoint> ListedFaults() {
  constexpr std::array<std::pair<Fault, PcmFault>, 4> kPcmFaults{{
      {Fault::kPcmUnderrunAtFrame, PcmFault::kUnderrun},
      {Fault::kPcmSuspendAtFrame, PcmFault::kSuspend},
      {Fault::kPcmDisconnectAtFrame, PcmFault::kDisconnect},
      {Fault::kPcmStallAtFrame, PcmFault::kStall},
  }};
  std::deque<PcmFaultPoint> points;
  for (const auto& [listed, fault] : kPcmFaults) {
    for (const std::uint64_t frame : Faults::Instance().Frames(listed)) {
      points.push_back({frame, fault});
    }
  }
  std::stable_sort(points.begin(), points.end(), [](const auto& a, const auto& b) { return a.frame < b.frame; });
  return points;
}

PcmSlot& Slot() {
  static const port::NoDestroy<PcmSlot> slot(ListedFaults());
  return *slot;
}

// Card 0, device 8 and nothing else is in the television.
int CheckAddress(snd_config_t* config) {
  constexpr long kDevice = 8;
  snd_config_t* entry = nullptr;
  long device = 0;
  const char* card = nullptr;
  if (snd_config_search(config, "device", &entry) < 0 || snd_config_get_integer(entry, &device) < 0 ||
      snd_config_search(config, "card", &entry) < 0 || snd_config_get_string(entry, &card) < 0) {
    SNDERR("orvex: expected a text \"card\" and a number \"device\"");
    return -EINVAL;
  }
  return device == kDevice && std::string(card) == "0" ? 0 : -ENOENT;
}

int OpenInSlot(snd_pcm_t** pcm, const char* name, snd_pcm_stream_t direction, int mode) {
  auto device = std::make_unique<VirtualPcm>(LivingRoom::Instance(), Slot());
  int result = device->Create(name, direction, mode);
  if (result < 0) {
    return result;
  }
  VirtualPcm* const owned = device.release();
  result = owned->SetConstraints();
  if (result < 0) {
    snd_pcm_close(owned->GetPcm());
    return result;
  }
  *pcm = owned->GetPcm();
  return 0;
}

// 0: open. Negative: -EBUSY open already, -ENOENT no such card, device or direction, -EINVAL a bad configuration, or
// the answer to "pcm.open" in the television's faults.
int OpenDevice(snd_pcm_t** pcm, const char* name, snd_config_t* config, snd_pcm_stream_t direction, int mode) {
  const int address = CheckAddress(config);
  if (address < 0 || direction != SND_PCM_STREAM_PLAYBACK) {
    return address < 0 ? address : -ENOENT;
  }
  const int answer = Faults::Instance().Next(Fault::kPcmOpen).value_or(0);
  if (answer < 0) {
    return answer;
  }
  return Slot().isTaken.exchange(true) ? -EBUSY : OpenInSlot(pcm, name, direction, mode);
}

}  // namespace
}  // namespace orvex::virtual_tv

extern "C" {

SND_PCM_PLUGIN_DEFINE_FUNC(orvex) {
  static_cast<void>(root);
  return orvex::virtual_tv::OpenDevice(pcmp, name, conf, stream, mode);
}

SND_PCM_PLUGIN_SYMBOL(orvex)

}  // extern "C"
