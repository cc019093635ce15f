// SPDX-License-Identifier: MIT
#include "WallProgram.h"

#include "Channel.h"
#include "Options.h"
#include "WallReceiver.h"
#include "program/Process.h"

#include <filesystem>

int runDisplay(int argc, char** argv, const Options& options) {
    WallReceiver receiver;
    if (!receiver.open(options)) return 1;
    program::onStopSignal(Channel::requestStop);
    const std::filesystem::path folder = std::filesystem::current_path();
    while (receiver.begin(Channel::isStopRequested)) {
        std::filesystem::current_path(folder); // a run works in that of its options
        Options run_options;
        int exit_status = 0;
        if (!parseOptions(argc, argv, run_options, exit_status, &receiver.getHead()))
            return exit_status;
        Channel channel(run_options, &receiver);
        if (!channel.open()) return 1;
        channel.run();
        if (!channel.wantsRestart()) return channel.getExitStatus();
    }
    return Channel::isStopRequested() ? 0 : 1;
}
