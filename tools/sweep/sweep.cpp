// Hands the rooms out to threads by number and keeps their results by number.
#include "sweep/sweep.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <system_error>

#include "sweep/one_room.h"

namespace orvex::tools {
namespace {

class Workers {
public:
  Workers(const Plan& plan, const SweepOptions& options)
      : m_Plan(plan), m_Options(options), m_Results(plan.Rows(), std::vector<RoomResult>(options.rooms)) {}

  SweepResult Run() {
    const std::vector<std::future<void>> workers = Start();
    WatchUntilDone(workers.size());
    if (m_Failure != nullptr) {
      std::rethrow_exception(m_Failure);
    }
    KeepWhatIsDone();
    SweepResult result;
    result.isFine = m_Options.isFine;
    result.rows = std::move(m_Results);
    result.done = m_Done;
    result.planned = Total();
    return result;
  }

private:
  std::size_t Total() const { return m_Plan.Rows() * m_Options.rooms; }

  // Not more of them than rooms, and fewer where the computer cannot run so many.
  std::vector<std::future<void>> Start() {
    std::vector<std::future<void>> workers;
    const std::size_t wanted = std::min<std::size_t>(m_Options.jobs, Total());
    try {
      while (workers.size() < wanted) {
        workers.push_back(std::async(std::launch::async, [this] { Work(); }));
      }
    } catch (const std::system_error&) {
      if (workers.empty()) {
        throw;
      }
    }
    return workers;
  }

  void Work() {
    try {
      while (!m_Options.isInterrupted()) {
        const std::size_t next = m_Next++;
        if (next >= Total()) {
          break;
        }
        const std::size_t row = next / m_Options.rooms;
        const std::size_t room = next % m_Options.rooms;
        m_Results[row][room] = m_Options.isFine ? ReadRoom(m_Plan, row, room, m_Readers, m_Options.recordings)
                                                : RunRoom(m_Plan, row, room, m_Options.recordings);
        ++m_Done;
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(m_Mutex);
      m_Failure = std::current_exception();
      m_Next = Total();
    }
    const std::lock_guard<std::mutex> lock(m_Mutex);
    ++m_Finished;
    m_Changed.notify_one();
  }

  // Every room that was handed out is done, and so they are the first ones.
  void KeepWhatIsDone() {
    const std::size_t wholeRows = m_Done / m_Options.rooms;
    const std::size_t rest = m_Done % m_Options.rooms;
    m_Results.resize(wholeRows + (rest > 0 ? 1 : 0));
    if (rest > 0) {
      m_Results.back().resize(rest);
    }
  }

  void WatchUntilDone(std::size_t workers) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    constexpr std::chrono::milliseconds kBetween(200);
    while (!m_Changed.wait_for(lock, kBetween, [this, workers] { return m_Finished == workers; })) {
      m_Options.progress(m_Done);
    }
  }

  const Plan& m_Plan;
  const SweepOptions& m_Options;
  FineReaders m_Readers;
  std::vector<std::vector<RoomResult>> m_Results;
  std::atomic<std::size_t> m_Next{0};
  std::atomic<std::size_t> m_Done{0};
  std::mutex m_Mutex;
  std::condition_variable m_Changed;
  std::size_t m_Finished = 0;
  std::exception_ptr m_Failure;
};

}  // namespace

SweepResult RunSweep(const Plan& plan, const SweepOptions& options) {
  SweepResult result = Workers(plan, options).Run();
  for (const auto& row : result.rows) {
    for (const RoomResult& room : row) {
      result.recordedS += room.decidedMs / 1000.0;
    }
  }
  return result;
}

}  // namespace orvex::tools
