// A pw_filter whose ports are filled and emptied by a processor.
#include "pipewire/client/filter_node.h"

#include <pipewire/filter.h>
#include <pipewire/pipewire.h>

#include <cerrno>
#include <utility>

#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {
namespace {

pw_properties* PropertiesOf(const Properties& properties) {
  pw_properties* result = pw_properties_new(nullptr, nullptr);
  for (const auto& [key, value] : properties) {
    pw_properties_set(result, key.c_str(), value.c_str());
  }
  return result;
}

}  // namespace

struct FilterNode::State {
  struct Port {
    char unused;  // libpipewire gives each port memory of its user's
  };

  Description description;
  SoundProcessor& processor;
  pw_filter* filter = nullptr;
  spa_hook hook{};
  std::vector<Port*> inputs{};
  std::vector<Port*> outputs{};

  ~State() {
    if (filter != nullptr) {
      spa_hook_remove(&hook);
      pw_filter_destroy(filter);
    }
  }

  void AddPorts(pw_direction direction, const std::vector<std::string>& names, std::vector<Port*>& ports) const {
    for (const std::string& name : names) {
      pw_properties* properties =
          PropertiesOf({{PW_KEY_FORMAT_DSP, "32 bit float mono audio"}, {PW_KEY_PORT_NAME, name}});
      void* port =
          pw_filter_add_port(filter, direction, PW_FILTER_PORT_FLAG_MAP_BUFFERS, sizeof(Port), properties, nullptr, 0);
      if (port == nullptr) {
        throw PipeWireError("port " + name, errno);
      }
      ports.push_back(static_cast<Port*>(port));
    }
  }

  void OnProcess(const spa_io_position& position) const {
    Cycle cycle;
    cycle.frames = static_cast<std::uint32_t>(position.clock.duration);
    cycle.rateHz = position.clock.rate.denom;
    cycle.startNs = position.clock.nsec;
    cycle.clock = position.clock.id;
    cycle.position = position.clock.position;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      cycle.in[i] = static_cast<const float*>(pw_filter_get_dsp_buffer(inputs[i], cycle.frames));
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      cycle.out[i] = static_cast<float*>(pw_filter_get_dsp_buffer(outputs[i], cycle.frames));
    }
    processor.OnCycle(cycle);
  }

  void OnStateChanged(pw_filter_state state, const char* reason) const {
    if (state == PW_FILTER_STATE_ERROR) {
      description.onError(reason == nullptr ? "" : reason);
    }
  }

  void OnParamChanged(const void* port, std::uint32_t parameter, const spa_pod* value) const {
    if (port == nullptr && value != nullptr) {
      description.onParameter(parameter, value);
    }
  }
};

FilterNode::FilterNode(const Connection& connection, Description description, SoundProcessor& processor)
    : m_State(std::make_unique<State>(State{std::move(description), processor})) {
  State& state = *m_State;
  Properties properties = state.description.properties;
  properties.insert({{PW_KEY_NODE_NAME, state.description.name},
                     {PW_KEY_MEDIA_TYPE, "Audio"},
                     {PW_KEY_MEDIA_CATEGORY, "Filter"},
                     {PW_KEY_MEDIA_ROLE, "DSP"},
                     {PW_KEY_NODE_AUTOCONNECT, "false"}});
  state.filter = pw_filter_new(connection.GetCore(), state.description.name.c_str(), PropertiesOf(properties));
  if (state.filter == nullptr) {
    throw PipeWireError("node " + state.description.name, errno);
  }
  static const pw_filter_events kEvents = [] {
    pw_filter_events events{};
    events.version = PW_VERSION_FILTER_EVENTS;
    events.process = [](void* self, spa_io_position* position) { static_cast<State*>(self)->OnProcess(*position); };
    events.state_changed = [](void* self, pw_filter_state /*old*/, pw_filter_state now, const char* reason) {
      static_cast<State*>(self)->OnStateChanged(now, reason);
    };
    events.param_changed = [](void* self, void* port, std::uint32_t parameter, const spa_pod* value) {
      static_cast<State*>(self)->OnParamChanged(port, parameter, value);
    };
    return events;
  }();
  pw_filter_add_listener(state.filter, &state.hook, &kEvents, &state);
  state.AddPorts(PW_DIRECTION_INPUT, state.description.inputs, state.inputs);
  state.AddPorts(PW_DIRECTION_OUTPUT, state.description.outputs, state.outputs);
  const spa_pod* parameters[] = {state.description.props};
  const std::uint32_t count = state.description.props == nullptr ? 0 : 1;
  if (const int result = pw_filter_connect(state.filter, PW_FILTER_FLAG_RT_PROCESS, parameters, count); result < 0) {
    throw PipeWireError("node " + state.description.name, -result);
  }
}

FilterNode::~FilterNode() = default;

std::uint32_t FilterNode::GetId() const {
  return pw_filter_get_node_id(m_State->filter);
}

void FilterNode::TellProps(const spa_pod* props) {
  pw_filter_update_params(m_State->filter, nullptr, &props, 1);
}

}  // namespace orvex::pipewire
