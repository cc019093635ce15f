// SPDX-License-Identifier: MIT
#include "ChannelRun.h"

#include "testkit/ChannelFolder.h"

#include <cstdio>
#include <fstream>

ChannelRun::ChannelRun() {
    fillChannelFolder(folder, std::filesystem::current_path(), receive_port, peer.port());
}

bool ChannelRun::start(const std::string& options) {
    // Drawing would take the processor from what is measured, and what is drawn once before the
    // first frame time: only whoever asks gets them.
    const auto asks = [&options](const char* name) {
        return options.find(name) != std::string::npos;
    };
    program = std::make_unique<Program>(
        CHANNEL, "--directory '" + folder.path().string() + "' --trace trace.csv " +
                     (asks("--headless") ? "" : "--null ") +
                     (asks("--warm-up") ? "" : "--warm-up off ") + options);
    std::string line;
    do {
        line = program->line();
        beginning += line;
    } while (!line.empty() && line.find("飞仿IP") == std::string::npos);
    if (line.empty()) return false;
    waitForHandlers();
    return true;
}

/// Before its first frame a signal would end the program at once.
void ChannelRun::waitForHandlers() const {
    while (!program->hasEnded()) {
        std::ifstream status("/proc/" + std::to_string(program->id()) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("SigCgt:") &&
                (std::stoull(line.substr(8), nullptr, 16) >> (SIGTERM - 1) & 1) != 0)
                return;
        }
    }
}

int ChannelRun::stop() {
    program->signal(SIGTERM);
    return program->finish(&output);
}

std::vector<ChannelRun::Frame> ChannelRun::readTrace() const {
    std::vector<Frame> frames;
    std::ifstream file(folder.path() / "trace.csv");
    std::string line;
    std::getline(file, line); // the heading
    while (std::getline(file, line)) {
        Frame f{};
        if (std::sscanf(line.c_str(), "%d,%lf,%lf,%d,%lf,%lf,%lf,%lf,%lf,%lf,%lf,%d,%lf", &f.number,
                        &f.time, &f.begin, &f.records, &f.longitude, &f.latitude, &f.altitude,
                        &f.heading, &f.pitch, &f.roll, &f.shown, &f.late, &f.age) >= 12)
            frames.push_back(f);
    }
    return frames;
}

long countOf(const std::string& text, const std::string& part) {
    long count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at++)
        count++;
    return count;
}
