// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace CLI {
class App;
}

/// Manual page and shell completion of a program, made from the very table by which it reads its
/// command line: what a user is told is what the program takes.
namespace manual {

/// What the table doesn't say.
struct Page {
    std::string summary; ///< half a line, as lists of manual pages show it
    std::string version; ///< of the program
    std::string see;     ///< another program's manual page, as NAME(1)
};

/// Adds two options that help doesn't show, for the build: `--print-manual` prints the page,
/// `--print-completion bash|zsh|fish` that shell's script, and both end the parsing with success.
/// They tell all of `app`, also what is added later; options and subcommands of its hidden groups
/// are left out.
void addOptions(CLI::App& app, const Page& page);

/// In the language of man(7).
std::string makePage(const CLI::App& app, const Page& page);

std::string makeBashCompletion(const CLI::App& app);
std::string makeZshCompletion(const CLI::App& app);
std::string makeFishCompletion(const CLI::App& app);

} // namespace manual
