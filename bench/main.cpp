// Runs the benchmarks in interleaved repetitions and prints the least and the median time of each,
// with their ratios to the benchmark that it is held against: a busy machine spoils some
// repetitions, but those of all benchmarks alike.

#include "bench/reference.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace vardel {
namespace {

class Report final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const std::string& name = run.run_name.function_name;
      if (!times_.contains(name)) order_.push_back(name);
      times_[name].push_back(run.GetAdjustedCPUTime());
      allocations_[name] = run.counters.at("allocations");
    }
  }

  void Finalize() override {
    std::printf("%-24s %9s %9s   %-22s %6s %6s %12s\n", "ns of processor time", "minimum", "median",
                "ratio to", "min.", "med.", "allocations");
    std::ranges::sort(order_);
    for (const std::string& name : order_) {
      const std::string reference = Reference(name);
      const auto [least, median] = Summary(name);
      std::printf("%-24s %9.1f %9.1f   ", name.c_str(), least, median);
      if (times_.contains(reference)) {
        const auto [otherLeast, otherMedian] = Summary(reference);
        std::printf("%-22s %6.2f %6.2f", reference.c_str(), least / otherLeast,
                    median / otherMedian);
      } else {
        std::printf("%-22s %6s %6s", "", "", "");
      }
      std::printf(" %12.0f\n", allocations_[name]);
    }
  }

 private:
  struct Times {
    double least, median;
  };
  Times Summary(const std::string& name) {
    std::vector<double>& times = times_[name];
    std::ranges::sort(times);
    return {times.front(), times[times.size() / 2]};
  }

  std::vector<std::string> order_;
  std::map<std::string, std::vector<double>> times_;
  std::map<std::string, double> allocations_;
};

}  // namespace
}  // namespace vardel

int main(int argc, char** argv) {
  // Short repetitions, and many: the least is that of an undisturbed one. Arguments come last and
  // override these.
  std::string defaults[] = {"--benchmark_enable_random_interleaving=true",
                            "--benchmark_repetitions=25", "--benchmark_min_time=0.02"};
  std::vector<char*> arguments = {argv[0]};
  for (std::string& argument : defaults) arguments.push_back(argument.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  vardel::Report report;
  benchmark::RunSpecifiedBenchmarks(&report);
}
