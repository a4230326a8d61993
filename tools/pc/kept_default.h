// The default output of before "orvex-pc setup --default", to be put back by "orvex-pc remove".
#pragma once

#include <optional>
#include <string>

namespace orvex::tools {

// `node`: empty when none was chosen. Throws CommandError.
void KeepDefault(const std::string& node);
// Empty: nothing is kept.
std::optional<std::string> KeptDefault();

}  // namespace orvex::tools
