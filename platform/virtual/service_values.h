// Values of this process's television for the contract's functions: result codes instead of exceptions.
#pragma once

#include <cstdint>
#include <string>

namespace orvex::virtual_tv {

enum class AccessResult { kDone, kMissing, kBadValue, kInaccessible };

// A failure is reported, once as long as it lasts, except a missing file where that is a state of its own: below
// settings/ and tv/. Any thread.
// `*number` and `*text` are untouched by a failure.
AccessResult ReadNumber(const std::string& name, std::int64_t* number);
AccessResult ReadText(const std::string& name, std::string* text);
AccessResult WriteNumber(const std::string& name, std::int64_t number);

}  // namespace orvex::virtual_tv
