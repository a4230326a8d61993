// A long command that is interrupted ends in order, with what it has done so far.
#pragma once

namespace orvex::tools {

// While it lives, the first SIGINT, SIGTERM or SIGHUP is noted and ends nothing; a second one of the same kind ends the
// program as usual. One that the program was started to ignore, as nohup and a shell's background jobs do, stays
// ignored. One at a time.
class Interruption {
public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  // From any thread.
  bool HasCome() const;
};

}  // namespace orvex::tools
