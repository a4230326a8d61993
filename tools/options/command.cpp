// Options and commands as they are declared.
#include "options/command.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace orvex::tools {

Option& Option::Required() {
  isRequired = true;
  return *this;
}

Option& Option::InGroup(const std::string& heading) {
  group = heading;
  return *this;
}

Option& Option::NotWith(const Option& other) {
  excluded.push_back(&other);
  return *this;
}

Option& Option::OnlyWith(const Option& other) {
  needed = &other;
  return *this;
}

std::vector<std::string> Option::Names() const {
  std::vector<std::string> all;
  std::istringstream parts(names);
  for (std::string part; std::getline(parts, part, ',');) {
    all.push_back(part);
  }
  return all;
}

std::string Option::Name() const {
  const std::vector<std::string> all = Names();
  const auto found = std::find_if(all.begin(), all.end(), [](const auto& name) { return name.rfind("--", 0) == 0; });
  return found == all.end() ? all.front() : *found;
}

bool Option::IsPositional() const {
  const std::vector<std::string> all = Names();
  return std::any_of(all.begin(), all.end(), [](const std::string& name) { return name.front() != '-'; });
}

std::string Option::HelpText() const {
  const std::string byDefault = defaultText.empty() ? "" : "default " + defaultText;
  const std::string comma = kind.range.empty() || byDefault.empty() ? "" : ", ";
  const std::string known = kind.range + comma + byDefault;
  return known.empty() ? text : text + " (" + known + ")";
}

Command::Command(std::string path, std::string text) : m_Path(std::move(path)), m_Text(std::move(text)) {
  AddOption("-h,--help", "print this and exit", Option::Use::kHelp);
}

Option& Command::AddFlag(const std::string& names, bool& isGiven, const std::string& text) {
  Option& option = AddOption(names, text, Option::Use::kFlag);
  option.store = [&isGiven](const std::string&) { return isGiven = true; };
  return option;
}

Command& Command::AddCommand(const std::string& name, const std::string& text) {
  return m_Commands.emplace_back(m_Path + " " + name, text);
}

Option& Command::AddOption(const std::string& names, const std::string& text, Option::Use use) {
  return m_Options.emplace_back(Option{names, text, use});
}

const Command* Command::FindCommand(const std::string& name) const {
  const auto found =
      std::find_if(m_Commands.begin(), m_Commands.end(), [&](const Command& one) { return one.GetName() == name; });
  return found == m_Commands.end() ? nullptr : &*found;
}

const Option* Command::FindOption(const std::string& name) const {
  const auto found = std::find_if(m_Options.begin(), m_Options.end(), [&](const Option& option) {
    const std::vector<std::string> names = option.Names();
    return std::find(names.begin(), names.end(), name) != names.end();
  });
  return found == m_Options.end() ? nullptr : &*found;
}

}  // namespace orvex::tools
