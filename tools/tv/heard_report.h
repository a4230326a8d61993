// The page of orvex-replay about what runs have heard.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "output/output_file.h"
#include "replay/report_page.h"
#include "tv/run_summary.h"

namespace orvex::tools {

class HeardReport {
public:
  // `path`: "-" is standard output. `inputs`: files that it must not be. Throws OutputError.
  HeardReport(const std::string& path, std::uint32_t runs, const std::vector<std::string>& inputs)
      : m_File(path, inputs), m_Page(runs) {}

  bool TakesStandardOutput() const { return m_File.IsStandardOutput(); }
  // `run`: from 1. Reads the recording that the summary names.
  void Add(std::uint32_t run, const RunSummary& summary);
  // False: without a recording there is no page. Throws OutputError.
  bool Write() const;

private:
  OutputFile m_File;
  ReportPage m_Page;
};

}  // namespace orvex::tools
