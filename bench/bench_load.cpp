// Loading in a fresh process: every iteration starts the helper program
// xun-bench-load, which times one call in a process that has loaded nothing
// yet and prints the nanoseconds. The benchmark reports that time (manual
// time); the counter process_ms is the whole life of the helper process.
//   load/xun      xunLoadItemTypeTables("") of the default installation
//                 (setup file and language files), taken from the load cache
//                 (a folder of this run's own, filled by one load first)
//   load/parse    the same with the cache off: the XML is parsed
//   load/udunits  ut_read_xml(NULL) of UDUNITS-2's whole database
//   load/xerces   the XML parser's initialisation alone, for reference
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench_common.h"

extern char** environ;

namespace xunbench {
namespace {

// Runs the helper with the mode; its printed time in nanoseconds, or -1.
double RunHelper(const char* mode) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[1]);
    std::string helper = XUN_BENCH_LOAD_HELPER;
    std::string modeArg = mode;
    std::string data = DataDir();
    char* argv[] = {&helper[0], &modeArg[0], &data[0], nullptr};
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, helper.c_str(), &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeEnds[1]);
    std::string output;
    char buffer[256];
    ssize_t got;
    while ((got = read(pipeEnds[0], buffer, sizeof buffer)) > 0)
        output.append(buffer, static_cast<size_t>(got));
    close(pipeEnds[0]);
    if (spawned != 0)
        return -1;
    int status = 0;
    waitpid(pid, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return -1;
    return std::strtod(output.c_str(), nullptr);
}

// The load cache of this run: a folder of its own, which one load fills
// before anything is timed. The helpers inherit XUN_CACHE_DIR.
std::string CacheDir_;

void RemoveCache() {
    const std::string command = "rm -rf '" + CacheDir_ + "'";
    if (std::system(command.c_str()) != 0)
        std::fprintf(stderr, "could not remove %s\n", CacheDir_.c_str());
}

void WarmCache() {
    static const bool warm = [] {
        char pattern[] = "/tmp/xun-bench-cache-XXXXXX";
        if (mkdtemp(pattern) == nullptr)
            return false;
        CacheDir_ = pattern;
        std::atexit(&RemoveCache);
        setenv("XUN_CACHE_DIR", pattern, 1);
        return RunHelper("xun") >= 0;
    }();
    (void)warm;
}

void Load(benchmark::State& state, const char* mode) {
    WarmCache();
    double processSeconds = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const double ns = RunHelper(mode);
        processSeconds +=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (ns < 0) {
            state.SkipWithError("the load helper failed");
            break;
        }
        state.SetIterationTime(ns * 1e-9);
    }
    if (state.iterations() > 0)
        state.counters["process_ms"] =
            processSeconds * 1e3 / static_cast<double>(state.iterations());
}

#ifdef XUN_BENCH_UDUNITS
// Both loads in turn in every iteration, so that their ratio holds on a busy
// machine: counters first_ms and second_ms (medians) and the ratio of the
// medians.
void PairedLoad(benchmark::State& state, const char* mode) {
    WarmCache();
    std::vector<double> ours, theirs;
    for (auto _ : state) {
        const bool oursFirst = ours.size() % 2 == 0;
        const double a = RunHelper(oursFirst ? mode : "udunits");
        const double b = RunHelper(oursFirst ? "udunits" : mode);
        if (a < 0 || b < 0) {
            state.SkipWithError("the load helper failed");
            return;
        }
        ours.push_back(oursFirst ? a : b);
        theirs.push_back(oursFirst ? b : a);
        state.SetIterationTime((a + b) * 1e-9);
    }
    auto median = [](std::vector<double> v) {
        std::sort(v.begin(), v.end());
        const size_t n = v.size();
        return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
    };
    if (ours.empty())
        return;
    state.counters["first_ms"] = median(ours) * 1e-6;
    state.counters["second_ms"] = median(theirs) * 1e-6;
    state.counters["ratio"] = median(ours) / median(theirs);
}
#endif

} // namespace

void RegisterLoadBenchmarks() {
    auto tune = [](benchmark::internal::Benchmark* b) {
        b->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(100);
    };
    tune(benchmark::RegisterBenchmark("load/default/xun",
                                      [](benchmark::State& s) { Load(s, "xun"); }));
    tune(benchmark::RegisterBenchmark("load/parse/xun",
                                      [](benchmark::State& s) { Load(s, "xun-parse"); }));
    tune(benchmark::RegisterBenchmark("load/xerces-init/xun",
                                      [](benchmark::State& s) { Load(s, "xerces"); }));
#ifdef XUN_BENCH_UDUNITS
    tune(benchmark::RegisterBenchmark("load/default/udunits",
                                      [](benchmark::State& s) { Load(s, "udunits"); }));
    tune(benchmark::RegisterBenchmark("load/paired/xun-vs-udunits",
                                      [](benchmark::State& s) { PairedLoad(s, "xun"); }));
    tune(benchmark::RegisterBenchmark("load/paired/parse-vs-udunits",
                                      [](benchmark::State& s) { PairedLoad(s, "xun-parse"); }));
#endif
}

} // namespace xunbench
