// orvex-tv record: what the remote's microphone hears of the test sound, in virtual time and without a service.
#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>

#include "options/errors.h"
#include "orvex/sim/room.h"
#include "orvex/sim/truth.h"
#include "output/input_file.h"
#include "output/output_file.h"
#include "sweep/trial.h"
#include "testsound/generator.h"
#include "testsound/wave_file.h"
#include "tv/commands.h"
#include "tv/run_television.h"
#include "tv/text_files.h"
#include "virtual/noise_file.h"

namespace orvex::tools {
namespace {

struct RecordArguments {
  TelevisionOptions television;
  std::optional<std::uint32_t> delayMs;
  std::string sound;
  std::string output;
};

// A file need not be fit to be played by the service: to hear that is what a recording may be for.
std::vector<std::int16_t> SoundOf(const std::string& name) {
  if (name.empty()) {
    return GenerateSound(SoundDesign{});
  }
  const InputFile file(name);
  try {
    const WaveHeader header = ReadWaveHeader(file.Path());
    if (header.channels != kTestSoundFormat.channels || header.sampleRate != kTestSoundFormat.rateHz) {
      throw UsageError(fmt::format("--sound {}: {} Hz, {} channels, expected {} Hz, {} channels", name,
                                   header.sampleRate, header.channels, kTestSoundFormat.rateHz,
                                   kTestSoundFormat.channels));
    }
    return ReadSamples(file.Path());
  } catch (const WaveFileError& problem) {
    throw UsageError(file.Named(problem.what()));
  }
}

double WayMs(const sim::PathConfig& path) {
  return path.latencyMs + path.distanceM / sim::kSpeedOfSoundMPerS * 1e3;
}

// Until the last of the sound has reached the microphone.
double ListenMs(const Trial& trial) {
  const double frames = static_cast<double>(trial.sound.size()) / kTestSoundFormat.channels;
  return frames * 1e3 / kTestSoundFormat.rateHz +
         std::max(WayMs(trial.room.tv),
                  WayMs(trial.room.optical) + std::min(trial.outputDelayMs, sim::Room::kMaxSpdifDelayMs));
}

Trial TrialIn(const sim::RoomConfig& room, double delayMs) {
  Trial trial;
  trial.room = room;
  trial.outputDelayMs = delayMs;
  if (!room.noiseFile.empty()) {
    virtual_tv::NoiseFile noise = virtual_tv::ReadNoiseFile(room.noiseFile);
    trial.disturbance = std::move(noise.samples);
    trial.disturbanceRateHz = noise.rateHz;
  }
  return trial;
}

// What is not to be overwritten.
std::vector<std::string> Inputs(const RecordArguments& arguments) {
  std::vector<std::string> inputs = InputFiles(arguments.television);
  inputs.push_back(arguments.sound);
  inputs.erase(std::remove(inputs.begin(), inputs.end(), ""), inputs.end());
  return inputs;
}

void Record(const RecordArguments& arguments) {
  if (arguments.sound == kStandardInput && arguments.television.room.GetFile() == kStandardInput) {
    throw UsageError("--room and --sound are both standard input, expected a file for one of them");
  }
  const OutputFile file(arguments.output, Inputs(arguments));
  const RunTelevision television(arguments.television, ReadInput(arguments.television));
  const std::optional<std::int64_t> delayMs =
      arguments.delayMs ? std::optional<std::int64_t>(*arguments.delayMs) : television.DelayMs();
  if (!delayMs) {
    throw CommandError("the television's delay cannot be read; --base-delay stands in for it");
  }
  Trial trial = TrialIn(television.GetRoom(), static_cast<double>(*delayMs));
  trial.sound = SoundOf(arguments.sound);
  const std::vector<std::int16_t> recording = RecordTrial(trial, ListenMs(trial));
  const auto rateHz = static_cast<std::uint32_t>(std::lround(trial.room.microphoneRateHz));
  WriteWaveFile(file, recording, {rateHz, 1});
  std::fprintf(file.IsStandardOutput() ? stderr : stdout, "%s: %.3f s at %u Hz, optical output %+.1f ms\n",
               arguments.output.c_str(), static_cast<double>(recording.size()) / rateHz, rateHz,
               sim::MisalignmentMs(television.GetRoom(), static_cast<double>(*delayMs)));
}

}  // namespace

void AddRecordCommand(Command& program) {
  const auto arguments = std::make_shared<RecordArguments>();
  Command& command = program.AddCommand("record", "write what the remote's microphone hears of the test sound");
  TelevisionOptions& television = arguments->television;
  command.Add("OUT", arguments->output, value::File("OUT"), "WAV file to write; -: standard output").Required();
  command.Add("--tv", television.directory, value::Folder(),
              "directory of the television; default: what ORVEX_TV names, else a temporary one");
  command.Add("--base-delay", arguments->delayMs,
              value::WholeNumber("MS", 0, std::numeric_limits<std::uint32_t>::max()),
              "delay of the optical output, in place of the television's");
  command.Add("--sound", arguments->sound, value::File(),
              "WAV file to play in place of the test sound; -: standard input");
  television.room.AddTo(command);
  command.AddExample("orvex-tv record --optical-latency 80 --rt60 0.8 room.wav");
  command.AddExample("orvex-tv record - | orvex-replay --fine -");
  command.SetAction([=] {
    Record(*arguments);
    return kExitGood;
  });
}

}  // namespace orvex::tools
