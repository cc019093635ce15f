// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <vector>

/// Times two things in turn, so that both see the same machine, and reports the median of each and
/// their ratio as counters of a benchmark.
class PairedTimes {
public:
    /// `subject` and `floor` do their thing once per call.
    template <class Subject, class Floor>
    void measure(Subject subject, Floor floor) {
        m_subject.push_back(time(subject));
        m_floor.push_back(time(floor));
    }
    void report(benchmark::State& state) {
        const double subject = median(m_subject), floor = median(m_floor);
        state.counters["subject_us"] = subject * 1e6;
        state.counters["floor_us"] = floor * 1e6;
        state.counters["ratio"] = subject / floor;
        state.counters["difference_us"] = (subject - floor) * 1e6;
    }

private:
    template <class F>
    static double time(F& f) {
        const auto begin = std::chrono::steady_clock::now();
        f();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    }
    static double median(std::vector<double> times) {
        std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2),
                         times.end());
        return times[times.size() / 2];
    }
    std::vector<double> m_subject, m_floor;
};
