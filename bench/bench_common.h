// Shared helpers of the benchmark programs: the default installation loaded
// into this process, reproducible random numbers, and (when the comparison
// library is available) its unit system.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#ifdef XUN_BENCH_UDUNITS
#include <udunits2.h>
#endif

namespace xunbench {

// The installation directory the benchmarks load (the repository's data/).
const char* DataDir();

// Loads the default installation into this process once (KORVANE_HOME =
// DataDir(), xunLoadItemTypeTables("")); later calls do nothing.
void LoadDefaultInstallation();

// The tag of a unit of the loaded installation, by ident; aborts when unknown.
int TagOf(const char* ident);

// A small, fast generator with a fixed start, so that every run converts the
// same numbers.
class Random {
  public:
    explicit Random(uint64_t state = 0x9E3779B97F4A7C15ull) : m_state(state) {}
    uint64_t Next() {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return m_state;
    }
    // Uniform in [0, 1).
    double Uniform() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }
    // Uniform in [0, n).
    uint64_t Below(uint64_t n) { return Next() % n; }

  private:
    uint64_t m_state;
};

// Times two candidates in alternating blocks, one block of each per
// iteration, the order swapped from one iteration to the next, so that a
// change of the machine's load hits both alike; adds up each candidate's
// seconds.
template <class First, class Second>
void TimeAlternating(benchmark::State& state, First runFirst, Second runSecond,
                     double& firstSeconds, double& secondSeconds) {
    using Clock = std::chrono::steady_clock;
    bool firstGoesFirst = true;
    for (auto _ : state) {
        for (int half = 0; half < 2; ++half) {
            const bool runningFirst = (half == 0) == firstGoesFirst;
            const Clock::time_point start = Clock::now();
            if (runningFirst)
                runFirst();
            else
                runSecond();
            benchmark::ClobberMemory();
            const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
            (runningFirst ? firstSeconds : secondSeconds) += seconds;
        }
        firstGoesFirst = !firstGoesFirst;
    }
}

// TimeAlternating, then the counters first_ns and second_ns (the time of one
// of the `perBlock` operations a block of each candidate runs) and ratio
// (first over second).
template <class First, class Second>
void TimePairedBlocks(benchmark::State& state, First runFirst, Second runSecond,
                      std::size_t perBlock) {
    double firstSeconds = 0, secondSeconds = 0;
    TimeAlternating(state, runFirst, runSecond, firstSeconds, secondSeconds);
    const double operations = static_cast<double>(state.iterations()) * perBlock;
    state.counters["first_ns"] = firstSeconds / operations * 1e9;
    state.counters["second_ns"] = secondSeconds / operations * 1e9;
    state.counters["ratio"] = firstSeconds / secondSeconds;
}

#ifdef XUN_BENCH_UDUNITS
// The UDUNITS-2 unit system, read once from its default database.
ut_system* UdunitsSystem();

// Names of the UDUNITS-2 units (the singular names and symbols of its
// database files) that its parser accepts.
const std::vector<std::string>& UdunitsUnitNames();
#endif

} // namespace xunbench
