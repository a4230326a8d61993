// orvex-testsound: writes the test sound, or checks whether a file is fit to be one.
#include <cstdio>
#include <exception>
#include <string>
#include <type_traits>
#include <vector>

#include <CLI/CLI.hpp>

#include "options/usage_message.h"
#include "output/standard_output.h"
#include "testsound/checker.h"
#include "testsound/generator.h"

using orvex::tools::SoundDesign;

namespace {

constexpr int kFit = 0;
constexpr int kUnfit = 1;
constexpr int kUsage = 2;

struct Arguments {
  std::string output;
  std::string check;
  SoundDesign design;
};

void DefineArguments(CLI::App& app, Arguments& arguments) {
  SoundDesign& design = arguments.design;
  auto* output = app.add_option("-o,--output,OUT", arguments.output, "WAV file to write; -: standard output");
  auto* check = app.add_option("--check", arguments.check, "say whether FILE is fit, and why not")->type_name("FILE");
  check->excludes(output);
  const auto option = [&](const char* name, auto& value, double low, double high, const char* text) {
    using Value = std::decay_t<decltype(value)>;
    const CLI::Range range(static_cast<Value>(low), static_cast<Value>(high));
    app.add_option(name, value, text)->check(range)->capture_default_str()->excludes(check);
  };
  option("--burst-ms", design.burstMs, orvex::tools::kMinBurstMs, orvex::tools::kMaxBurstMs,
         "length of a burst, ramps included");
  option("--ramp-ms", design.rampMs, 0.0, orvex::tools::kMaxBurstMs / 2, "length of the rise, and of the fall");
  option("--skew-ms", design.skewMs, 0.0, orvex::tools::kMaxSkewMs, "how much later the 19 kHz bursts start");
  option("--pairs", design.pairs, orvex::tools::kMinPairs, orvex::tools::kMaxPairs, "number of pairs");
  option("--spacing-ms", design.spacingMs, 100.0, 2000.0, "from the start of a pair to the next");
  option("--lead-in-ms", design.leadInMs, 0.0, 2000.0, "silence before the first pair");
  option("--tail-ms", design.tailMs, 0.0, 3000.0, "silence after the last pair");
  option("--level-dbfs", design.levelDbfs, -60.0, 0.0, "peak of each channel");
}

int Report(const std::vector<std::string>& reasons) {
  for (const std::string& reason : reasons) {
    std::fprintf(stderr, "%s\n", reason.c_str());
  }
  return reasons.empty() ? kFit : kUnfit;
}

int Check(const std::string& path) {
  const int result = Report(orvex::tools::CheckFile(path));
  std::printf("%s: %s\n", path.c_str(), result == kFit ? "fit" : "not fit");
  return result;
}

int Write(const std::string& path, const SoundDesign& design) {
  const orvex::tools::OutputFile file(path);
  const auto samples = orvex::tools::GenerateSound(design);
  if (const int result = Report(orvex::tools::CheckSound(samples)); result != kFit) {
    std::fprintf(stderr, "%s: not written, the sound would not be fit\n", path.c_str());
    return result;
  }
  orvex::tools::WriteWaveFile(file, samples);
  std::fprintf(file.IsStandardOutput() ? stderr : stdout, "%s: %.3f s, %d pairs of %.0f ms every %.0f ms\n",
               path.c_str(), design.DurationMs() / 1000.0, design.pairs, design.burstMs, design.spacingMs);
  return kFit;
}

int Run(int argc, char** argv) {
  CLI::App app(
      "Writes the test sound of a calibration (17 kHz bursts left, 19 kHz bursts right), or checks a file.\n"
      "Exit code: 0 written or fit, 1 not fit, 2 wrong usage, or a file or standard output that cannot be read or "
      "written.");
  orvex::tools::NameInMessages(app, "orvex-testsound");
  Arguments arguments;
  DefineArguments(app, arguments);
  try {
    app.parse(argc, argv);
    if (arguments.output.empty() && arguments.check.empty()) {
      throw CLI::RequiredError("OUT or --check FILE");
    }
    return arguments.check.empty() ? Write(arguments.output, arguments.design) : Check(arguments.check);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kFit : kUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "orvex-testsound: %s\n", error.what());
    return kUsage;
  }
}

}  // namespace

int main(int argc, char** argv) {
  return orvex::tools::RunWithStandardOutput("orvex-testsound", kUsage, [&] { return Run(argc, argv); });
}
