// The threads on which the service logs and makes calls, each by its first letter: main loop, recorder, delivery,
// worker.
#pragma once

#include <string>
#include <string_view>

namespace orvex::runs {

// On which `function` of the service may log. A function that is not in the list may on the main loop.
std::string_view ThreadsThatLogIn(const std::string& function);

// On which the service may make this call of the platform, as the contract allows; empty: it makes no such call.
std::string_view ThreadsThatCall(const std::string& function);

}  // namespace orvex::runs
