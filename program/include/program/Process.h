// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <functional>
#include <string>
#include <thread>

/// What a program arranges with the system, in the order of use.
namespace program {

/// First of all: standard streams that were closed before the start lead to /dev/null from now on.
/// The next files and sockets would get their numbers, and what is printed would go there.
void fillStandardStreams();

/// What can't be written, to a pipe without reader or beyond the size that files may have, fails
/// where it is written, and is reported there, instead of ending the program with a signal.
void letWritesFail();

/// From now on the first SIGINT, SIGTERM or SIGHUP calls `stop`, which is to let the program end in
/// order and may do only what a signal handler may. A second SIGINT or SIGTERM ends the program at
/// once; within half a second of the first it doesn't count, because a supervisor, or a terminal
/// and a shell, often send the same request twice. Until this is called signals end the program.
void onStopSignal(void (*stop)());

/// While it lives, threads that are begun get no signals: those go to the others, and to whoever
/// waits for them.
class WithoutSignals {
public:
    WithoutSignals();
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;
    ~WithoutSignals();

private:
    sigset_t m_before;
};

/// Begins a thread that gets no signals, unless it has begun. False when the system has none to
/// spare: its work is then the caller's.
bool beginThread(std::jthread& thread, std::function<void(const std::stop_token&)> run);

/// Whether a line that is printed there now gets on its way at once: not while a terminal is
/// stopped or a pipe is full. For what is not worth waiting for.
bool takesOutput(int descriptor);

/// At the end of what has its result on the standard output. False with `message` when it didn't
/// get there; a reader that has seen enough is no failure.
bool endOutput(std::string& message);

} // namespace program
