// Two output cards and a microphone in one room, each with a clock of its own. The cards run in the daemon as sound
// devices of libasound; what they have in common with the test is in a file that both map.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace orvex::integration {

struct CardDesign {
  double clockPpm = 0.0;  // its 48000 Hz against CLOCK_MONOTONIC
  double wayMs = 10.0;    // of an output: until its sound has arrived at the microphone
};

// A card's clock ticks 48000 times a second, more or less, from the room's beginning on, whatever the card does. One
// thread plays to an output; any may look at what it plays.
class RoomCard {
public:
  static constexpr int kRateHz = 48000;

  void Begin(const CardDesign& design, std::int64_t nowNs);
  double TickAt(std::int64_t timeNs) const;
  double NsOf(double tick) const;
  double GetWayMs() const { return m_WayMs; }

  // The device begins, or goes on after it has lost sound.
  void Start(std::int64_t tick);
  // The tick at which it began after a rest, or for the first time; 0: never. Sound that was lost is no rest.
  std::int64_t RunsSince() const { return m_RunsSince; }

  // What it plays from this tick on. What was to be played later is replaced.
  void Play(std::int64_t tick, const std::int16_t* samples, std::size_t stride, std::size_t count);
  // 0 where nothing was played, where that is too long ago, and in the future.
  std::int16_t GetSample(std::int64_t tick) const;
  // Between ticks, as a converter plays it.
  double GetLevel(double tick) const;

private:
  static constexpr std::int64_t kKept = 1 << 20;  // 22 s
  static constexpr std::int64_t kRest = kRateHz / 2;

  std::int64_t m_BeginNs = 0;
  double m_RateHz = kRateHz;
  double m_WayMs = 0.0;
  std::atomic<std::int64_t> m_RunsSince{0};
  std::atomic<std::int64_t> m_End{0};  // tick after the last one that was played
  std::array<std::int16_t, kKept> m_Samples{};
};

struct RoomCards {
  RoomCard reference;
  RoomCard delayed;
  RoomCard microphone;
};

// In the file, for as long as this object lives.
class SharedRoomCards {
public:
  // `file`: is made when it is not there. Throws std::system_error.
  explicit SharedRoomCards(const std::filesystem::path& file);
  ~SharedRoomCards();
  SharedRoomCards(const SharedRoomCards&) = delete;
  SharedRoomCards& operator=(const SharedRoomCards&) = delete;

  RoomCards& operator*() const { return *m_Cards; }
  RoomCards* operator->() const { return m_Cards; }

private:
  RoomCards* m_Cards;
};

// CLOCK_MONOTONIC.
std::int64_t MonotonicNs();

}  // namespace orvex::integration
