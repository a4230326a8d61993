// Goes through the words as the parser does, and forgives what it would refuse.
#include "options/completion.h"

#include <set>

namespace orvex::tools {
namespace {

class Completion {
public:
  explicit Completion(const Command& program) : m_Command(&program) {}

  void Read(const std::string& word) {
    if (m_Awaiting != nullptr) {
      // bash makes three words of "--option=value".
      m_Awaiting = word == "=" ? m_Awaiting : nullptr;
    } else if (word == "--") {
      m_OnlyArguments = true;
    } else if (const Option* const option = m_OnlyArguments ? nullptr : m_Command->FindOption(word)) {
      m_Given.insert(option);
      m_Awaiting = option->TakesValue() ? option : nullptr;
    } else if (const Command* const command = m_Command->FindCommand(word)) {
      m_Command = command;
    } else {
      m_Arguments.push_back(word);
    }
  }

  std::string Offer(const std::string& last) {
    m_Last = last;
    const std::size_t equals = last.rfind("--", 0) == 0 ? last.find('=') : std::string::npos;
    if (m_Awaiting != nullptr) {
      m_Last = last == "=" ? "" : last;
      OfferValues(*m_Awaiting, "");
    } else if (equals != std::string::npos && m_Command->FindOption(last.substr(0, equals)) != nullptr) {
      OfferValues(*m_Command->FindOption(last.substr(0, equals)), last.substr(0, equals + 1));
    } else if (!m_OnlyArguments && last.rfind('-', 0) == 0) {
      OfferOptions();
    } else {
      OfferCommands();
      OfferArgument();
    }
    return m_Lines;
  }

private:
  void Add(const std::string& word, const std::string& meaning) {
    if (word.rfind(m_Last, 0) == 0) {
      m_Lines += word + "\t" + meaning + "\n";
    }
  }

  void OfferOptions() {
    for (const Option& option : m_Command->GetOptions()) {
      for (const std::string& name : option.Names()) {
        if (name.front() == '-' && (option.isRepeated || m_Given.count(&option) == 0)) {
          Add(name, option.text);
        }
      }
    }
  }

  void OfferCommands() {
    for (const Command& command : m_Command->GetCommands()) {
      Add(command.GetName(), command.GetText());
    }
  }

  // That of the first positional argument which has no word yet.
  void OfferArgument() {
    std::size_t taken = m_Arguments.size();
    for (const Option& option : m_Command->GetOptions()) {
      if (option.IsPositional() && (option.isRepeated || taken == 0)) {
        OfferValues(option, "");
        return;
      }
      taken -= option.IsPositional() ? 1 : 0;
    }
  }

  void OfferValues(const Option& option, std::string before) {
    if (option.kind.isList && m_Last.find(',', before.size()) != std::string::npos) {
      before = m_Last.substr(0, m_Last.rfind(',') + 1);
    }
    for (const std::string& word : option.kind.words) {
      Add(before + word, "");
    }
    for (const std::string& word : option.kind.findWords(m_Arguments)) {
      Add(before + word, "");
    }
    if (option.kind.paths != PathKind::kNone) {
      m_Lines += option.kind.paths == PathKind::kFile ? "\tfiles\n" : "\tfolders\n";
    }
  }

  const Command* m_Command;            // the innermost so far
  const Option* m_Awaiting = nullptr;  // whose value is the next word
  bool m_OnlyArguments = false;        // after "--"
  std::set<const Option*> m_Given;
  std::vector<std::string> m_Arguments;
  std::string m_Last;
  std::string m_Lines;
};

}  // namespace

std::string CompletionLines(const Command& program, const std::vector<std::string>& words) {
  if (words.empty()) {
    return "";
  }
  Completion completion(program);
  for (std::size_t word = 0; word + 1 < words.size(); ++word) {
    completion.Read(words[word]);
  }
  return completion.Offer(words.back());
}

}  // namespace orvex::tools
