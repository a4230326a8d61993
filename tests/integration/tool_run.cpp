// Runs the commands with their output in files.
#include "integration/tool_run.h"

#include <json/reader.h>

#include <memory>

#include "integration/test_television.h"

namespace orvex::integration {

Json::Value ToolRun::Json() const {
  Json::CharReaderBuilder builder;
  builder["failIfExtra"] = true;
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value value;
  return reader->parse(output.data(), output.data() + output.size(), &value, nullptr) ? value : Json::Value();
}

ToolRun RunProgram(const std::string& program, const std::vector<std::string>& arguments) {
  const TestTelevision folder;
  const auto output = folder.PathOf("stdout");
  const auto errors = folder.PathOf("stderr");
  Process process({program, arguments, {}, output, errors});
  ToolRun run;
  run.ending = process.WaitForEnd();
  run.output = ReadWholeFile(output);
  run.errors = ReadWholeFile(errors);
  return run;
}

ToolRun RunTool(const std::vector<std::string>& arguments) {
  return RunProgram(ORVEX_TV_PROGRAM, arguments);
}

}  // namespace orvex::integration
