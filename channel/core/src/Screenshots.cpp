// SPDX-License-Identifier: MIT
#include "Screenshots.h"

#include "ig/app/Renderer.h"
#include "ig/base/jLog.h"
#include "program/OutputFile.h"
#include "render/image/Png.h"

#include <cstdio>
#include <filesystem>

using ig::jLog;

namespace {
/// A path that isn't asked for is good.
bool checkPath(const char* option, const std::string& path) {
    using program::OutputFile;
    if (path.empty()) return true;
    const std::string why = OutputFile::whyNot(path, OutputFile::Kind::whole);
    if (!why.empty()) jLog::error("%s: cannot write \"%s\": %s", option, path.c_str(), why.c_str());
    return why.empty();
}
} // namespace

bool Screenshots::check(bool named) const {
    return checkPath("--screenshot", m_path) && checkPath("--contact-sheet", m_sheet_path) &&
           (!named || checkPath("--script", nameBeside("picture")));
}

void Screenshots::afterFrame(ig::Renderer& renderer, double time) {
    if (m_path.empty() || m_interval <= 0 || time < m_next) return;
    m_next = time + m_interval;
    if (keep(renderer, nextPath())) return;
    m_interval = 0;
    jLog::message("Screenshots: no further pictures of --screenshot-every are tried");
}

std::string Screenshots::takeNew(ig::Renderer& renderer) {
    std::string path = nextPath();
    std::error_code unknown; // writing will say what is wrong with the folder
    while (std::filesystem::exists(path, unknown))
        path = nextPath();
    return keep(renderer, path) ? path : "";
}

std::string Screenshots::nextPath() {
    char number[16];
    std::snprintf(number, sizeof number, "_%04d", ++m_number);
    std::string path = m_path.empty() ? "picture.png" : m_path;
    const std::size_t dot = path.rfind('.');
    path.insert(dot == std::string::npos ? path.size() : dot, number);
    return path;
}

void Screenshots::take(ig::Renderer& renderer, const std::string& name) {
    keep(renderer, nameBeside(name));
}

std::string Screenshots::nameBeside(const std::string& name) const {
    return m_path.substr(0, m_path.rfind('/') + 1) + name + ".png"; // without a slash: the whole
}

/// The last frame into the file, and onto the sheet.
bool Screenshots::keep(ig::Renderer& renderer, const std::string& path, bool on_sheet) {
    ig::Picture picture;
    const bool drawn = renderer.readPicture(picture);
    if (!drawn) jLog::error("Screenshots: no picture for \"%s\": nothing is drawn", path.c_str());
    const bool saved = drawn && ig::writePng(path, picture);
    m_failed = m_failed || !saved;
    if (on_sheet && !m_sheet_path.empty()) m_sheet.add(picture);
    return saved;
}

void Screenshots::afterLast(ig::Renderer& renderer) {
    if (!m_path.empty()) keep(renderer, m_path, false);
    if (m_sheet_path.empty()) return;
    if (m_sheet.isEmpty())
        jLog::error("Screenshots: no \"%s\": no picture was taken for it", m_sheet_path.c_str());
    if (m_sheet.isEmpty() || !ig::writePng(m_sheet_path, m_sheet.compose())) m_failed = true;
}
