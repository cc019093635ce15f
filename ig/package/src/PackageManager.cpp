// SPDX-License-Identifier: MIT
#include "ig/package/PackageManager.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "readPackage.h"

#include <memory>
#include <unordered_map>

namespace ig {

namespace {
/// By path; null for a file that could not be read.
using Cache = std::unordered_map<jString, std::unique_ptr<const Package>>;

Cache& cache() {
    static Cache packages;
    return packages;
}

int g_read = 0;
} // namespace

const Package* PackageManager::get(const jString& path, const char* user) {
    const auto [entry, added] = cache().try_emplace(path);
    if (!added) return entry->second.get();
    g_read++;
    auto package = std::make_unique<Package>();
    const ReadResult result = readPackage(path, *package);
    if (result == ReadResult::ok) entry->second = std::move(package);
    if (result == ReadResult::missing && user)
        jLog::error("%s: cannot open \"%s\"", user, path.c_str());
    return entry->second.get();
}

int PackageManager::getNumRead() { return g_read; }

void PackageManager::release() { cache().clear(); }

} // namespace ig
