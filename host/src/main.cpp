// SPDX-License-Identifier: MIT
#include "Channel.h"
#include "Options.h"

#include <csignal>

int main(int argc, char** argv) {
    Options options;
    int exit_status = 0;
    if (!parseOptions(argc, argv, options, exit_status)) return exit_status;
    // The loop looks at the flag once per frame and ends in order.
    std::signal(SIGINT, [](int) { Channel::requestStop(); });
    std::signal(SIGTERM, [](int) { Channel::requestStop(); });
    Channel channel(options);
    if (!channel.open()) return 1;
    channel.run();
    return channel.getExitStatus();
}
