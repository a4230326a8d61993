// The profiler's interface is not part of libpipewire; a module brings it.
#include "pipewire/client/cycle_watch.h"

#include <pipewire/extensions/profiler.h>
#include <pipewire/impl.h>
#include <pipewire/pipewire.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {
namespace {

constexpr char kModule[] = "libpipewire-module-profiler";

}  // namespace

struct CycleWatch::State {
  std::function<void()> onReport;
  CycleReport report{};
  pw_proxy* proxy = nullptr;
  spa_hook hook{};

  void OnReport(const spa_pod* pod) {
    report.Take(pod);
    onReport();
  }
};

CycleWatch::CycleWatch(const Connection& connection, std::function<void()> onReport)
    : m_State(std::make_unique<State>(State{std::move(onReport)})) {
  const auto& objects = connection.GetObjects();
  const auto profiler = std::find_if(objects.begin(), objects.end(),
                                     [](const auto& entry) { return entry.second.kind == Object::Kind::kProfiler; });
  if (profiler == objects.end()) {
    return;
  }
  if (pw_context_load_module(pw_core_get_context(connection.GetCore()), kModule, nullptr, nullptr) == nullptr) {
    throw PipeWireError(kModule, errno);
  }
  m_State->proxy = static_cast<pw_proxy*>(
      pw_registry_bind(connection.GetRegistry(), profiler->first, PW_TYPE_INTERFACE_Profiler, PW_VERSION_PROFILER, 0));
  if (m_State->proxy == nullptr) {
    throw PipeWireError("profiler", errno);
  }
  static const pw_profiler_events kEvents = [] {
    pw_profiler_events events{};
    events.version = PW_VERSION_PROFILER_EVENTS;
    events.profile = [](void* self, const spa_pod* pod) { static_cast<State*>(self)->OnReport(pod); };
    return events;
  }();
  pw_profiler_add_listener(reinterpret_cast<pw_profiler*>(m_State->proxy), &m_State->hook, &kEvents, m_State.get());
}

CycleWatch::~CycleWatch() {
  if (m_State->proxy != nullptr) {
    spa_hook_remove(&m_State->hook);
    pw_proxy_destroy(m_State->proxy);
  }
}

bool CycleWatch::HasProfiler() const {
  return m_State->proxy != nullptr;
}

const CycleReport& CycleWatch::GetReport() const {
  return m_State->report;
}

}  // namespace orvex::pipewire
