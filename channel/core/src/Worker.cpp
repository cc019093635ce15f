// SPDX-License-Identifier: MIT
#include "Worker.h"

#include "program/Process.h"

#include <system_error>

void Worker::post(Job job) {
    if (!start()) return job(); // a system without threads to spare makes the caller wait
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_jobs.size() < MOST; });
    m_jobs.push_back(std::move(job));
    m_changed.notify_all();
}

void Worker::finish() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_jobs.empty(); });
}

/// With all signals blocked, so that they interrupt the sleep of the thread that waits for them.
bool Worker::start() {
    if (m_thread.joinable()) return true;
    const program::WithoutSignals without;
    try {
        m_thread = std::jthread([this](const std::stop_token& stop) { run(stop); });
    } catch (const std::system_error&) {
    }
    return m_thread.joinable();
}

void Worker::run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    while (m_changed.wait(lock, stop, [this] { return !m_jobs.empty(); })) {
        const Job& job = m_jobs.front(); // stays where it is: those who post add behind it
        lock.unlock();
        job();
        lock.lock();
        m_jobs.pop_front();
        m_changed.notify_all();
    }
}
