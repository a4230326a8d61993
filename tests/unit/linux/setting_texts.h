// What a settings file may hold, for each port that keeps settings as files.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "orvex/platform/settings.h"

namespace orvex::port {

// Has `write` write one text after the other into the file of `key`, and expects each to be read as an integer, or to
// be refused and reported on stderr.
inline void ExpectIntegersOrReasons(const char* key, const std::function<void(const std::string&)>& write) {
  const struct {
    const char* content;
    int result;
    int value;
  } rows[] = {{"5\n", kSettingsDone, 5},         {"-2147483648", kSettingsDone, -2147483648LL},
              {" 7 \n", kSettingsDone, 7},       {"", kSettingsNoInteger, 77},
              {"yes\n", kSettingsNoInteger, 77}, {"2147483648\n", kSettingsNoInteger, 77},
              {"1 2\n", kSettingsNoInteger, 77}, {"1\n2\n", kSettingsNoInteger, 77}};
  for (const auto& row : rows) {
    write(row.content);
    int value = 77;
    testing::internal::CaptureStderr();
    EXPECT_EQ(settings_get_int(key, &value), row.result) << row.content;
    EXPECT_EQ(value, row.value) << row.content;
    EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), row.result == kSettingsDone) << row.content;
  }
}

// `file` is that of `key`, in a folder that can be read. Leaves a folder in its place.
inline void ExpectMissingOrUnreadable(const char* key, const std::filesystem::path& file) {
  int value = 77;
  EXPECT_EQ(settings_get_int("db/nothing", &value), kSettingsNoKey);
  EXPECT_EQ(settings_get_int(nullptr, &value), kSettingsNoKey);
  EXPECT_EQ(settings_get_int("../sound/volume", &value), kSettingsNoKey);
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  EXPECT_EQ(settings_get_int(key, &value), kSettingsUnreadable);
  EXPECT_EQ(value, 77);
}

}  // namespace orvex::port
