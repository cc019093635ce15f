// SPDX-License-Identifier: MIT

// The engine's elementary functions against the C library's on this processor.

#include "ratio.h"

#include <cmath>
#include <dlfcn.h>
#include <string>

namespace {

constexpr int CALLS = 4096;

/// A thousand rounds of as many calls each. Goal: a ratio of about 1.
template <class... Arguments>
void measure(benchmark::State& state, const char* name, double (*own)(Arguments...), double low,
             double high) {
    using Function = double (*)(Arguments...);
    void* library = dlopen("libm.so.6", RTLD_NOW);
    const auto others = reinterpret_cast<Function>(library ? dlsym(library, name) : nullptr);
    if (!others) {
        state.SkipWithError(dlerror());
        return;
    }
    PairedTimes times(CALLS);
    double sum = 0;
    const auto round = [&](Function f) {
        for (int i = 0; i < CALLS; i++) {
            const double x = low + (high - low) * i / CALLS;
            if constexpr (sizeof...(Arguments) == 2)
                sum += f(x, high - x);
            else
                sum += f(x);
        }
    };
    for (auto _ : state)
        times.measure([&] { round(own); }, [&] { round(others); });
    benchmark::DoNotOptimize(sum);
    times.report(state);
    dlclose(library);
}

void elementary(benchmark::State& state) {
    switch (state.range(0)) {
    case 0:
        return measure<double>(state, "sin", std::sin, -3, 3);
    case 1:
        return measure<double>(state, "cos", std::cos, -300, 300);
    case 2:
        return measure<double>(state, "tan", std::tan, -3, 3);
    case 3:
        return measure<double>(state, "asin", std::asin, -1, 1);
    case 4:
        return measure<double>(state, "acos", std::acos, -1, 1);
    case 5:
        return measure<double>(state, "atan", std::atan, -3, 3);
    case 6:
        return measure<double, double>(state, "atan2", std::atan2, -3, 3);
    case 7:
        return measure<double, double>(state, "hypot", std::hypot, -3, 3);
    case 8:
        return measure<double>(state, "exp", std::exp, -20, 5);
    case 9:
        return measure<double>(state, "log", std::log, 0.01, 20);
    default:
        return measure<double, double>(state, "pow", std::pow, 0, 10);
    }
}
BENCHMARK(elementary)->DenseRange(0, 10)->Iterations(1000);

} // namespace
