// SPDX-License-Identifier: MIT
#pragma once

namespace program {

/// While it lives, nothing that the process prints on standard output gets out: for what a library
/// says that wasn't asked for. Standard error is left alone.
class MutedOutput {
public:
    MutedOutput();
    ~MutedOutput();
    MutedOutput(const MutedOutput&) = delete;
    MutedOutput& operator=(const MutedOutput&) = delete;

private:
    int m_kept = -1; ///< the real one; negative when it could not be kept, and nothing is muted
};

} // namespace program
