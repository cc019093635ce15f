// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

/// What the user asks for by an option; what leaves everything as it is by default is no wish.
struct Wish {
    std::string value;
    std::string place; ///< path:line in the settings file; empty: on the command line
};
/// By the option's name without dashes. A renderer that draws nothing goes by the name of "null",
/// whichever way it was asked for.
using Wishes = std::map<std::string, Wish>;

/// Looks for wishes that contradict each other or do nothing together. What the command line says
/// displaces settings of the file, which are taken out, with a log line each. False, with an error
/// that tells the reason, when wishes of the same place don't fit. Files are relative to the
/// folder.
bool settleWishes(Wishes& wishes, const std::string& folder);

/// Whether an option is about what is shown, written or told, and not about the scene: a log keeps
/// only the others, and a replay has only these of its own.
bool isOfDisplay(const std::string& name);
