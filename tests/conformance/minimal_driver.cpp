// The driver of the smallest port: the television is this process, its log is what goes to stderr.
#include "conformance/pieces_driver.h"
#include "conformance/stderr_log.h"

namespace orvex::conformance {
namespace {

class MinimalDriver : public PiecesDriver {
public:
  MinimalDriver() : PiecesDriver({Ability::kReadLog, Ability::kSendTerminationSignal}) {}

  std::vector<LogRecord> LogRecords() const override { return m_Log.Records(); }

private:
  StderrLog m_Log;
};

}  // namespace

std::unique_ptr<PortDriver> MakePortDriver() {
  return std::make_unique<MinimalDriver>();
}

}  // namespace orvex::conformance
