// SPDX-License-Identifier: MIT
#include "Worker.h"

#include "program/Process.h"

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

bool Worker::start() {
    return program::beginThread(m_thread, [this](const std::stop_token& stop) { run(stop); });
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
