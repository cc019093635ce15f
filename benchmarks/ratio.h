// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <vector>

inline double median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

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
    std::vector<double> m_subject, m_floor;
};

/// Times something that has a goal of its own, such as a share of the frame, in the processor's
/// time, so that what else runs on the machine doesn't count. Reports median, the highest of a
/// hundred, and the goal.
class CpuTimes {
public:
    template <class F>
    void measure(F f) {
        const double begin = now();
        f();
        m_times.push_back(now() - begin);
    }
    double getMedian() const { return median(m_times); }
    void report(benchmark::State& state, double goal_us) {
        state.counters["median_us"] = median(m_times) * 1e6;
        std::sort(m_times.begin(), m_times.end());
        state.counters["p99_us"] = m_times[m_times.size() * 99 / 100] * 1e6;
        state.counters["goal_us"] = goal_us;
    }

private:
    static double now() {
        timespec t;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
    }
    std::vector<double> m_times;
};
