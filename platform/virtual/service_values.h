// Values of this process's television for the contract's functions: result codes instead of exceptions.
#pragma once

#include <cstdint>
#include <string>

namespace orvex::virtual_tv {

enum class AccessResult { kDone, kMissing, kBadValue, kInaccessible };

// Any thread. A failure is reported once as long as it lasts, and leaves `*number` and `*text` untouched. A missing
// file below settings/ and tv/ is not reported: there it is a state of the television.
AccessResult ReadNumber(const std::string& name, std::int64_t* number);
AccessResult ReadText(const std::string& name, std::string* text);
AccessResult WriteNumber(const std::string& name, std::int64_t number);

}  // namespace orvex::virtual_tv
