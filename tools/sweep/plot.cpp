// Figures of a sweep, drawn by gnuplot.
#include "plot.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

// Its exit code.
int RunGnuplot(const std::string& argument) {
  const char* const arguments[] = {"gnuplot", argument.c_str(), nullptr};
  pid_t child = 0;
  const int error = ::posix_spawnp(&child, "gnuplot", nullptr, nullptr, const_cast<char**>(arguments), environ);
  if (error == ENOENT) {
    throw std::runtime_error("gnuplot is not installed; the Debian package gnuplot-nox has it");
  }
  if (error != 0) {
    throw std::runtime_error(std::string("gnuplot cannot be run: ") + std::strerror(error));
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A file that is gone with its object.
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

// Per millisecond of error the share of the row's rooms.
void WriteHistogram(std::ostream& out, std::size_t row, const std::vector<RoomResult>& results) {
  std::map<long, std::size_t> counts;
  for (const RoomResult& result : results) {
    if (result.found) {
      ++counts[std::lround(result.errorMs)];
    }
  }
  out << DataName("histogram", row) << " << END\n";
  for (const auto& [error, count] : counts) {
    out << error << ' ' << 100.0 * static_cast<double>(count) / static_cast<double>(results.size()) << '\n';
  }
  out << "END\n";
}

void WriteErrors(std::ostream& out, std::size_t row, const std::vector<RoomResult>& results) {
  out << DataName("errors", row) << " << END\n";
  for (const RoomResult& result : results) {
    if (result.found) {
      out << result.beforeMs << ' ' << result.errorMs << '\n';
    }
  }
  out << "END\n";
}

void WritePlotOfRows(std::ostream& out, const char* kind, const char* style, const Plan& plan,
                     const SweepResult& result) {
  out << "plot ";
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    out << (row == 0 ? "" : ", ") << DataName(kind, row) << " using 1:2 " << style << " title "
        << Quoted(RowName(plan, row));
  }
  out << '\n';
}

}  // namespace

void WriteFigureScript(std::ostream& out, const std::string& path, const Plan& plan, const SweepResult& result) {
  std::vector<Statistics> statistics;
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    statistics.push_back(Summarise(result.rows[row]));
    WriteHistogram(out, row, result.rows[row]);
    WriteErrors(out, row, result.rows[row]);
  }
  out << "$found << END\n";
  for (std::size_t row = 0; row < result.rows.size(); ++row) {
    out << row + 1 << ' ' << statistics[row].foundPercent << " \"" << RowName(plan, row) << "\"\n";
  }
  out << "END\n"
      << "set terminal " << TerminalFor(path) << "\nset output " << Quoted(path) << '\n'
      << "set multiplot layout 3,1\nset grid\nset key outside bottom noenhanced\n"
      << "set title 'Error, reported minus true difference'\nset xlabel 'ms'\nset ylabel '% of rooms per ms'\n"
      << "set xrange [-35:35]\n";
  WritePlotOfRows(out, "histogram", "with histeps linewidth 2", plan, result);
  out << "set title 'Error over true difference'\nset xlabel 'true difference, ms'\nset ylabel 'error, ms'\n"
      << "set xrange [*:*]\nset yrange [-35:35]\n";
  WritePlotOfRows(out, "errors", "with points pointtype 7 pointsize 0.2", plan, result);
  out << "set title 'Found'\nset xlabel ''\nset ylabel '% of rooms'\nset yrange [0:105]\nset boxwidth 0.6\n"
      << "set style fill solid 0.6\nset xtics rotate by -30 noenhanced\n"
      << "plot $found using 1:2:xtic(3) with boxes notitle\nunset multiplot\n";
}

void CheckFigures(const std::string& path) {
  TerminalFor(path);
  RunGnuplot("--version");
}

void DrawFigures(const std::string& path, const Plan& plan, const SweepResult& result) {
  const TemporaryFile script;
  std::ofstream out(script.Path());
  WriteFigureScript(out, path, plan, result);
  out.close();
  if (!out || RunGnuplot(script.Path()) != 0) {
    throw std::runtime_error(path + ": the figures could not be drawn");
  }
}

}  // namespace orvex::tools
