// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// One key of the settings file, config/visual_channel.cfg: what an option would say on the command
/// line.
struct Setting {
    std::string key;                 ///< the option's name without its dashes
    std::vector<std::string> values; ///< empty: the option's default holds
    std::string place;               ///< path:line, for messages
};

/// Reads a settings file, `key: value` or `key: [value, value]` in YAML. False, after one logged
/// error, when it can't be read or isn't that.
bool readSettings(const std::string& path, std::vector<Setting>& settings);
