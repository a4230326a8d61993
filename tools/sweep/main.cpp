// orvex-sweep: measures how well the receiver measures, in thousands of simulated rooms.
#include <CLI/CLI.hpp>
#include <ctime>
#include <exception>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <thread>

#include "options/usage_message.h"
#include "options/whole_number.h"
#include "output/output_file.h"
#include "output/standard_output.h"
#include "progress/interruption.h"
#include "progress/progress.h"
#include "sweep/plan.h"
#include "sweep/plot.h"
#include "sweep/report.h"
#include "sweep/sweep.h"

namespace {

using namespace orvex::tools;

constexpr int kExitDone = 0;
constexpr int kExitInterrupted = 1;
constexpr int kExitUsage = 2;

constexpr char kDescription[] =
    "Plays the test sound in thousands of simulated rooms, in virtual time, to the receiver as it ships, and says how "
    "well it measures.\n\n"
    "Each axis takes one value (V), a list (A,B,C: one table row each), a range from which every room draws (A:B), or "
    "a "
    "range with either sign (+-A:B). Several lists span all combinations. Room n of a row is the same in all rows, but "
    "for what the row says.\n\n"
    "Error = reported minus true difference, in ms, over all results. found: a result was reported. false: it is more "
    "than 33.0 ms (two buffers) from the truth, or the test sound was not heard; >17.5: more than 17.5 ms from it. "
    "worse: the misalignment that is left "
    "exceeds the one before by more than a buffer (16.5 ms). changed: the run applied another result than its first. "
    "decided: mean time from the start of the recording to the "
    "result or, without one, to the end of the playback; ended: to the end of the process.\n\n"
    "With --fine each room is recorded until the sound has been heard, and read as orvex-replay --fine reads it. read: "
    "there is a reading; bias to worst: of its error, in ms; held: share of the readings whose interval holds the "
    "truth; half: median of half the interval's width, in ms; >1 ms: share of the readings that are so far off.\n\n"
    "Exit code: 0 done, 1 interrupted, and what was done so far is written, 2 wrong usage, or a file or standard "
    "output that cannot be written.";

struct Arguments {
  std::map<Axis, std::string> axes;
  SweepOptions options;
  std::uint64_t seed = 1;
  std::vector<std::string> recordings;
  std::optional<std::string> csv;
  std::optional<std::string> plot;
};

void DefineAxes(CLI::App& app, Arguments& arguments, CLI::Option* fine) {
  for (std::size_t axis = 0; axis < axis::kCount; ++axis) {
    const AxisKind& kind = AxisKinds()[axis];
    CLI::Option* const option =
        app.add_option_function<std::string>(
               std::string("--") + kind.name,
               [&arguments, axis](const std::string& text) { arguments.axes[static_cast<Axis>(axis)] = text; },
               kind.text)
            ->type_name("")
            ->default_str(kind.byDefault)
            ->group("Axes");
    if (kind.isOfFineReading) {
      option->needs(fine);
    }
  }
}

void DefineArguments(CLI::App& app, Arguments& arguments) {
  CLI::Option* const fine =
      app.add_flag("--fine", arguments.options.isFine, "measure the fine reading instead of the receiver");
  DefineAxes(app, arguments, fine);
  arguments.options.jobs = std::max(1U, std::thread::hardware_concurrency());
  app.add_option("--rooms", arguments.options.rooms, "rooms of each row")
      ->check(WholeNumber(1, 10000000))
      ->capture_default_str();
  app.add_option("--seed", arguments.seed, "of everything that is drawn")->check(WholeNumber())->capture_default_str();
  app.add_option("--jobs", arguments.options.jobs, "rooms at a time; the results do not depend on it")
      ->check(WholeNumber(1, 1024))
      ->capture_default_str();
  app.add_option("--recording", arguments.recordings, "WAV files of one channel, for --disturbance recording")
      ->type_name("FILE");
  app.add_option("--csv", arguments.csv,
                 "write one line per room to FILE; -: to standard output, and the table to standard error")
      ->type_name("FILE");
  app.add_option("--plot", arguments.plot,
                 "draw figures into FILE, an SVG or PNG by its ending; needs gnuplot; not with --fine")
      ->type_name("FILE")
      ->excludes(fine);
}

// Tried before the work begins.
struct Outputs {
  std::optional<OutputFile> csv;
  std::optional<OutputFile> plot;

  explicit Outputs(const Arguments& arguments) {
    std::vector<std::string> others = arguments.recordings;
    if (arguments.csv) {
      csv.emplace(*arguments.csv, others);
      others.push_back(*arguments.csv);
    }
    if (arguments.plot) {
      CheckFigures(*arguments.plot);
      plot.emplace(*arguments.plot, others);
    }
  }
};

// An incomplete sweep is not drawn: nobody would see that from the figures.
void Write(const Outputs& outputs, const Arguments& arguments, const Plan& plan, const SweepResult& result) {
  WriteTable(outputs.csv && outputs.csv->IsStandardOutput() ? std::cerr : std::cout, plan, result);
  if (outputs.csv) {
    outputs.csv->Write([&](std::ostream& out) { WriteCsv(out, plan, result); });
  }
  if (outputs.plot && result.IsComplete()) {
    outputs.plot->Write([&](std::ostream& out) { DrawFigures(out, *arguments.plot, plan, result); });
  }
}

int Sweep(Arguments& arguments) {
  const Outputs outputs(arguments);
  for (const std::string& file : arguments.recordings) {
    arguments.options.recordings.push_back(ReadSound(file));
  }
  const Plan plan(arguments.axes, arguments.seed);
  const Interruption interruption;
  Progress progress("orvex-sweep", "rooms", plan.Rows() * arguments.options.rooms);
  arguments.options.progress = [&](std::size_t done) { progress.Show(done); };
  arguments.options.isInterrupted = [&] { return interruption.HasCome(); };
  const SweepResult result = RunSweep(plan, arguments.options);
  Write(outputs, arguments, plan, result);
  if (!result.IsComplete()) {
    std::cerr << "orvex-sweep: interrupted after " << result.done << " of " << result.planned << " rooms"
              << (outputs.plot ? ", no figures are drawn\n" : "\n");
    return kExitInterrupted;
  }
  std::cerr << "orvex-sweep: " << result.recordedS << " s of recordings in " << progress.ElapsedS() << " s, "
            << result.recordedS * CLOCKS_PER_SEC / static_cast<double>(std::clock()) << " times real time per core\n";
  return kExitDone;
}

int Run(int argc, char** argv) {
  CLI::App app(kDescription);
  NameInMessages(app, "orvex-sweep");
  Arguments arguments;
  DefineArguments(app, arguments);
  try {
    app.parse(argc, argv);
    return Sweep(arguments);
  } catch (const CLI::ParseError& problem) {
    return app.exit(problem) == 0 ? kExitDone : kExitUsage;
  } catch (const std::exception& problem) {
    std::cerr << "orvex-sweep: " << problem.what() << '\n';
    return kExitUsage;
  }
}

}  // namespace

int main(int argc, char** argv) {
  return RunWithStandardOutput("orvex-sweep", kExitUsage, [&] { return Run(argc, argv); });
}
