// Counts the calls, so that each gets its answer.
#include "virtual/faults.h"

#include <stdexcept>
#include <system_error>
#include <utility>

#include "linux/no_destroy.h"
#include "linux/port.h"
#include "linux/small_files.h"
#include "virtual/television.h"

namespace orvex::virtual_tv {
namespace {

FaultTable ReadFaults(const std::filesystem::path& file) {
  try {
    const std::string text = port::ReadSmallFile(file, kMaximumFaultBytes);
    if (text.size() > kMaximumFaultBytes) {
      throw std::runtime_error("too long: expected at most 1 MiB");
    }
    return ParseFaults(text);
  } catch (const std::system_error& problem) {
    if (problem.code().value() != ENOENT && problem.code().value() != ENOTDIR) {
      port::ReportProblem("cannot read " + file.string() + ": " + problem.code().message());
    }
  } catch (const std::exception& problem) {
    port::ReportProblem(file.string() + ": " + problem.what() + "; no faults are injected");
  }
  return {};
}

}  // namespace

Faults::Faults(std::filesystem::path file) : m_File(std::move(file)), m_Table(ReadFaults(m_File)) {}

Faults& Faults::Instance() {
  static const port::NoDestroy<Faults> faults(Television::Instance().FaultsFile());
  return *faults;
}

void Faults::Reload() {
  FaultTable table = ReadFaults(m_File);
  const std::lock_guard<std::mutex> lock(m_Mutex);
  m_Table = std::move(table);
  m_CallCounts.clear();
}

bool Faults::IsListed(Fault operation) const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Table.answers.count(operation) != 0;
}

std::optional<int> Faults::Next(Fault operation) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  const auto answer = m_Table.answers.find(operation);
  if (answer == m_Table.answers.end()) {
    return std::nullopt;
  }
  if (answer->second.always) {
    return answer->second.calls.front();
  }
  const std::size_t call = m_CallCounts[operation]++;
  return call < answer->second.calls.size() ? answer->second.calls[call] : std::nullopt;
}

std::vector<std::uint64_t> Faults::Frames(Fault fault) const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  const auto frames = m_Table.frames.find(fault);
  return frames == m_Table.frames.end() ? std::vector<std::uint64_t>{} : frames->second;
}

bool Faults::IsAbsent(Fault object) const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Table.absent.count(object) != 0;
}

}  // namespace orvex::virtual_tv
