// orvex-sweep: measures how well the receiver measures, in thousands of simulated rooms.
#include <time.h>

#include <iostream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "options/program.h"
#include "output/input_file.h"
#include "output/output_file.h"
#include "progress/interruption.h"
#include "progress/progress.h"
#include "sweep/plan.h"
#include "sweep/plot.h"
#include "sweep/report.h"
#include "sweep/sweep.h"

namespace {

using namespace orvex::tools;

constexpr int kExitInterrupted = kExitFailed;

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
    "truth; half: median of half the interval's width, in ms; >1 ms: share of the readings that are so far off.\n";

struct Arguments {
  std::map<Axis, std::string> axes;
  SweepOptions options;
  std::uint64_t seed = 1;
  std::vector<std::string> recordings;
  std::optional<std::string> csv;
  std::optional<std::string> plot;
};

double ProcessorS() {
  timespec used{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

void DefineAxes(Program& program, Arguments& arguments, const Option& fine) {
  for (std::size_t axis = 0; axis < axis::kCount; ++axis) {
    const AxisKind& kind = AxisKinds()[axis];
    std::string& text = arguments.axes[static_cast<Axis>(axis)];
    text = kind.byDefault;
    Option& option = program.Add(std::string("--") + kind.name, text, value::Text("VALUES"), kind.text).InGroup("Axes");
    option.kind.words = kind.names;
    option.kind.isList = true;
    if (kind.isOfFineReading) {
      option.OnlyWith(fine);
    }
  }
}

void DefineOptions(Program& program, Arguments& arguments) {
  SweepOptions& options = arguments.options;
  const Option& fine = program.AddFlag("--fine", options.isFine, "measure the fine reading instead of the receiver");
  DefineAxes(program, arguments, fine);
  options.jobs = std::max(1U, std::thread::hardware_concurrency());
  program.Add("--rooms", options.rooms, value::WholeNumber("N", 1, 10000000), "rooms of each row");
  program.Add("--seed", arguments.seed, value::WholeNumber("N"), "of everything that is drawn");
  program.Add("--jobs", options.jobs, value::WholeNumber("N", 1, 1024),
              "rooms at a time; the results do not depend on it");
  program.Add("--recording", arguments.recordings, value::File(),
              "WAV files of one channel, for --disturbance recording; -: standard input");
  program.Add("--csv", arguments.csv, value::File(),
              "write one line per room to FILE; -: to standard output, and the table to standard error");
  program
      .Add("--plot", arguments.plot, value::File(),
           "draw figures into FILE, an SVG; -: to standard output, and the table to standard error; not with --fine")
      .NotWith(fine);
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
    if (csv && plot && csv->IsStandardOutput() && plot->IsStandardOutput()) {
      throw OutputError("--csv and --plot both take standard output, expected one of them");
    }
  }

  bool TakeStandardOutput() const { return (csv && csv->IsStandardOutput()) || (plot && plot->IsStandardOutput()); }
};

// An incomplete sweep is not drawn: nobody would see that from the figures.
void Write(const Outputs& outputs, const Arguments& arguments, const Plan& plan, const SweepResult& result) {
  WriteTable(outputs.TakeStandardOutput() ? std::cerr : std::cout, plan, result);
  if (outputs.csv) {
    outputs.csv->Write([&](std::ostream& out) { WriteCsv(out, plan, result); });
  }
  if (outputs.plot && result.IsComplete()) {
    const SweepCommand command{arguments.axes, arguments.options.rooms, arguments.seed, arguments.recordings};
    outputs.plot->Write([&](std::ostream& out) { DrawFigures(out, command, plan, result); });
  }
}

Sound ReadRecordedSound(const std::string& path) {
  const InputFile file(path);
  try {
    return ReadSound(file.Path());
  } catch (const std::runtime_error& problem) {
    throw std::runtime_error(file.Named(problem.what()));
  }
}

int Sweep(Arguments& arguments) {
  const Outputs outputs(arguments);
  for (const std::string& file : arguments.recordings) {
    arguments.options.recordings.push_back(ReadRecordedSound(file));
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
            << result.recordedS / ProcessorS() << " times real time per core\n";
  return kExitGood;
}

}  // namespace

int main(int argc, char** argv) {
  Program program("orvex-sweep", kDescription,
                  "0 done, 1 interrupted, and what was done so far is written, 2 wrong usage, or a file or standard "
                  "output that cannot be written",
                  kExitUsage);
  Arguments arguments;
  DefineOptions(program, arguments);
  program.AddExample("orvex-sweep --rooms 200 --rt60-s 0.1,0.4,0.8");
  program.AddExample("orvex-sweep --disturbance hiss,claps --csv rooms.csv");
  program.SetAction([&] { return Sweep(arguments); });
  return program.Run(argc, argv);
}
