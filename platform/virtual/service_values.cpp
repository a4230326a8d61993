// Turns the television's exceptions into result codes and reports.
#include "virtual/service_values.h"

#include <string>

#include "linux/known_problems.h"
#include "linux/no_destroy.h"
#include "linux/port.h"
#include "virtual/television.h"

namespace orvex::virtual_tv {
namespace {

bool MayBeMissing(const std::string& name) {
  return name.rfind("settings/", 0) == 0 || name.rfind("tv/", 0) == 0;
}

AccessResult ResultOf(TelevisionError::Cause cause) {
  switch (cause) {
    case TelevisionError::Cause::kUnknownName:
    case TelevisionError::Cause::kMissing:
      return AccessResult::kMissing;
    case TelevisionError::Cause::kBadValue:
      return AccessResult::kBadValue;
    case TelevisionError::Cause::kInaccessible:
      break;
  }
  return AccessResult::kInaccessible;
}

// A run asks for one value several times.
port::KnownProblems& Problems() {
  static const port::NoDestroy<port::KnownProblems> problems;
  return *problems;
}

template <typename Work>
AccessResult Attempt(const std::string& name, Work work) {
  try {
    work(Television::Instance());
    Problems().Forget(name);
    return AccessResult::kDone;
  } catch (const TelevisionError& error) {
    if (error.GetCause() != TelevisionError::Cause::kMissing || !MayBeMissing(name)) {
      Problems().Report(name, error.what());
    }
    return ResultOf(error.GetCause());
  }
}

}  // namespace

AccessResult ReadNumber(const std::string& name, std::int64_t* number) {
  return Attempt(name, [&](const Television& television) { *number = television.GetNumber(name); });
}

AccessResult ReadText(const std::string& name, std::string* text) {
  return Attempt(name, [&](const Television& television) { *text = television.Get(name); });
}

AccessResult WriteNumber(const std::string& name, std::int64_t number) {
  return Attempt(name, [&](const Television& television) { television.Set(name, std::to_string(number)); });
}

}  // namespace orvex::virtual_tv
