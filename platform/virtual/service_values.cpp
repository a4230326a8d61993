// Turns the television's exceptions into result codes and reports.
#include "virtual/service_values.h"

#include <map>
#include <mutex>
#include <set>
#include <string>

#include "linux/no_destroy.h"
#include "virtual/report.h"
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

// What has been reported of a value since it could last be read or written: a run asks for one several times.
class KnownProblems {
public:
  static KnownProblems& Instance() {
    static const port::NoDestroy<KnownProblems> problems;
    return *problems;
  }
  void Report(const std::string& name, const std::string& problem) {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    if (m_Problems[name].insert(problem).second) {
      ReportProblem(problem);
    }
  }
  void Forget(const std::string& name) {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_Problems.erase(name);
  }

private:
  std::mutex m_Mutex;
  std::map<std::string, std::set<std::string>> m_Problems;
};

template <typename Work>
AccessResult Attempt(const std::string& name, Work work) {
  try {
    work(Television::Instance());
    KnownProblems::Instance().Forget(name);
    return AccessResult::kDone;
  } catch (const TelevisionError& error) {
    if (error.GetCause() != TelevisionError::Cause::kMissing || !MayBeMissing(name)) {
      KnownProblems::Instance().Report(name, error.what());
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
