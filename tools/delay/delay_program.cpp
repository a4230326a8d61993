// Puts the parts together once the daemon has told what is there.
#include "delay/delay_program.h"

#include <fmt/format.h>
#include <pipewire/keys.h>
#include <spa/param/param.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "pipewire/client/delay_node.h"

namespace orvex::tools {
namespace {

using namespace orvex::pipewire;

// In the order of OutputMix's ports.
const std::vector<std::string> kInputs{"programme_FL", "programme_FR", "test_FL", "test_FR"};
const std::vector<std::string> kOutputs{"reference_FL", "reference_FR", "delayed_FL", "delayed_FR"};

// An output of one channel gets both; one without named channels takes them in order.
const std::vector<std::string> kPlayLeft{"playback_FL", "playback_MONO", "playback_AUX0"};
const std::vector<std::string> kPlayRight{"playback_FR", "playback_MONO", "playback_AUX1"};

std::vector<WantedLink> LinksOf(const PcConfig& config) {
  return {{{kProgrammeSink, {"monitor_FL"}}, {kDelayNode, {"programme_FL"}}},
          {{kProgrammeSink, {"monitor_FR"}}, {kDelayNode, {"programme_FR"}}},
          {{kTestSink, {"monitor_FL"}}, {kDelayNode, {"test_FL"}}},
          {{kTestSink, {"monitor_FR"}}, {kDelayNode, {"test_FR"}}},
          {{kDelayNode, {"reference_FL"}}, {config.reference, kPlayLeft}},
          {{kDelayNode, {"reference_FR"}}, {config.reference, kPlayRight}},
          {{kDelayNode, {"delayed_FL"}}, {config.delayed, kPlayLeft}},
          {{kDelayNode, {"delayed_FR"}}, {config.delayed, kPlayRight}}};
}

}  // namespace

DelayProgram::DelayProgram(PcConfig config, std::function<void(const std::string&)> say)
    : m_Config(std::move(config)),
      m_Say(std::move(say)),
      m_File(StateFolder() / "delay", m_Say),
      m_DelayMs(m_File.Read()),
      m_Mix(m_DelayMs),
      m_Loop([this] { End(""); }),
      m_Connection(m_Loop.Get(), [this] { End("the PipeWire daemon is gone"); }) {
  m_Connection.AddListener(this);
}

DelayProgram::~DelayProgram() {
  m_Connection.RemoveListener(this);
}

void DelayProgram::Run() {
  // Whether another one runs is known when everything that is there has been told.
  m_Connection.Sync([this] { Begin(); });
  m_Loop.Run();
  if (!m_Problem.empty()) {
    throw DelayError(m_Problem);
  }
}

// Of two that begin at the same time, the one whose node came second ends.
void DelayProgram::OnAdded(const Object& object) {
  const bool isOther = object.kind == Object::Kind::kNode && object.Get(PW_KEY_NODE_NAME) == kDelayNode &&
                       !(m_Node && m_Node->GetId() == object.id);
  const Object* own = nullptr;
  if (m_Node) {
    const auto found = m_Connection.GetObjects().find(m_Node->GetId());
    own = found == m_Connection.GetObjects().end() ? nullptr : &found->second;
  }
  if (isOther && own == nullptr) {
    End("another orvex-delay is running");
  }
}

void DelayProgram::Begin() {
  MakeNode();
  // What programs play to; its volume is that of the programme.
  MakeSink(kProgrammeSink, {{PW_KEY_NODE_DESCRIPTION, "Orvex"}, {"monitor.channel-volumes", "true"}});
  MakeSink(kTestSink, {{PW_KEY_NODE_DESCRIPTION, "Orvex test sound"}, {PW_KEY_PRIORITY_SESSION, "0"}});
  MakeLinks();
}

void DelayProgram::MakeSink(const char* name, const Properties& properties) {
  Properties all{{PW_KEY_NODE_NAME, name}, {PW_KEY_MEDIA_CLASS, "Audio/Sink"}, {"audio.position", "FL,FR"}};
  all.insert(properties.begin(), properties.end());
  m_Sinks.push_back(CreateNullSink(m_Connection, all, [this, name](const std::string& error) {
    End(fmt::format("sink {}: {}", name, error.empty() ? "somebody has removed it" : error));
  }));
}

void DelayProgram::MakeNode() {
  const DelayProps props(m_DelayMs);
  FilterNode::Description description;
  description.name = kDelayNode;
  description.properties = {{PW_KEY_NODE_DESCRIPTION, "Orvex delay line"}};
  description.inputs = kInputs;
  description.outputs = kOutputs;
  description.props = props.Get();
  description.onParameter = [this](std::uint32_t parameter, const spa_pod* value) {
    if (parameter == SPA_PARAM_Props) {
      OnProps(value);
    }
  };
  description.onError = [this](const std::string& reason) { End("node orvex-delay: " + reason); };
  m_Node = std::make_unique<FilterNode>(m_Connection, std::move(description), m_Mix);
}

void DelayProgram::MakeLinks() {
  for (const std::string& output : {m_Config.reference, m_Config.delayed}) {
    m_IsLinked[output] = false;
    if (m_Connection.FindNode(output) == nullptr) {
      m_Say(fmt::format("{}: not there, waiting for it", output));
    }
  }
  m_Links = std::make_unique<LinkKeeper>(m_Connection, LinksOf(m_Config), LinkKeeper::Nodes::kMayRest,
                                         LinkKeeper::Callbacks{[this] { TellOutputs(); }, m_Say});
}

void DelayProgram::TellOutputs() {
  for (auto& [output, wasLinked] : m_IsLinked) {
    const bool isLinked = m_Links->IsLinked(output);
    if (isLinked != wasLinked) {
      m_Say(output + (isLinked ? ": connected" : ": gone, waiting for it"));
      wasLinked = isLinked;
    }
  }
}

void DelayProgram::OnProps(const spa_pod* props) {
  const std::optional<double> wanted = DelayProps::Read(props);
  if (wanted && std::isnan(*wanted)) {
    m_Say("a delay that is no number is refused");
  } else if (wanted) {
    m_DelayMs = std::clamp(*wanted, 0.0, kMaximumDelayMs);
    if (m_DelayMs != *wanted) {
      m_Say(fmt::format("a delay of {} ms is not possible, {} ms instead", *wanted, m_DelayMs));
    }
    m_Mix.SetDelayMs(m_DelayMs);
    m_File.Write(m_DelayMs);
  }
  m_Node->TellProps(DelayProps(m_DelayMs).Get());
}

void DelayProgram::End(const std::string& problem) {
  m_Problem = problem;
  m_Loop.Quit();
}

}  // namespace orvex::tools
