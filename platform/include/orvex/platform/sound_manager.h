// Contract: the television's sound manager. Main loop only. Device 0 is the television's own speaker.
//
// A failed read leaves its target untouched, a failed write changes nothing.
#pragma once

#include <cstdint>

// Results of every operation.
constexpr int kSoundDone = 0;          // done
constexpr int kSoundUnreachable = -1;  // the manager cannot be reached
constexpr int kSoundOutOfRange = -2;   // no such device, or a value out of range

// Mute state of a device: true is silent.
int sound_manager_get_device_mute(int device, bool* muted);
int sound_manager_set_device_mute(int device, bool muted);

// Master volume, 0 (silent) to 100.
int sound_manager_get_tv_master_volume(std::int32_t* level);
int sound_manager_set_tv_master_volume(std::int32_t level);

// The selected sound output: 0 is the television's own speaker, every other value an output beside or instead of it.
int sound_manager_get_speaker_selection(std::int32_t* selection);
