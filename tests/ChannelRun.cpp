// SPDX-License-Identifier: MIT
#include "ChannelRun.h"

#include <chrono>
#include <cstdio>
#include <fstream>

ChannelRun::ChannelRun() {
    std::filesystem::create_symlink(std::filesystem::current_path() / "data",
                                    folder.path() / "data");
    std::filesystem::create_directory(folder.path() / "config");
    for (const char* texts : {"config/texts.zh.yaml", "config/texts.en.yaml"})
        std::filesystem::create_symlink(std::filesystem::current_path() / texts,
                                        folder.path() / texts);
    folder.write("config/Logic_Nerith_Heli_Final.cfg",
                 "recv_from_flightSimulation_port: " + std::to_string(receive_port) +
                     "\nsend_to_flightSimulation_port: " + std::to_string(peer.port()) + "\n");
}

bool ChannelRun::start(const std::string& options) {
    // Drawing would take the processor from what is measured: only who asks gets pictures.
    const bool pictures = options.find("--headless") != std::string::npos;
    program = std::make_unique<Program>(CHANNEL, "--directory '" + folder.path().string() +
                                                     "' --trace trace.csv " +
                                                     (pictures ? "" : "--null ") + options);
    return !program->waitFor("飞仿IP").empty();
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
        if (std::sscanf(line.c_str(), "%d,%lf,%lf,%d,%lf,%lf,%lf,%lf,%lf,%lf", &f.number, &f.time,
                        &f.begin, &f.records, &f.longitude, &f.latitude, &f.altitude, &f.heading,
                        &f.pitch, &f.roll) == 10)
            frames.push_back(f);
    }
    return frames;
}

double steadyNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
