// Gives gnuplot a script and data in temporary files. gnuplot prints the figure into a pipe, as it does not report that
// it cannot write a file.
#include "sweep/plot.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <vector>

namespace orvex::tools {
namespace {

// Within single quotes of gnuplot a quote is written twice.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    quoted += c;
    quoted += c == '\'' ? "'" : "";
  }
  return quoted + "'";
}

constexpr long kShownErrorMs = 35;  // to either side

const char* TerminalFor(const std::string& path) {
  const std::string ending = std::filesystem::path(path).extension();
  if (ending == ".svg") {
    return "svg size 900,1200 enhanced background '#ffffff'";
  }
  if (ending == ".png") {
    return "pngcairo size 900,1200";
  }
  throw std::runtime_error(path + ": expected a name that ends in .svg or .png");
}

// Answers an error code.
int StartGnuplot(const std::string& argument, int output, pid_t& child) {
  const char* const arguments[] = {"gnuplot", argument.c_str(), nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  const int error = ::posix_spawnp(&child, "gnuplot", &actions, nullptr, const_cast<char**>(arguments), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  return error;
}

std::string ReadToTheEnd(int descriptor) {
  std::string text;
  char piece[65536];
  ssize_t count = 0;
  while ((count = ::read(descriptor, piece, sizeof piece)) > 0 || (count < 0 && errno == EINTR)) {
    text.append(piece, count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  return text;
}

// What gnuplot prints. It does not report that it cannot write a file, and so it writes into a pipe.
std::string RunGnuplot(const std::string& argument) {
  int pipe[2];
  if (::pipe2(pipe, O_CLOEXEC) != 0) {
    throw std::runtime_error(std::string("gnuplot cannot be run: ") + std::strerror(errno));
  }
  pid_t child = 0;
  const int error = StartGnuplot(argument, pipe[1], child);
  ::close(pipe[1]);
  std::string output = ReadToTheEnd(pipe[0]);
  ::close(pipe[0]);
  if (error != 0) {
    throw std::runtime_error(error == ENOENT ? "gnuplot is not installed; the Debian package gnuplot-nox has it"
                                             : std::string("gnuplot cannot be run: ") + std::strerror(error));
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (status != 0) {
    throw std::runtime_error("gnuplot has failed with " + argument);
  }
  return output;
}

// A file that its destructor deletes.
class TemporaryFile {
public:
  TemporaryFile() : m_Path(std::filesystem::temp_directory_path() / "orvex-sweep-XXXXXX") {
    const int descriptor = ::mkstemp(m_Path.data());
    if (descriptor < 0) {
      throw std::runtime_error(m_Path + ": cannot be made: " + std::strerror(errno));
    }
    ::close(descriptor);
  }
  ~TemporaryFile() { ::unlink(m_Path.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const std::string& Path() const { return m_Path; }

private:
  std::string m_Path;
};

std::string RowName(const Plan& plan, std::size_t row) {
  std::string name;
  for (const Axis axis : plan.ListedAxes()) {
    name += (name.empty() ? "" : ", ") + std::string(AxisKinds()[axis].name) + " " + plan.Text(axis, row);
  }
  return name.empty() ? "all rooms" : name;
}

std::string DataName(const char* kind, std::size_t row) {
  return "$" + std::string(kind) + std::to_string(row + 1);
}

// Per millisecond of error the share of the row's rooms. A bin that is left out would be bridged by its neighbours.
void WriteHistogram(std::ostream& out, std::size_t row, const std::vector<RoomResult>& results) {
  std::map<long, std::size_t> counts{{-kShownErrorMs, 0}, {kShownErrorMs, 0}};
  for (const RoomResult& result : results) {
    if (result.found) {
      ++counts[std::lround(result.errorMs)];
    }
  }
  out << DataName("histogram", row) << " << END\n";
  for (long error = counts.begin()->first; error <= counts.rbegin()->first; ++error) {
    out << error << ' ' << 100.0 * static_cast<double>(counts[error]) / static_cast<double>(results.size()) << '\n';
  }
  out << "END\n";
}

// Begins with an undefined point: gnuplot refuses data that has none.
void WriteErrors(std::ostream& out, std::size_t row, const std::vector<RoomResult>& results) {
  out << DataName("errors", row) << " << END\nNaN NaN\n";
  for (const RoomResult& result : results) {
    if (result.found) {
      out << result.beforeMs << ' ' << result.errorMs << '\n';
    }
  }
  out << "END\n";
}

// Adds a line at 0: gnuplot refuses a picture without any point.
void WritePlotOfRows(std::ostream& out, const char* kind, const char* style, const Plan& plan,
                     const SweepResult& result) {
  out << "plot ";
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    out << DataName(kind, row) << " using 1:2 " << style << " title " << Quoted(RowName(plan, row)) << ", ";
  }
  out << "0 with lines linecolor 'grey' notitle\n";
}

}  // namespace

void WriteFigureScript(std::ostream& out, const std::string& path, const Plan& plan, const SweepResult& result) {
  const std::string shownErrors = "[-" + std::to_string(kShownErrorMs) + ':' + std::to_string(kShownErrorMs) + "]\n";
  std::vector<Statistics> statistics;
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    statistics.push_back(Summarise(result.rows[row]));
    WriteHistogram(out, row, result.rows[row]);
    WriteErrors(out, row, result.rows[row]);
  }
  bool isAnyFound = false;
  out << "$found << END\n";
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    isAnyFound = isAnyFound || statistics[row].foundPercent > 0.0;
    out << row + 1 << ' ' << statistics[row].foundPercent << " \"" << RowName(plan, row) << "\"\n";
  }
  out << "END\n"
      << "set terminal " << TerminalFor(path) << '\n'
      << "set multiplot layout 3,1\nset grid\nset key outside bottom noenhanced\n"
      << "set title 'Error, reported minus true difference'\nset xlabel 'ms'\nset ylabel '% of rooms per ms'\n"
      << "set yrange [0:" << (isAnyFound ? "*" : "1") << "]\nset xrange " << shownErrors;
  WritePlotOfRows(out, "histogram", "with histeps linewidth 2", plan, result);
  out << "set title 'Error over true difference'\nset xlabel 'true difference, ms'\nset ylabel 'error, ms'\n"
      << "set xrange [*:*]\nset yrange " << shownErrors;
  WritePlotOfRows(out, "errors", "with points pointtype 7 pointsize 0.2", plan, result);
  out << "set title 'Found'\nset xlabel ''\nset ylabel '% of rooms'\nset yrange [0:105]\nset boxwidth 0.6\n"
      << "set style fill solid 0.6\nset xtics rotate by -30 noenhanced\n"
      << "plot $found using 1:2:xtic(3) with boxes notitle\nunset multiplot\n";
}

void CheckFigures(const std::string& path) {
  TerminalFor(path);
  RunGnuplot("--version");
}

void DrawFigures(std::ostream& out, const std::string& path, const Plan& plan, const SweepResult& result) {
  const TemporaryFile script;
  std::ofstream text(script.Path());
  WriteFigureScript(text, path, plan, result);
  text.close();
  if (!text) {
    throw std::runtime_error(script.Path() + ": cannot be written: " + std::strerror(errno));
  }
  out << RunGnuplot(script.Path());
}

}  // namespace orvex::tools
