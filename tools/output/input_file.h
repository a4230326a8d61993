// A file that a tool reads, where a person names it, for readers that want a file and not a stream.
#pragma once

#include <string>

namespace orvex::tools {

class InputFile {
public:
  // `name`: "-" is standard input, which is read to its end. Throws UsageError when that fails.
  explicit InputFile(std::string name);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Where it is to be read, as long as this object lives.
  const std::string& Path() const { return m_Path; }
  // A message about that path, with the name in its place.
  std::string Named(std::string message) const;

private:
  std::string m_Name;
  std::string m_Path;
  int m_Fd = -1;  // of a copy in memory
};

}  // namespace orvex::tools
