// Copies the environment; hands texts over as C does.
#include "run/exec_arguments.h"

#include <unistd.h>

#include <algorithm>

namespace orvex::tools {

std::vector<std::string> EnvironmentWithout(const std::vector<std::string>& prefixes) {
  std::vector<std::string> variables;
  for (char** next = environ; *next != nullptr; ++next) {
    const std::string variable = *next;
    if (std::none_of(prefixes.begin(), prefixes.end(),
                     [&](const std::string& prefix) { return variable.rfind(prefix, 0) == 0; })) {
      variables.push_back(variable);
    }
  }
  return variables;
}

std::vector<char*> NullTerminated(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace orvex::tools
