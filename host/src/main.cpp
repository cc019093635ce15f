// SPDX-License-Identifier: MIT
#include "Channel.h"
#include "Options.h"

#include <csignal>

#ifdef __SANITIZE_ADDRESS__
// A software driver unloads itself and leaves some bytes behind, which no suppression can name any
// more. What is ours is counted by the memory tracker and the renderer's resource counters.
extern "C" int __lsan_is_turned_off() { return 1; }
#endif

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
