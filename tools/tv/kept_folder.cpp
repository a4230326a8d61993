#include "tv/kept_folder.h"

#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

#include "linux/small_files.h"
#include "options/errors.h"
#include "run/debug_files.h"
#include "tv/event_records.h"

namespace orvex::tools {
namespace {

namespace fs = std::filesystem;

// /tmp may be another file system.
std::string MoveInto(const fs::path& folder, const std::string& from, const std::string& name) {
  if (from.empty()) {
    return "";
  }
  const fs::path to = folder / name;
  fs::copy_file(from, to);
  fs::remove(from);
  return to.string();
}

// Debug files come in pairs, recording and results.
void MoveDebugFiles(const fs::path& folder, RunReport& report) {
  for (std::size_t n = 0; n + 1 < report.debugFiles.size(); n += 2) {
    const std::string number = std::to_string(n / 2 + 1);
    report.dumpFile = report.debugFiles[n] = MoveInto(folder, report.debugFiles[n], "dump_" + number + ".raw");
    report.resultFile = report.debugFiles[n + 1] =
        MoveInto(folder, report.debugFiles[n + 1], "result_" + number + ".csv");
  }
}

std::string TailOf(const fs::path& file, std::uintmax_t start) {
  std::ifstream in(file, std::ios::binary);
  in.seekg(static_cast<std::streamoff>(start));
  std::ostringstream tail;
  tail << in.rdbuf();
  return tail.str();
}

}  // namespace

KeptFolder::KeptFolder(fs::path folder, bool isOfSeveral) : m_Folder(std::move(folder)), m_IsOfSeveral(isOfSeveral) {
  try {
    m_IsNew = fs::create_directories(m_Folder);
    if (!fs::is_empty(m_Folder)) {
      throw UsageError("--keep " + m_Folder.string() + ": not empty, expected a new or an empty folder");
    }
  } catch (const fs::filesystem_error& error) {
    throw UsageError("--keep " + m_Folder.string() + ": cannot be used: " + error.code().message());
  }
}

KeptFolder::~KeptFolder() {
  std::error_code ignored;
  if (m_IsNew && fs::is_empty(m_Folder, ignored)) {
    fs::remove(m_Folder, ignored);
  }
}

void KeptFolder::Keep(std::uint32_t run, const RunTelevision& television, std::uintmax_t logStart,
                      RunSummary& summary) const {
  const fs::path folder = m_IsOfSeveral ? m_Folder / ("run_" + std::to_string(run)) : m_Folder;
  try {
    fs::create_directories(folder);
    Fill(folder, television, logStart, summary);
  } catch (const std::system_error& error) {
    RemoveDebugFiles(summary.report);
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
      fs::remove(entry.path(), ignored);
    }
    throw CommandError(folder.string() + ": the run cannot be kept: " + error.code().message());
  }
}

void KeptFolder::Fill(const fs::path& folder, const RunTelevision& television, std::uintmax_t logStart,
                      RunSummary& summary) const {
  MoveDebugFiles(folder, summary.report);
  port::ReplaceFile(folder / "service.log", TailOf(television.LogFile(), logStart));
  port::ReplaceFile(folder / "events.jsonl", EventLines(summary.events));
  fs::copy_file(television.RoomFile(), folder / "room.json");
  if (fs::exists(television.FaultsFile())) {
    fs::copy_file(television.FaultsFile(), folder / "faults.json");
  }
  port::ReplaceFile(folder / "run.json", SummaryJson(summary));
}

}  // namespace orvex::tools
