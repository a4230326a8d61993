// CLI11 splits the words and writes the help. It also finds what is wrong, but says so in its own words; the caller
// does that instead, from what the line consists of.
#include "options/parser.h"

#include <CLI/CLI.hpp>

namespace orvex::tools {
namespace {

// Wide enough for the names of all options but the longest.
constexpr std::size_t kHelpColumn = 32;

class Parser {
public:
  Parser(const Command& program, const std::string& version)
      : m_Program(program), m_Version(version), m_App(program.GetText(), program.GetName()) {
    m_App.get_formatter()->column_width(kHelpColumn);
    m_App.get_formatter()->label("SUBCOMMAND", "COMMAND");
    Define(m_App, program);
  }

  CommandLine Split(const std::vector<std::string>& words) {
    CommandLine line;
    const std::string last = words.empty() ? "" : words.back();
    try {
      m_App.parse(std::vector<std::string>(words.rbegin(), words.rend()));  // as the library wants them
      Collect(line);
    } catch (const CLI::CallForHelp&) {
      line.answer = m_App.help();
    } catch (const CLI::CallForVersion&) {
      line.answer = m_Version + "\n";
    } catch (const CLI::ArgumentMismatch&) {
      Collect(line);
      line.unfinished = line.command->FindOption(last);
    } catch (const CLI::ParseError&) {
      Collect(line);
    }
    FindEmptyValue(words, line);
    return line;
  }

private:
  // To the library, "--pause=" is "--pause", and the next word is its value.
  static void FindEmptyValue(const std::vector<std::string>& words, CommandLine& line) {
    for (const std::string& word : words) {
      if (word == "--") {
        return;
      }
      if (word.rfind("--", 0) == 0 && word.back() == '=' && line.command != nullptr && line.unfinished == nullptr) {
        const Option* const option = line.command->FindOption(word.substr(0, word.size() - 1));
        line.unfinished = option != nullptr && option->TakesValue() ? option : nullptr;
      }
    }
  }

  void Define(CLI::App& app, const Command& command) {
    for (const Option& option : command.GetOptions()) {
      m_Options[&option] = Define(app, option);
    }
    for (const Command& inner : command.GetCommands()) {
      CLI::App* const innerApp = app.add_subcommand(inner.GetName(), inner.GetText());
      innerApp->group("Commands");
      Define(*innerApp, inner);
    }
    app.require_subcommand(command.GetCommands().empty() ? 0 : 1);
    std::string footer = command.GetExamples().empty() ? "" : "Examples:";
    for (const std::string& example : command.GetExamples()) {
      footer += "\n  " + example;
    }
    app.footer(footer);
  }

  CLI::Option* Define(CLI::App& app, const Option& option) const {
    switch (option.use) {
      case Option::Use::kHelp:
        return app.set_help_flag(option.names, option.text);
      case Option::Use::kVersion:
        return app.set_version_flag(option.names, m_Version, option.text);
      case Option::Use::kFlag:
        return app.add_flag(option.names, option.text)->group(option.group);
      case Option::Use::kValue:
        break;
    }
    CLI::Option* const result = app.add_option(option.names, CLI::callback_t(), option.HelpText());
    result->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)->group(option.group)->required(option.isRequired);
    // The name of an argument needs no other beside it. An empty text would be replaced by the library's own.
    const std::string name = option.names == option.kind.name ? "" : option.kind.name + " ";
    result->option_text(name + (option.isRepeated ? "..." : " "));
    if (option.isRepeated) {
      result->expected(CLI::detail::expected_max_vector_size);
    }
    return result;
  }

  void Collect(CommandLine& line) const {
    line.command = &m_Program;
    for (const CLI::App* app = &m_App; app != nullptr;) {
      for (const std::string& word : app->remaining()) {
        if (word != "--") {
          line.surplus.push_back({line.command, word});
        }
      }
      const std::vector<CLI::App*> inner = app->get_subcommands();
      app = inner.empty() ? nullptr : inner.front();
      line.command = app == nullptr ? line.command : line.command->FindCommand(app->get_name());
    }
    for (const auto& [option, result] : m_Options) {
      if (result->count() > 0) {
        line.values[option] = result->results();
      }
    }
  }

  const Command& m_Program;
  const std::string m_Version;
  CLI::App m_App;
  std::map<const Option*, const CLI::Option*> m_Options;
};

}  // namespace

CommandLine SplitCommandLine(const Command& program, const std::string& version,
                             const std::vector<std::string>& words) {
  return Parser(program, version).Split(words);
}

}  // namespace orvex::tools
