#pragma once

// Paired comparisons. The machine is shared, and its load drifts more than
// the differences sought here. So each iteration runs both sides, in
// alternating order, and times each with the thread's CPU clock; the counter
// `ratio` is the first side's total over the second's, `first_ms` and
// `second_ms` their means.

#include <benchmark/benchmark.h>

#include <ctime>

namespace KestoBench {

inline double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// `run()` under the thread's CPU clock; a negative time when it failed.
template <class Run>
inline double timed(Run const& run) {
    double const start = threadSeconds();
    bool const ok = run();
    double const elapsed = threadSeconds() - start;
    return ok ? elapsed : -1.0;
}

/// Each side returns its own time (set-up excluded) or a negative one.
template <class First, class Second>
inline void paired(benchmark::State& state, First const& first, Second const& second) {
    double totalFirst = 0;
    double totalSecond = 0;
    bool firstFirst = true;
    for (auto _ : state) {
        double a = 0;
        double b = 0;
        if (firstFirst) {
            a = first();
            b = second();
        } else {
            b = second();
            a = first();
        }
        if (a < 0 || b < 0) {
            state.SkipWithError("a side failed");
            return;
        }
        firstFirst = !firstFirst;
        totalFirst += a;
        totalSecond += b;
        state.SetIterationTime(a + b);
    }
    auto const iterations = static_cast<double>(state.iterations());
    state.counters["ratio"] = totalFirst / totalSecond;
    state.counters["first_ms"] = totalFirst / iterations * 1e3;
    state.counters["second_ms"] = totalSecond / iterations * 1e3;
}

} // namespace KestoBench
