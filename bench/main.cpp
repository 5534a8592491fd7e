// The benchmark program: zeldom40_bench [options of the benchmark library], or
// zeldom40_bench growth [--divide=N] [--pairs=N] [--dynamic] [part of a shape's name...], or
// zeldom40_bench growth-edit [--divide=N] [--all] [part of a shape's name...].
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Shapes.h"

int main(int argc, char** argv) {
  if (argc > 1 && std::string(argv[1]) == "growth") {
    return zeldom40::bench::runGrowth(std::vector<std::string>(argv + 2, argv + argc));
  }
  if (argc > 1 && std::string(argv[1]) == "growth-edit") {
    return zeldom40::bench::runEditGrowth(std::vector<std::string>(argv + 2, argv + argc));
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
