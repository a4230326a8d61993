// A debug dump that leaves no file, for recordings that are on disk already or not worth keeping.
#pragma once

namespace orvex::tools {

// The dump of this process writes nothing. To be called before the first recording.
void DumpNothing();

}  // namespace orvex::tools
