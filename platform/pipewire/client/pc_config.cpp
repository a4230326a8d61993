// Reads and writes the person's choice as a JSON object of three names.
#include "pipewire/client/pc_config.h"

#include <json/value.h>

#include <array>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "linux/json_text.h"
#include "linux/small_files.h"

namespace orvex::pipewire {
namespace {

namespace fs = std::filesystem;

struct Key {
  const char* name;
  std::string PcConfig::*value;
};

constexpr std::array<Key, 3> kKeys{
    {{"reference", &PcConfig::reference}, {"delayed", &PcConfig::delayed}, {"microphone", &PcConfig::microphone}}};

constexpr char kExpectedObject[] =
    "a JSON object with the names of the nodes \"reference\", \"delayed\", \"microphone\"";
constexpr std::size_t kMaximumBytes = 65536;

[[noreturn]] void Fail(const fs::path& file, const std::string& reason) {
  throw PcConfigError(file.string() + ": " + reason);
}

// A folder of the person, by the XDG base directories: a variable that is no absolute path counts as not set.
fs::path BaseFolder(const char* variable, const char* belowHome) {
  if (const char* folder = std::getenv(variable); folder != nullptr && folder[0] == '/') {
    return folder;
  }
  const char* home = std::getenv("HOME");
  if (home == nullptr || home[0] != '/') {
    throw PcConfigError(std::string("neither ") + variable + " nor HOME is an absolute path, expected one of them");
  }
  return fs::path(home) / belowHome;
}

void MakeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    Fail(folder, "cannot be made: " + error.message());
  }
}

void CheckValue(const fs::path& file, const char* key, const Json::Value& value) {
  if (!value.isString() || value.asString().empty()) {
    Fail(file, std::string("\"") + key + "\" is " + (value.isNull() ? "missing" : port::CompactJson(value)) +
                   ", expected the name of a node");
  }
}

std::string ReadText(const fs::path& file) {
  try {
    return port::ReadSmallFile(file, kMaximumBytes);
  } catch (const std::system_error& error) {
    Fail(file, "cannot be read: " + error.code().message() + "; \"orvex-pc setup\" writes it");
  }
}

Json::Value ReadObject(const fs::path& file) {
  const std::string text = ReadText(file);
  if (text.size() > kMaximumBytes) {
    Fail(file, "longer than " + std::to_string(kMaximumBytes) + " bytes, expected " + kExpectedObject);
  }
  try {
    return port::ParseJsonObject(text, kExpectedObject);
  } catch (const port::JsonError& error) {
    Fail(file, error.what());
  }
}

}  // namespace

fs::path PcConfigFile() {
  return BaseFolder("XDG_CONFIG_HOME", ".config") / "orvex" / "pc.json";
}

fs::path StateFolder() {
  fs::path folder = BaseFolder("XDG_STATE_HOME", ".local/state") / "orvex";
  MakeFolder(folder);
  return folder;
}

PcConfig ReadPcConfig(const fs::path& file) {
  Json::Value object = ReadObject(file);
  PcConfig config;
  for (const Key& key : kKeys) {
    CheckValue(file, key.name, object[key.name]);
    config.*key.value = object[key.name].asString();
    object.removeMember(key.name);
  }
  if (!object.empty()) {
    Fail(file, "\"" + object.getMemberNames().front() + "\" is unknown, expected " + kExpectedObject);
  }
  if (config.reference == config.delayed) {
    Fail(file, "\"reference\" and \"delayed\" are both \"" + config.delayed + "\", expected two outputs");
  }
  return config;
}

void WritePcConfig(const fs::path& file, const PcConfig& config) {
  MakeFolder(file.parent_path());
  Json::Value object(Json::objectValue);
  for (const Key& key : kKeys) {
    object[key.name] = config.*key.value;
  }
  try {
    port::ReplaceFile(file, port::CompactJson(object) + "\n");
  } catch (const std::system_error& error) {
    Fail(file, "cannot be written: " + error.code().message());
  }
}

}  // namespace orvex::pipewire
