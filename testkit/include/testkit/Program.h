// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// A program, started with a shell's command line; both outputs come back together.
class Program {
public:
    Program(const std::string& path, const std::string& arguments) {
        int pipe_ends[2];
        if (pipe(pipe_ends) != 0) throw std::runtime_error("Program: no pipe");
        m_id = fork();
        if (m_id == 0) {
            dup2(pipe_ends[1], STDOUT_FILENO);
            dup2(pipe_ends[1], STDERR_FILENO);
            close(pipe_ends[0]);
            close(pipe_ends[1]); // or what it leaves running would keep the outputs open
            const std::string line = "exec '" + path + "' " + arguments;
            execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
            _exit(127);
        }
        close(pipe_ends[1]);
        m_output = fdopen(pipe_ends[0], "r");
    }
    ~Program() {
        if (m_id > 0) {
            kill(m_id, SIGKILL);
            finish();
        }
        std::fclose(m_output);
    }
    Program(const Program&) = delete;

    pid_t id() const { return m_id; }
    /// The next line that it prints; empty at the end.
    std::string line() {
        char text[4096];
        return std::fgets(text, sizeof text, m_output) ? text : "";
    }
    /// Reads lines until one holds `text`; that line, or empty when the program ended before.
    std::string waitFor(const std::string& text) {
        std::string line_text;
        while (!(line_text = line()).empty())
            if (line_text.find(text) != std::string::npos) break;
        return line_text;
    }
    void signal(int number) const { kill(m_id, number); }
    bool hasEnded() const {
        siginfo_t info{};
        return waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               info.si_pid == m_id;
    }
    /// Waits for the end; the exit status, or −1 when it crashed. `rest`: what else it printed.
    int finish(std::string* rest = nullptr) {
        for (std::string text; !(text = line()).empty();)
            if (rest) *rest += text;
        int status = -1;
        wait4(m_id, &status, 0, &m_usage);
        m_id = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// After `finish`: what it took of the processor, s; and of memory at most, MB.
    double cpuSeconds() const {
        const auto seconds = [](const timeval& t) {
            return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
        };
        return seconds(m_usage.ru_utime) + seconds(m_usage.ru_stime);
    }
    double megabytes() const { return static_cast<double>(m_usage.ru_maxrss) / 1024; }

private:
    rusage m_usage{};
    pid_t m_id = -1;
    std::FILE* m_output = nullptr;
};
