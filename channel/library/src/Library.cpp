// SPDX-License-Identifier: MIT
#include "channel/library/Library.h"

#include "ig/base/jLog.h"
#include "program/DataFolder.h"

#include <dlfcn.h>
#include <filesystem>

bool Library::load(const std::string& path) {
    m_path = path.find('/') == std::string::npos ? program::findOwnLibrary(path) : path;
    m_handle = dlopen(m_path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle) ig::jLog::error("Library::load: %s", dlerror());
    return m_handle != nullptr;
}

void Library::unload() {
    if (m_handle) dlclose(m_handle);
    m_handle = nullptr;
}

std::string Library::getName() const { return std::filesystem::path(m_path).stem(); }

void* Library::find(const char* name) const {
    void* symbol = m_handle ? dlsym(m_handle, name) : nullptr;
    if (!symbol) ig::jLog::error("Library::find: %s doesn't export %s", m_path.c_str(), name);
    return symbol;
}
