// SPDX-License-Identifier: MIT
#include "channel/Program.h"

#include "Channel.h"
#include "Options.h"
#include "WallProgram.h"
#include "ig/base/jLog.h"
#include "program/Process.h"

#include <new>

int runChannel(int argc, char** argv) {
    program::fillStandardStreams();
    program::letWritesFail();
    Options options;
    int exit_status = 0;
    if (!parseOptions(argc, argv, options, exit_status)) return exit_status;
    try {
        if (options.command)
            return options.command({options.directory, options.pictures,
                                    options.logic.empty() ? DEFAULT_LOGIC : options.logic,
                                    options.plugins});
        if (!options.display.empty()) return runDisplay(argc, argv, options);
        Channel channel(options);
        if (options.print_device) return channel.printDevice() ? 0 : 1;
        if (options.print_schema) return channel.printSchema() ? 0 : 1;
        if (!channel.open()) return 1;
        program::onStopSignal(Channel::requestStop); // so far a signal has ended it at once
        channel.run();
        return channel.getExitStatus();
    } catch (const std::bad_alloc&) {
        ig::jLog::error("visual_channel: out of memory");
        return 1;
    }
}
