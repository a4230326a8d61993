// orvex_run_bench COSTS RUNS: what whole runs cost and how long they take, as one JSON object with every single figure.
//
// Measures the costs of COSTS runs of the service and of the bare program, one at a time, then the times of RUNS runs
// of the service, several at a time.
#include <json/value.h>
#include <json/writer.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <mutex>
#include <string>

#include "bench/run_samples.h"
#include "integration/parallel.h"
#include "progress/progress.h"

namespace {

using namespace orvex::bench;

Json::Value ToJson(const ProcessCost& cost) {
  Json::Value json;
  json["first_event_ms"] = cost.firstEventMs;
  json["processor_ms"] = cost.processorMs;
  json["memory_kib"] = cost.memoryKib;
  return json;
}

Json::Value ToJson(const RunTimes& times) {
  Json::Value json;
  json["delivery_to_delay_ms"] = times.deliveryToDelayMs;
  json["result_ms"] = times.resultMs;
  json["demanded_ms"] = times.demandedMs;
  return json;
}

Json::Value MeasureAllCosts(std::size_t count) {
  orvex::tools::Progress progress("orvex_run_bench", "pairs of processes", count);
  Json::Value costs(Json::arrayValue);
  for (std::size_t n = 0; n < count; ++n) {
    const CostPair pair = MeasureCosts();
    Json::Value json;
    json["service"] = ToJson(pair.service);
    json["bare"] = ToJson(pair.bare);
    costs.append(json);
    progress.Show(n + 1);
  }
  return costs;
}

// A null stands for a run that found no difference.
Json::Value MeasureAllRuns(std::size_t count) {
  orvex::tools::Progress progress("orvex_run_bench", "runs", count);
  Json::Value runs(Json::arrayValue);
  std::mutex mutex;
  std::exception_ptr failure;
  orvex::integration::InParallel(count, [&](std::size_t number) {
    try {
      const auto times = MeasureRun(number);
      const std::lock_guard<std::mutex> lock(mutex);
      runs.append(times ? ToJson(*times) : Json::Value());
      progress.Show(runs.size());
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex);
      failure = std::current_exception();
    }
  });
  if (failure != nullptr) {
    std::rethrow_exception(failure);
  }
  return runs;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "orvex_run_bench: expected two numbers, COSTS RUNS\n";
    return 2;
  }
  try {
    Json::Value figures;
    figures["costs"] = MeasureAllCosts(std::stoul(argv[1]));
    figures["runs"] = MeasureAllRuns(std::stoul(argv[2]));
    std::cout << figures << '\n';
  } catch (const std::exception& problem) {
    std::cerr << "orvex_run_bench: " << problem.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
