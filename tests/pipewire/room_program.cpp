// orvex-pc-room: a living-room computer of its own for a command, such as orvex-pc calibrate.
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "options/program.h"
#include "pipewire/living_room.h"
#include "run/run_signals.h"

namespace {

using namespace orvex::integration;
using namespace orvex::tools;

struct Arguments {
  RoomWays ways{150.0, 20.0};  // a television that shows its picture late
  std::optional<double> noiseDbfs;
  std::vector<std::string> command;
};

// The root mean square of equally distributed samples is their largest amplitude through the root of 3.
float LargestAmplitude(double rmsDbfs) {
  return static_cast<float>(std::sqrt(3.0) * std::pow(10.0, rmsDbfs / 20.0));
}

void DefineOptions(Program& program, Arguments& arguments) {
  const ValueKind way = value::Number("MS", 0.0, 2000.0);
  program.Add("--reference", arguments.ways.referenceMs, way, "from the output \"television\" to the microphone");
  program.Add("--delayed", arguments.ways.delayedMs, way, "from the output \"soundbar\" to the microphone");
  program.Add("--noise", arguments.noiseDbfs, value::Number("DBFS", -120.0, -10.0),
              "noise at the microphone, RMS of full scale");
  program.Add("COMMAND", arguments.command, value::Text("COMMAND"), "what to run, with its arguments, after --")
      .Required();
}

ProcessCommand InTheRoom(const std::vector<std::string>& command) {
  ProcessCommand process{"/usr/bin/env", command, {}, {}, {}};
  process.outputDescriptor = STDOUT_FILENO;
  process.errorsDescriptor = STDERR_FILENO;
  if (const std::string plugin = ORVEX_PIPEWIRE_PLUGIN_FILE; !plugin.empty()) {
    process.environment["ORVEX_PIPEWIRE_PLUGIN"] = plugin;
  }
  return process;
}

// Hands on what asks this program to end, to all that the command has started.
int WaitFor(Process& command, RunSignals& signals) {
  while (!command.HasEnded() && signals.Interruption() == 0) {
    pollfd news[] = {{command.GetEndDescriptor(), POLLIN, 0}, {signals.Fd(), POLLIN, 0}};
    ::poll(news, 2, -1);
  }
  if (const int number = signals.Interruption(); number != 0) {
    ::kill(-command.GetId(), SIGTERM);
    static_cast<void>(command.WaitForEnd());
    return kExitSignal + number;
  }
  const ProcessEnding ending = command.WaitForEnd();
  return ending.exitCode.value_or(kExitSignal + ending.signal);
}

int Run(const Arguments& arguments) {
  RunSignals signals;
  RoomWays ways = arguments.ways;
  if (arguments.noiseDbfs) {
    ways.noise = LargestAmplitude(*arguments.noiseDbfs);
  }
  const LivingRoom room(ways);
  if (const int number = signals.Interruption(); number != 0) {
    return kExitSignal + number;
  }
  Process command(InTheRoom(arguments.command));
  return WaitFor(command, signals);
}

}  // namespace

int main(int argc, char** argv) {
  Program program("orvex-pc-room",
                  "Runs a command on a PipeWire daemon of its own with two outputs, a microphone that hears both, and "
                  "orvex-delay. The person's own sound is not touched; all of it is gone when the command has ended.",
                  "that of the command, 1 the room cannot be made, 2 wrong usage, 128 plus the number of a signal that "
                  "ended it",
                  kExitFailed);
  Arguments arguments;
  DefineOptions(program, arguments);
  program.AddExample("orvex-pc-room --reference 150 --delayed 20 -- orvex-pc calibrate");
  program.SetAction([&] { return Run(arguments); });
  return program.Run(argc, argv);
}
