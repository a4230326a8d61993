// A command with its options, as a program declares it. What a command line says is put into variables of the program,
// which must outlive the command; then the command's action runs.
//
//   Program program("orvex-bell", "Rings.", "0 it rang, 1 it did not, 2 wrong usage", kExitFailed);
//   program.Add("--pause", bell.pauseMs, value::Number("MS", 0, 1000), "between two strokes");
//   program.AddExample("orvex-bell --pause 20");
//   program.SetAction([&] { return Ring(bell); });
//   return program.Run(argc, argv);
#pragma once

#include <functional>
#include <list>
#include <string>
#include <vector>

#include "options/value_kind.h"
#include "options/value_text.h"

namespace orvex::tools {

// One option or positional argument. The functions change it and answer it.
struct Option {
  enum class Use { kValue, kFlag, kHelp, kVersion };

  std::string names;  // with commas: "-v,--verbose"; without dashes it is a positional argument, "NAME"
  std::string text;
  Use use = Use::kFlag;
  ValueKind kind = {};           // of a value
  std::string defaultText = {};  // empty: nothing to say
  bool isRepeated = false;       // takes several values
  std::function<bool(const std::string& text)> store = [](const std::string&) { return true; };
  std::string group = "Options";  // heading in the help
  bool isRequired = false;
  std::vector<const Option*> excluded = {};
  const Option* needed = nullptr;

  Option& Required();
  Option& InGroup(const std::string& heading);
  Option& NotWith(const Option& other);
  Option& OnlyWith(const Option& other);

  std::vector<std::string> Names() const;
  // By which messages call it: "--verbose", "NAME".
  std::string Name() const;
  bool IsPositional() const;
  bool TakesValue() const { return use == Use::kValue; }
  // The text with what is known of the value: "length of a burst (5 to 30, default 18)".
  std::string HelpText() const;
};

class Command {
public:
  // `path`: the words that call it, "orvex-tv run".
  Command(std::string path, std::string text);
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  // `value`: a number, a text, a std::optional of one, or a std::vector for an option that takes several values. What a
  // number or a text is before is the default that the help names. The value must hold whatever `kind` accepts.
  template <typename Value>
  Option& Add(const std::string& names, Value& value, const ValueKind& kind, const std::string& text) {
    Option& option = AddOption(names, text, Option::Use::kValue);
    option.kind = kind;
    option.defaultText = TextOf(value);
    option.isRepeated = IsVector(&value);
    option.store = [&value](const std::string& given) { return ReadValue(given, value); };
    return option;
  }
  Option& AddFlag(const std::string& names, bool& isGiven, const std::string& text);
  // A command with commands has no action of its own.
  Command& AddCommand(const std::string& name, const std::string& text);
  // A whole command line for the help.
  void AddExample(const std::string& line) { m_Examples.push_back(line); }
  // Answers the exit code.
  void SetAction(std::function<int()> action) { m_Action = std::move(action); }

  const std::string& GetPath() const { return m_Path; }
  std::string GetName() const { return m_Path.substr(m_Path.rfind(' ') + 1); }
  const std::string& GetText() const { return m_Text; }
  const std::list<Option>& GetOptions() const { return m_Options; }
  const std::list<Command>& GetCommands() const { return m_Commands; }
  const std::vector<std::string>& GetExamples() const { return m_Examples; }
  const Command* FindCommand(const std::string& name) const;
  // The one of that name, "--json"; null: there is none.
  const Option* FindOption(const std::string& name) const;
  int RunAction() const { return m_Action(); }

protected:
  Option& AddOption(const std::string& names, const std::string& text, Option::Use use);

private:
  template <typename Value>
  static constexpr bool IsVector(const std::vector<Value>*) {
    return true;
  }
  static constexpr bool IsVector(const void*) { return false; }

  std::string m_Path;
  std::string m_Text;
  std::list<Option> m_Options;
  std::list<Command> m_Commands;
  std::vector<std::string> m_Examples;
  std::function<int()> m_Action;
};

}  // namespace orvex::tools
