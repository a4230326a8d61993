// Gives the debug dump a writer that writes nothing.
#include "receiver/null_dump.h"

#include <memory>

#include "Util/DebugDump.h"
#include "Util/Singleton.h"

namespace orvex::tools {
namespace {

class NullWriter : public IDebugDumpImpl {
public:
  void Start() override {}
  void Stop() override {}
  void DebugDump(const std::string& /*text*/) override {}
  void DebugDump(const void* /*data*/, std::size_t /*size*/) override {}
};

}  // namespace

void DumpNothing() {
  CSingleton<CDebugDump>::GetInstance(std::make_unique<NullWriter>());
}

}  // namespace orvex::tools
