// SPDX-License-Identifier: MIT
#include "manual/Manual.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace manual {

void addOptions(CLI::App& app, const Page& page) {
    const auto print = [](const std::string& text) {
        if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
            throw CLI::FileError(std::string("cannot print to the end: ") + std::strerror(errno));
        throw CLI::Success();
    };
    app.add_flag_callback(
           "--print-manual", [&app, page, print] { print(makePage(app, page)); },
           "Print the manual page")
        ->group("");
    app.add_option_function<std::string>(
           "--print-completion",
           [&app, print](const std::string& shell) {
               print(shell == "bash"  ? makeBashCompletion(app)
                     : shell == "zsh" ? makeZshCompletion(app)
                                      : makeFishCompletion(app));
           },
           "Print a shell's completion script")
        ->check(CLI::IsMember({"bash", "zsh", "fish"}))
        ->group("");
}

} // namespace manual
