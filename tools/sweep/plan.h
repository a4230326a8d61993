// Which rooms a sweep visits: the table rows that the axes' lists span, and for each the same number of drawn rooms.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sweep/axes.h"
#include "sweep/trial.h"
#include "testsound/sound_design.h"

namespace orvex::tools {

// What one room has drawn: a number for each axis. Each of its early reflections has drawn delay and level by itself.
struct RoomValues {
  std::array<double, axis::kCount> numbers{};
  std::vector<sim::Reflection> tvReflections;
  std::vector<sim::Reflection> opticalReflections;
  std::vector<double> lostPlaces;  // of each lost block: 0 to 1, the share of the recording before it

  double& operator[](std::size_t axis) { return numbers[axis]; }
  double operator[](std::size_t axis) const { return numbers[axis]; }
};
bool operator==(const RoomValues& a, const RoomValues& b);

// Gain of either way at gain 0, and the level of the tone by which the noise is set.
constexpr double kReferenceGainDb = -20.0;
constexpr double kReferenceToneDbfs = kMaxPeakDbfs;

class Plan {
public:
  // `given`: by axis, what stands in place of its default. Throws std::invalid_argument as AxisValues does.
  Plan(const std::map<Axis, std::string>& given, std::uint64_t seed);

  std::size_t Rows() const { return m_Rows; }
  // Axes that have several rows, and what they are in one row.
  std::vector<Axis> ListedAxes() const;
  const std::string& Text(Axis axis, std::size_t row) const;
  // "tone-db 46, rt60-s 0.4": what some axes are in one row; empty without an axis.
  std::string Name(const std::vector<Axis>& axes, std::size_t row) const;

  // Room `room` is the same in every row, but for what the row says; the reflections of a row that has fewer are the
  // first of another's.
  RoomValues Draw(std::size_t row, std::size_t room) const;
  std::uint64_t RoomSeed(std::size_t room) const;

private:
  void DrawReflections(std::size_t row, std::size_t room, RoomValues& values) const;
  void DrawLostPlaces(std::size_t room, RoomValues& values) const;
  std::size_t Position(Axis axis, std::size_t row) const;

  std::vector<AxisValues> m_Axes;
  std::size_t m_Rows = 1;
  std::uint64_t m_Seed;
};

// White noise whose mean magnitude lies `toneDb` below that of a block full of the reference tone.
double NoiseDbfs(double toneDb);

SoundDesign DesignOf(const RoomValues& values);
// Everything but the sound.
Trial MakeTrial(const RoomValues& values, std::uint64_t seed);

}  // namespace orvex::tools
