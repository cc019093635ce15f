// SPDX-License-Identifier: MIT
#include "Screenshots.h"

#include "ig/app/Renderer.h"
#include "ig/base/jLog.h"
#include "program/OutputFile.h"
#include "render/image/Png.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <new>

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
    report();
    if (m_path.empty() || m_interval <= 0 || time < m_next) return;
    m_next = time + m_interval;
    keep(renderer, nextPath(), Kind::series);
}

void Screenshots::takeNew(ig::Renderer& renderer) {
    std::string path = nextPath();
    std::error_code unknown; // writing will say what is wrong with the folder
    while (isUnderWay(path) || std::filesystem::exists(path, unknown))
        path = nextPath();
    keep(renderer, path, Kind::numbered);
}

bool Screenshots::isUnderWay(const std::string& path) const {
    return std::ranges::any_of(m_shots, [&path](const auto& shot) { return shot->path == path; });
}

std::string Screenshots::nextPath() {
    char number[16];
    std::snprintf(number, sizeof number, "_%04d", ++m_number);
    std::string path = m_path.empty() ? m_folder + "picture.png" : m_path;
    const std::size_t dot = path.rfind('.');
    path.insert(dot == std::string::npos ? path.size() : dot, number);
    return path;
}

void Screenshots::take(ig::Renderer& renderer, const std::string& name) {
    keep(renderer, nameBeside(name), Kind::named);
}

std::string Screenshots::nameBeside(const std::string& name) const {
    const std::string folder =
        m_path.empty() ? m_folder : m_path.substr(0, m_path.rfind('/') + 1); // no slash: none
    return folder + name + ".png";
}

/// Reads the last frame back; the file and its place on the sheet are made beside the next ones.
void Screenshots::keep(ig::Renderer& renderer, const std::string& path, Kind kind) {
    auto shot = std::make_unique<Shot>();
    shot->kind = kind;
    shot->path = path;
    if (!renderer.readPicture(shot->picture))
        return fail(kind, "no picture for \"" + path + "\": nothing is drawn");
    m_worker.post([this, &taken = *shot] { write(taken); });
    m_shots.push_back(std::move(shot));
}

/// On the worker's thread.
void Screenshots::write(Shot& shot) {
    try {
        ig::writePng(shot.path, shot.picture, shot.message);
        if (shot.kind != Kind::last && !m_sheet_path.empty()) m_sheet.add(shot.picture);
    } catch (const std::bad_alloc&) {
        shot.message = "out of memory";
    }
    shot.done = true;
}

/// What has come of the pictures that are done.
void Screenshots::report() {
    for (; !m_shots.empty() && m_shots.front()->done; m_shots.pop_front()) {
        const Shot& shot = *m_shots.front();
        if (!shot.message.empty())
            fail(shot.kind, shot.message);
        else if (shot.kind == Kind::numbered)
            m_written.push_back(shot.path);
    }
}

/// Of the pictures every so many seconds the first: those that were on the way are not told.
void Screenshots::fail(Kind kind, const std::string& message) {
    m_failed = true;
    if (kind == Kind::series && m_interval <= 0) return;
    jLog::error("Screenshots: %s", message.c_str());
    if (kind != Kind::series) return;
    m_interval = 0;
    jLog::message("Screenshots: no further pictures of --screenshot-every are tried");
}

void Screenshots::finish() {
    m_worker.finish();
    report();
}

void Screenshots::afterLast(ig::Renderer& renderer) {
    if (!m_path.empty()) keep(renderer, m_path, Kind::last);
    finish();
    if (!m_sheet_path.empty()) writeSheet();
}

void Screenshots::writeSheet() {
    std::string message;
    if (m_sheet.isEmpty())
        message = "no \"" + m_sheet_path + "\": no picture was taken for it";
    else
        ig::writePng(m_sheet_path, m_sheet.compose(), message);
    if (!message.empty()) fail(Kind::last, message);
}
