// The benchmark program: zeldom40_bench [options of the benchmark library], or
// zeldom40_bench growth [--growth | --depth] [--more | --all] [--divide=N] [part of a shape's name...]: the tables of
// growth and of depth, or one of them; --more measures shapes that have a row only if they grow, --all gives them one
// anyway; --divide takes smaller pages. Or
// zeldom40_bench growth --pairs=N: all pairs of elements.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Shapes.h"

int main(int argc, char** argv) {
  if (argc > 1 && std::string(argv[1]) == "growth") {
    return zeldom40::bench::runGrowth(std::vector<std::string>(argv + 2, argv + argc), argv[0]);
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
