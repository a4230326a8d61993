// A file of zeros is a room whose clocks have not begun.
#include "pipewire/room_cards.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>

namespace orvex::integration {
namespace {

constexpr double kNsPerSecond = 1e9;
// Taps on each side: enough for 19 kHz at 48000 Hz, and shorter than any way to the microphone.
constexpr int kTaps = 24;

}  // namespace

void RoomCard::Begin(const CardDesign& design, std::int64_t nowNs) {
  m_BeginNs = nowNs;
  m_RateHz = kRateHz * (1.0 + design.clockPpm * 1e-6);
  m_WayMs = design.wayMs;
}

double RoomCard::TickAt(std::int64_t timeNs) const {
  return static_cast<double>(timeNs - m_BeginNs) / kNsPerSecond * m_RateHz;
}

double RoomCard::NsOf(double tick) const {
  return static_cast<double>(m_BeginNs) + tick / m_RateHz * kNsPerSecond;
}

void RoomCard::Start(std::int64_t tick) {
  if (m_End == 0 || tick - m_End > kRest) {
    m_RunsSince = tick;
  }
}

void RoomCard::Play(std::int64_t tick, const std::int16_t* samples, std::size_t stride, std::size_t count) {
  const std::int64_t silentFrom = std::max(m_End.load(), tick - kKept);
  for (std::int64_t silent = silentFrom; silent < tick; ++silent) {
    m_Samples[static_cast<std::size_t>(silent % kKept)] = 0;
  }
  for (std::size_t n = 0; n < count; ++n) {
    m_Samples[static_cast<std::size_t>((tick + static_cast<std::int64_t>(n)) % kKept)] = samples[n * stride];
  }
  m_End = tick + static_cast<std::int64_t>(count);
}

std::int16_t RoomCard::GetSample(std::int64_t tick) const {
  const std::int64_t end = m_End;
  return tick < 0 || tick >= end || tick < end - kKept ? std::int16_t{0}
                                                       : m_Samples[static_cast<std::size_t>(tick % kKept)];
}

// The sum of sin(pi x) / (pi x) under a Hann window.
double RoomCard::GetLevel(double tick) const {
  const double whole = std::floor(tick);
  const double rest = tick - whole;
  const auto first = static_cast<std::int64_t>(whole);
  if (rest < 1e-9) {
    return GetSample(first);
  }
  double level = 0.0;
  for (int tap = 1 - kTaps; tap <= kTaps; ++tap) {
    const double x = rest - tap;
    const double window = 0.5 + 0.5 * std::cos(M_PI * x / (kTaps + 1));
    level += GetSample(first + tap) * std::sin(M_PI * x) / (M_PI * x) * window;
  }
  return level;
}

SharedRoomCards::SharedRoomCards(const std::filesystem::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor < 0 || ::ftruncate(descriptor, sizeof(RoomCards)) != 0) {
    throw std::system_error(errno, std::generic_category(), file);
  }
  void* const memory = ::mmap(nullptr, sizeof(RoomCards), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  ::close(descriptor);
  if (memory == MAP_FAILED) {
    throw std::system_error(errno, std::generic_category(), file);
  }
  m_Cards = static_cast<RoomCards*>(memory);
}

SharedRoomCards::~SharedRoomCards() {
  ::munmap(m_Cards, sizeof(RoomCards));
}

std::int64_t MonotonicNs() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * std::int64_t{1'000'000'000} + now.tv_nsec;
}

}  // namespace orvex::integration
