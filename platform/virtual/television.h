// The virtual television: a directory whose files are the television's state. See docs for the list of files.
//
// Every operation may be called from any thread. An object keeps no state but its directory's name: what another
// process writes is seen at the next read.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "virtual/television_values.h"

namespace orvex::virtual_tv {

// What went wrong with a value. The text names the file, the value and what was expected.
class TelevisionError : public std::runtime_error {
public:
  enum class Cause {
    kUnknownName,   // no such value on any television
    kMissing,       // the file does not exist
    kBadValue,      // the file's content, or the text to write, is no value of that name
    kInaccessible,  // the file or the directory cannot be read or written
  };

  TelevisionError(Cause cause, const std::string& text) : std::runtime_error(text), m_Cause(cause) {}
  Cause GetCause() const { return m_Cause; }

private:
  Cause m_Cause;
};

class Television {
public:
  explicit Television(std::filesystem::path directory) : m_Directory(std::move(directory)) {}

  // The directory that the environment names: ORVEX_TV, else orvex-tv below XDG_STATE_HOME or ~/.local/state, else
  // /tmp/orvex-tv-UID.
  static std::filesystem::path DirectoryFromEnvironment();
  // The television of this process, made on first use with everything that was missing. Never throws: see
  // InstanceProblem().
  static const Television& Instance();
  // Why this process has no television; empty when it has one. Without one each read and write fails by itself.
  static const std::string& InstanceProblem();

  // Makes the directory, for its owner alone, and every file that is missing, with its default. A new directory appears
  // with everything in it or not at all. An existing tv/ is left as it is: there a missing file means a query that
  // fails. A directory in /tmp must be this user's own. Throws TelevisionError.
  void Create() const;

  const std::filesystem::path& GetDirectory() const { return m_Directory; }
  std::filesystem::path PathOf(const std::string& name) const { return m_Directory / name; }
  // What describes the room and the faults: the file that ORVEX_TV_ROOM or ORVEX_TV_FAULTS names, else the directory's
  // own room.json or faults.json.
  std::filesystem::path RoomFile() const;
  std::filesystem::path FaultsFile() const;

  // The value's text, checked against its description. Throws TelevisionError.
  std::string Get(const std::string& name) const;
  // As Get(), for a value that is a number.
  std::int64_t GetNumber(const std::string& name) const;
  // Replaces the value in one step: a reader sees the old one or the new one. Throws TelevisionError and changes
  // nothing when `text` is no value of that name.
  void Set(const std::string& name, const std::string& text) const;

private:
  std::string ReadFile(const std::string& name) const;
  void CheckOwner() const;
  void Complete() const;
  void CreateMissing(const std::string& name, const std::string& text) const;

  std::filesystem::path m_Directory;
};

}  // namespace orvex::virtual_tv
