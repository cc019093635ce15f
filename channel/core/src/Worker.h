// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// Does work beside the frames, on one thread of its own, in the order in which it was posted. Jobs
/// may neither throw nor log: what they have to tell waits for the thread that posted them. Signals
/// go to the other threads.
class Worker {
public:
    using Job = std::function<void()>;
    static constexpr std::size_t MOST = 4; ///< jobs under way; each may hold a whole picture

    Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    /// Whatever was posted is done before the object is gone.
    ~Worker() = default;

    /// Waits while `MOST` are under way: nothing is left out.
    void post(Job job);
    /// Waits until everything that was posted is done.
    void finish();

private:
    bool start();
    void run(const std::stop_token& stop);

    std::mutex m_mutex; ///< of the jobs
    std::condition_variable_any m_changed;
    std::deque<Job> m_jobs; ///< the first is being done
    std::jthread m_thread;  ///< ends first, with everything done; begins with the first job
};
