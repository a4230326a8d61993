// SIGTERM and SIGINT while no Ecore main loop takes them: they are remembered instead of ending the process.
#pragma once

#include <csignal>

namespace orvex::host {

// From now on remember the two signals, unless somebody handles or ignores them. Any thread.
void RememberEndSignals();
// The same, whoever handled them: for the time after Ecore, which does not put back what it found.
void TakeOverEndSignals();
// Give them back their usual effect, unless somebody else has taken them meanwhile, and forget those that came.
void ForgetEndSignals();
// True when one came since the last call.
bool TakeRememberedEndSignal();

// Holds the two signals back from this thread while an object lives.
class EndSignalBlock {
public:
  EndSignalBlock();
  ~EndSignalBlock();
  EndSignalBlock(const EndSignalBlock&) = delete;
  EndSignalBlock& operator=(const EndSignalBlock&) = delete;

private:
  sigset_t m_Before{};
};

}  // namespace orvex::host
