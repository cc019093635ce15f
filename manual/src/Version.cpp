// SPDX-License-Identifier: MIT
#include "manual/Version.h"

#include "Commit.h"

namespace manual {

std::string getVersion() {
    const std::string commit = COMMIT;
    return commit.empty() ? VERSION : VERSION " (commit " + commit + ')';
}

} // namespace manual
