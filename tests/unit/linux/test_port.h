// The port of these tests: every piece, with its files in the folder of a test.
#pragma once

#include <filesystem>

namespace orvex::port {

// The folder of this process's tests. Always the same: settings are watched in one folder. A test that dies, as a child
// process, has that of its parent. Empty: no folder could be made.
const std::filesystem::path& TestFolder();

// Whether messages of the type "event" are events for the application.
void AllowInjectedEvents(bool isAllowed);

}  // namespace orvex::port
