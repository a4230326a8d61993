// The signals that ask a run to end, held back until what it began is cleaned up.
#pragma once

#include <signal.h>

#include "run/file_descriptor.h"

namespace orvex::tools {

// While an object lives, SIGHUP, SIGINT, SIGQUIT and SIGTERM neither end this process nor interrupt a call: whoever
// runs something asks for them here. SIGHUP stays ignored if it is, as nohup wants it. A write to a closed pipe fails
// instead of ending the process; SIGCHLD is held back for whoever waits for a child.
//
// Made before the process starts other threads, which then leave these signals alone, too; one object at a time.
class RunSignals {
public:
  RunSignals();
  // Lets the signals through again. Those that have come meanwhile are gone.
  ~RunSignals();
  RunSignals(const RunSignals&) = delete;
  RunSignals& operator=(const RunSignals&) = delete;

  // Readable when Next() has something to tell.
  int Fd() const { return m_Fd.Get(); }
  // The number of the next signal that has come, SIGCHLD included; 0: there is none.
  int Next();
  // The first of those that asked for the end, whether Next() has told it or not; 0: none has come.
  int Interruption();
  // Of before, for a child.
  const sigset_t& MaskBefore() const { return m_MaskBefore; }

private:
  FileDescriptor m_Fd;
  sigset_t m_MaskBefore{};
  int m_Interruption = 0;
};

}  // namespace orvex::tools
