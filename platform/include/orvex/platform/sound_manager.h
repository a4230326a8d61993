// Contract: the television's sound manager. Main loop only.
//
// A failed read leaves its target untouched, a failed write changes nothing. Where the television's own function writes
// before it fails, a port reads into a variable of its own and copies on success.
//
// The service takes a muted speaker out of mute, at volume 0, and puts both back at its end: mute and volume are
// separate states, and a port MUST NOT let one of them change the other.
#pragma once

#include <cstdint>

// Results of every operation.

// The value was read, or is in force: the next read gives it.
constexpr int kSoundDone = 0;
// The manager cannot be reached, or the television has none.
constexpr int kSoundUnreachable = -1;
// There is no such device, or the volume is out of range. Nothing is clamped.
constexpr int kSoundOutOfRange = -2;

// Mute state of a device: true is silent. Device 0 is the television's own speaker, the only one that the service asks
// for; there need not be another one.
int sound_manager_get_device_mute(int device, bool* muted);
int sound_manager_set_device_mute(int device, bool muted);

// Master volume, 0 (silent) to 100. Every whole number of the range can be set and is read as it was set.
int sound_manager_get_tv_master_volume(std::int32_t* level);
int sound_manager_set_tv_master_volume(std::int32_t level);

// The selected sound output: 0 is the television's own speaker, every other value an output beside or instead of it.
// The service mutes the speaker again only when another output is selected.
int sound_manager_get_speaker_selection(std::int32_t* selection);
