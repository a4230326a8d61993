// orvex-tv get, set and list: the values of a virtual television.
#include <cstdio>
#include <memory>

#include "linux/json_text.h"
#include "options/errors.h"
#include "tv/commands.h"
#include "tv/television_option.h"
#include "tv/value_names.h"

namespace orvex::tools {
namespace {

struct ValueArguments {
  std::string directory;
  std::string name;
  std::string value;
  bool json = false;
};

// "value" is null when the television has none that can be read; "problem" says why.
Json::Value ToJson(const virtual_tv::Television& television, const virtual_tv::TelevisionValue& value) {
  Json::Value json(Json::objectValue);
  json["name"] = value.name;
  json["meaning"] = value.meaning;
  json["unit"] = value.unit;
  json["value"] = Json::Value();
  if (!value.isText) {
    json["minimum"] = Json::Int64{value.minimum};
    json["maximum"] = Json::Int64{value.maximum};
  }
  try {
    json["value"] = value.isText ? Json::Value(television.Get(value.name))
                                 : Json::Value(Json::Int64{television.GetNumber(value.name)});
  } catch (const virtual_tv::TelevisionError& error) {
    json["problem"] = error.what();
  }
  return json;
}

void PrintJson(const virtual_tv::Television& television, const virtual_tv::TelevisionValue& value) {
  std::printf("%s\n", port::CompactJson(ToJson(television, value)).c_str());
}

void Get(const ValueArguments& arguments) {
  const std::string name = FullValueName(arguments.name);
  const virtual_tv::Television television = ExistingTelevision(arguments.directory);
  const std::string text = television.Get(name);
  if (arguments.json) {
    PrintJson(television, *virtual_tv::DescribeTelevisionValue(name));
  } else {
    std::printf("%s\n", text.c_str());
  }
}

void Set(const ValueArguments& arguments) {
  const std::string name = FullValueName(arguments.name);
  const virtual_tv::Television television = TelevisionOf(arguments.directory);
  television.Create();
  television.Set(name, arguments.value);
}

// What the television has; a value that is missing or bad is shown as such.
std::string ValueOrProblem(const virtual_tv::Television& television, const std::string& name) {
  try {
    return television.Get(name);
  } catch (const virtual_tv::TelevisionError& error) {
    return error.GetCause() == virtual_tv::TelevisionError::Cause::kMissing ? "(missing)" : "(unreadable)";
  }
}

std::string RangeOf(const virtual_tv::TelevisionValue& value) {
  return value.isText ? "text" : std::to_string(value.minimum) + ".." + std::to_string(value.maximum);
}

void List(const ValueArguments& arguments) {
  const virtual_tv::Television television = ExistingTelevision(arguments.directory);
  for (const virtual_tv::TelevisionValue& value : virtual_tv::TelevisionValues()) {
    if (arguments.json) {
      PrintJson(television, value);
      continue;
    }
    std::printf("%-62s %12s %-3s %-24s %s\n", value.name.c_str(), ValueOrProblem(television, value.name).c_str(),
                value.unit.c_str(), RangeOf(value).c_str(), value.meaning.c_str());
  }
}

}  // namespace

void AddValueCommands(Command& program) {
  const auto arguments = std::make_shared<ValueArguments>();
  const auto add = [&](const char* name, const char* text, void (*action)(const ValueArguments&)) -> Command& {
    Command& command = program.AddCommand(name, text);
    AddTelevisionOption(command, arguments->directory);
    command.SetAction([=] {
      action(*arguments);
      return kExitGood;
    });
    return command;
  };
  Command& get = add("get", "print a value of the television", Get);
  Command& set = add("set", "change a value of the television, which is made if it is missing", Set);
  Command& list = add("list", "print all values: name, value, unit, range, meaning", List);
  const ValueKind name = value::Text("NAME", [](const auto&) { return ValueNames(); });
  for (Command* const command : {&get, &set}) {
    command
        ->Add("NAME", arguments->name, name, "full name, or a part that only one has, such as \"delay\" or \"agree\"")
        .Required();
  }
  for (Command* const command : {&get, &list}) {
    command->AddFlag("--json", arguments->json, "print one JSON object per line for each value, with what it may be");
  }
  const ValueKind value = value::Text("VALUE", [](const auto& before) { return ValuesOf(before.front()); });
  set.Add("VALUE", arguments->value, value, "the new value").Required();
  get.AddExample("orvex-tv get --tv /tmp/mytv delay");
  set.AddExample("orvex-tv set --tv /tmp/mytv sound/mute 1");
  list.AddExample("orvex-tv list --tv /tmp/mytv");
}

}  // namespace orvex::tools
