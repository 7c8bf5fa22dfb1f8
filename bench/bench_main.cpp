// xun-bench: every benchmark of libxun in one program, so that each figure
// can be set against its reference from the same run (bench/report.py turns
// the JSON output into the table of README.md).
#include <benchmark/benchmark.h>

namespace xunbench {
void RegisterArrayBenchmarks();
void RegisterSingleBenchmarks();
void RegisterWalkBenchmarks();
void RegisterParseBenchmarks();
void RegisterLoadBenchmarks();
void RegisterPathBenchmarks();
} // namespace xunbench

int main(int argc, char** argv) {
    // The order matters: the walks grow the registry for good, after the
    // single conversions have drawn their pairs among the installation's units;
    // the parses register units for the meanings they read, after the walks
    // have counted theirs.
    xunbench::RegisterPathBenchmarks();
    xunbench::RegisterArrayBenchmarks();
    xunbench::RegisterSingleBenchmarks();
    xunbench::RegisterWalkBenchmarks();
    xunbench::RegisterParseBenchmarks();
    xunbench::RegisterLoadBenchmarks();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
