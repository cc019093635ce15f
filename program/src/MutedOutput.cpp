// SPDX-License-Identifier: MIT
#include "program/MutedOutput.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace program {

MutedOutput::MutedOutput() {
    std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    m_kept = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    if (m_kept >= 0) dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

MutedOutput::~MutedOutput() {
    std::fflush(stdout);
    if (m_kept < 0) return;
    dup2(m_kept, STDOUT_FILENO);
    close(m_kept);
}

} // namespace program
