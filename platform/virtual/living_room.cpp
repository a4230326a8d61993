// Builds the room from the virtual television's files and guards it.
#include "virtual/living_room.h"

#include <filesystem>
#include <stdexcept>

#include "linux/no_destroy.h"
#include "linux/port.h"
#include "linux/small_files.h"
#include "orvex/sim/room_json.h"
#include "virtual/noise_file.h"

namespace orvex::virtual_tv {
namespace {

constexpr std::size_t kMaximumRoomBytes = 1U << 20U;

std::string ReadRoomText(const std::filesystem::path& path) {
  std::string text;
  try {
    text = port::ReadSmallFile(path, kMaximumRoomBytes);
  } catch (const std::system_error& problem) {
    throw std::runtime_error("cannot read " + path.string() + ": " + problem.code().message());
  }
  if (text.size() > kMaximumRoomBytes) {
    throw std::runtime_error(path.string() + ": expected at most " + std::to_string(kMaximumRoomBytes) + " bytes");
  }
  return text;
}

}  // namespace

LivingRoom::LivingRoom(const Television& television) : m_Television(television) {
  try {
    Build();
  } catch (const std::exception& problem) {
    m_Room.reset();
    port::ReportProblem(std::string(problem.what()) + "; there is no room, so no remote control is connected");
  }
}

LivingRoom& LivingRoom::Instance() {
  static const port::NoDestroy<LivingRoom> room(Television::Instance());
  return *room;
}

void LivingRoom::Build() {
  const std::filesystem::path file = m_Television.RoomFile();
  m_Room = std::make_unique<sim::Room>(sim::ParseRoom(ReadRoomText(file), file.string()));
  const std::string& noiseFile = m_Room->GetConfig().noiseFile;
  if (!noiseFile.empty()) {
    LoadNoise(file.parent_path() / noiseFile);
  }
  m_Voice = std::make_unique<sim::VoiceChannel>(*m_Room);
}

void LivingRoom::LoadNoise(const std::string& file) {
  const NoiseFile noise = ReadNoiseFile(file);
  try {
    m_Room->SetNoise(noise.samples, noise.rateHz);
  } catch (const std::invalid_argument& problem) {
    throw std::runtime_error("noise_file \"" + file + "\": " + problem.what());
  }
}

// The television's files are read before the lock is taken: the delivery of the remote's blocks must not wait for them.
void LivingRoom::Play(MonotonicTime start, const std::int16_t* frames, std::size_t count) {
  if (!IsPresent()) {
    return;
  }
  const Outputs outputs = ReadOutputs();
  const std::lock_guard<std::mutex> lock(m_Mutex);
  ApplyOutputs(outputs);
  m_Room->Play(start, frames, count);
}

void LivingRoom::Cut(MonotonicTime from) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Room) {
    m_Room->CutPlayback(from);
  }
}

LivingRoom::Outputs LivingRoom::ReadOutputs() const {
  Outputs outputs;
  try {
    outputs.isTvMuted = m_Television.GetNumber("sound/mute") != 0;
    outputs.spdifDelayMs = static_cast<double>(m_Television.GetNumber("delay/spdif"));
  } catch (const TelevisionError& problem) {
    outputs.problem = problem.what();
  }
  return outputs;
}

void LivingRoom::ApplyOutputs(const Outputs& outputs) {
  if (outputs.isTvMuted) {
    m_Room->SetTvMuted(*outputs.isTvMuted);
  }
  if (outputs.spdifDelayMs) {
    m_Room->SetSpdifDelayMs(*outputs.spdifDelayMs);
  }
  const bool isNew = !outputs.problem.empty() && !m_IsProblemReported;
  m_IsProblemReported = !outputs.problem.empty();
  if (isNew) {
    port::ReportProblem(outputs.problem);
  }
}

void LivingRoom::StartVoice(MonotonicTime now) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Voice) {
    m_Voice->Start(now);
  }
}

void LivingRoom::ExtendVoice(MonotonicTime now) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Voice) {
    m_Voice->Extend(now);
  }
}

void LivingRoom::StopVoice() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (m_Voice) {
    m_Voice->Stop();
  }
}

std::optional<MonotonicTime> LivingRoom::NextDelivery() const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Voice ? m_Voice->NextDelivery() : std::nullopt;
}

bool LivingRoom::TakeBlock(Block& block) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Voice && m_Voice->TakeBlock(block);
}

}  // namespace orvex::virtual_tv
