// orvex-delay as it runs: its sinks, its node, its links, and the delay that others set.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "delay/delay_file.h"
#include "delay/output_mix.h"
#include "pipewire/client/connection.h"
#include "pipewire/client/created_object.h"
#include "pipewire/client/filter_node.h"
#include "pipewire/client/link_keeper.h"
#include "pipewire/client/loops.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {

// Why the program cannot go on.
class DelayError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

class DelayProgram : private pipewire::RegistryListener {
public:
  // `say`: takes lines for a person. Throws pipewire::PipeWireError, pipewire::PcConfigError.
  DelayProgram(pipewire::PcConfig config, std::function<void(const std::string&)> say);
  ~DelayProgram() override;
  DelayProgram(const DelayProgram&) = delete;
  DelayProgram& operator=(const DelayProgram&) = delete;

  // Returns after SIGTERM or SIGINT; nothing of it is left in the daemon once this object is gone. Throws DelayError.
  void Run();

private:
  void OnAdded(const pipewire::Object& object) override;
  void OnRemoved(const pipewire::Object& /*object*/) override {}
  void Begin();
  void MakeSink(const char* name, const pipewire::Properties& properties);
  void MakeNode();
  void MakeLinks();
  void OnProps(const spa_pod* props);
  void TellOutputs();
  void End(const std::string& problem);

  const pipewire::PcConfig m_Config;
  const std::function<void(const std::string&)> m_Say;
  const DelayFile m_File;
  double m_DelayMs;
  OutputMix m_Mix;
  std::string m_Problem;  // why Run() ends; empty: a signal
  pipewire::MainLoop m_Loop;
  pipewire::Connection m_Connection;
  std::vector<std::unique_ptr<pipewire::CreatedObject>> m_Sinks;
  std::unique_ptr<pipewire::FilterNode> m_Node;
  std::unique_ptr<pipewire::LinkKeeper> m_Links;
  std::map<std::string, bool> m_IsLinked;  // by output, as it was last told
};

}  // namespace orvex::tools
