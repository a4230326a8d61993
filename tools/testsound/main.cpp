// orvex-testsound: writes the test sound, or checks whether a file is fit to be one.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "options/program.h"
#include "output/input_file.h"
#include "testsound/checker.h"
#include "testsound/generator.h"
#include "testsound/wave_file.h"

namespace {

using namespace orvex::tools;

constexpr int kFit = kExitGood;
constexpr int kUnfit = kExitFailed;

struct Arguments {
  std::string output;
  std::string check;
  SoundDesign design;
};

void DefineOptions(Program& program, Arguments& arguments) {
  SoundDesign& design = arguments.design;
  Option& check =
      program.Add("--check", arguments.check, value::File(),
                  "say whether FILE is fit, and why not; -: standard input; cannot be combined with another option");
  const auto add = [&](const char* name, auto& value, const ValueKind& kind, const char* text) {
    program.Add(name, value, kind, text).NotWith(check);
  };
  add("-o,--output,OUT", arguments.output, value::File(), "WAV file to write; -: standard output");
  add("--burst-ms", design.burstMs, value::Number("MS", kMinBurstMs, kMaxBurstMs), "length of a burst, ramps included");
  add("--ramp-ms", design.rampMs, value::Number("MS", 0.0, kMaxBurstMs / 2), "length of the rise, and of the fall");
  add("--skew-ms", design.skewMs, value::Number("MS", 0.0, kMaxSkewMs), "how much later the 19 kHz bursts start");
  add("--pairs", design.pairs, value::WholeNumber("N", kMinPairs, kMaxPairs), "number of pairs");
  add("--spacing-ms", design.spacingMs, value::Number("MS", 100.0, 2000.0), "from the start of a pair to the next");
  add("--lead-in-ms", design.leadInMs, value::Number("MS", 0.0, 2000.0), "silence before the first pair");
  add("--tail-ms", design.tailMs, value::Number("MS", 0.0, 3000.0), "silence after the last pair");
  add("--level-dbfs", design.levelDbfs, value::Number("DBFS", -60.0, 0.0), "peak of each channel");
}

int Report(const std::vector<std::string>& reasons) {
  for (const std::string& reason : reasons) {
    std::fprintf(stderr, "orvex-testsound: %s\n", reason.c_str());
  }
  return reasons.empty() ? kFit : kUnfit;
}

std::vector<std::string> ReasonsOf(const std::string& path) {
  const InputFile file(path);
  try {
    std::vector<std::string> reasons = CheckFile(file.Path());
    std::transform(reasons.begin(), reasons.end(), reasons.begin(),
                   [&](const std::string& reason) { return file.Named(reason); });
    return reasons;
  } catch (const WaveFileError& problem) {
    throw WaveFileError(file.Named(problem.what()));
  }
}

int Check(const std::string& path) {
  const int result = Report(ReasonsOf(path));
  std::printf("%s: %s\n", path.c_str(), result == kFit ? "fit" : "not fit");
  return result;
}

int Write(const std::string& path, const SoundDesign& design) {
  const OutputFile file(path);
  const auto samples = GenerateSound(design);
  if (const int result = Report(CheckSound(samples)); result != kFit) {
    std::fprintf(stderr, "orvex-testsound: %s: not written, the sound would not be fit\n", path.c_str());
    return result;
  }
  WriteWaveFile(file, samples);
  std::fprintf(file.IsStandardOutput() ? stderr : stdout, "%s: %.3f s, %d pairs of %.0f ms every %.0f ms\n",
               path.c_str(), design.DurationMs() / 1000.0, design.pairs, design.burstMs, design.spacingMs);
  return kFit;
}

int Run(const Arguments& arguments) {
  if (arguments.output.empty() && arguments.check.empty()) {
    throw UsageError("OUT or --check FILE is missing");
  }
  return arguments.check.empty() ? Write(arguments.output, arguments.design) : Check(arguments.check);
}

}  // namespace

int main(int argc, char** argv) {
  Program program("orvex-testsound",
                  "Writes the test sound of a calibration (17 kHz bursts left, 19 kHz bursts right), or checks a file.",
                  "0 written or fit, 1 not fit, 2 wrong usage, or a file or standard output that cannot be read or "
                  "written",
                  kExitUsage);
  Arguments arguments;
  DefineOptions(program, arguments);
  program.AddExample("orvex-testsound --level-dbfs -12 --pairs 6 --spacing-ms 620 quiet.wav");
  program.AddExample("orvex-testsound --check sound.wav");
  program.SetAction([&] { return Run(arguments); });
  return program.Run(argc, argv);
}
