// The folder of orvex-tv run --keep: what runs left, for a closer look.
#pragma once

#include <cstdint>
#include <filesystem>

#include "tv/run_summary.h"
#include "tv/run_television.h"

namespace orvex::tools {

// Of several runs, each has a folder of its own: run_1, run_2, … Of one, what it left lies in the folder itself:
//   dump_1.raw, result_1.csv   recording and results; of a run that began again, dump_2.raw and so on, too
//   service.log, events.jsonl  the log and the telemetry records of this run
//   room.json, faults.json     where it took place; the faults only if --faults named some
//   run.json                   what orvex-tv run --json prints
class KeptFolder {
public:
  // Makes the folder. Throws UsageError when that fails, and when there is anything in it.
  KeptFolder(std::filesystem::path folder, bool isOfSeveral);
  // A folder that was made for nothing is removed.
  ~KeptFolder();
  KeptFolder(const KeptFolder&) = delete;
  KeptFolder& operator=(const KeptFolder&) = delete;

  // `run`: from 1. `logStart`: where its log begins in the television's. Moves the debug files, and names them in
  // `summary` where they are now; those that there are not, the run does without. Throws CommandError; what was kept of
  // this run by then is removed.
  void Keep(std::uint32_t run, const RunTelevision& television, std::uintmax_t logStart, RunSummary& summary) const;

private:
  void Fill(const std::filesystem::path& folder, const RunTelevision& television, std::uintmax_t logStart,
            RunSummary& summary) const;

  const std::filesystem::path m_Folder;
  const bool m_IsOfSeveral;
  bool m_IsNew = false;
};

}  // namespace orvex::tools
