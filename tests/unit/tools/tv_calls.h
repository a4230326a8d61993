// orvex-tv as a person calls it, with services that are shell scripts.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tv/command_line.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {

struct TvOutcome {
  int exitCode;
  std::string out;
  std::string error;
};

inline TvOutcome Call(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "orvex-tv");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  TvOutcome outcome{RunCommandLine(static_cast<int>(arguments.size()), arguments.data()), "", ""};
  outcome.out = testing::internal::GetCapturedStdout();
  outcome.error = testing::internal::GetCapturedStderr();
  return outcome;
}

class TvCommandLine : public testing::Test {
protected:
  // Writes a service that is a shell script of these lines; returns its path.
  std::string Service(const std::string& lines) const {
    const std::string path = m_Folder.Write("service", "#!/bin/sh\n" + lines);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  const TemporaryFolder m_Folder;
  const std::string m_Tv = m_Folder / "tv";
};

// A run with its temporary television in a folder of its own, and with a service that leaves debug files.
class RunWithDebugFiles : public TvCommandLine {
protected:
  void SetUp() override {
    std::filesystem::create_directory(m_Temporary);
    ::setenv("TMPDIR", m_Temporary.c_str(), 1);
    m_Folder.Write("dump", "sound");
    m_Folder.Write("result.csv", "1");
  }
  void TearDown() override { ::unsetenv("TMPDIR"); }

  // A service that opens its debug files and names them, then runs `lines`; it exits with 0 on SIGTERM.
  std::string ServiceWithDebugFiles(const std::string& lines) const {
    return Service("trap 'exit 0' TERM\nchmod 600 " + m_Folder / "dump" + " " + m_Folder / "result.csv" +
                   "\necho 'A.cpp: f(1) > Temp file name=[" + m_Folder / "dump" + "][" + m_Folder / "result.csv" +
                   "]'\n" + lines);
  }
  bool HasDebugFiles() const {
    return std::filesystem::exists(m_Folder / "dump") || std::filesystem::exists(m_Folder / "result.csv");
  }
  bool HasTelevision() const { return !std::filesystem::is_empty(m_Temporary); }

  const std::string m_Temporary = m_Folder / "tmp";
};

}  // namespace orvex::tools
