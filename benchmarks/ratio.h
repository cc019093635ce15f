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

/// Seconds that `f` takes once.
template <class F>
double measureSeconds(const F& f) {
    const auto begin = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Times two things in turn, so that both see the same machine, and reports the median of each and
/// their ratio as counters of a benchmark.
class PairedTimes {
public:
    /// Each call does its thing so many times; reported is the time of one.
    explicit PairedTimes(int batch = 1) : m_batch(batch) {}

    /// `subject` and `floor` do their thing once per call.
    template <class Subject, class Floor>
    void measure(const Subject& subject, const Floor& floor) {
        m_subject.push_back(measureSeconds(subject) / m_batch);
        m_floor.push_back(measureSeconds(floor) / m_batch);
    }
    double getSubject() const { return median(m_subject); } ///< s
    double getFloor() const { return median(m_floor); }
    double getWorst() const { return *std::max_element(m_subject.begin(), m_subject.end()); }
    void report(benchmark::State& state) const {
        const double subject = getSubject(), floor = getFloor();
        state.counters["subject_us"] = subject * 1e6;
        state.counters["floor_us"] = floor * 1e6;
        state.counters["ratio"] = subject / floor;
        state.counters["difference_us"] = (subject - floor) * 1e6;
    }

private:
    int m_batch;
    std::vector<double> m_subject, m_floor;
};

/// Times something that has a goal of its own, such as a share of the frame, in the processor's
/// time, so that what else runs on the machine doesn't count. Reports median, the highest of a
/// hundred, and the goal.
class CpuTimes {
public:
    /// This thread's time, or the whole process's with CLOCK_PROCESS_CPUTIME_ID.
    explicit CpuTimes(clockid_t clock = CLOCK_THREAD_CPUTIME_ID) : m_clock(clock) {}

    template <class F>
    void measure(const F& f) {
        const double begin = now();
        f();
        m_times.push_back(now() - begin);
    }
    double getMedian() const { return median(m_times); } ///< s
    void report(benchmark::State& state, double goal_us) const {
        std::vector<double> times = m_times;
        std::sort(times.begin(), times.end());
        state.counters["median_us"] = times[times.size() / 2] * 1e6;
        state.counters["p99_us"] = times[times.size() * 99 / 100] * 1e6;
        state.counters["goal_us"] = goal_us;
    }

private:
    double now() const {
        timespec t;
        clock_gettime(m_clock, &t);
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
    }
    clockid_t m_clock;
    std::vector<double> m_times;
};
