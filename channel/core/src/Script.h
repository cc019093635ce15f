// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// One command of a script: what an operator does at a moment.
struct ScriptCommand {
    enum class Kind {
        click,      ///< presses the mouse on the button or field that shows `text`
        key,        ///< presses `keys`
        type,       ///< types `text`
        drag,       ///< moves the mouse with a button held, from the middle of the picture
        wheel,      ///< rolls it over the middle of the picture
        screenshot, ///< keeps the picture
        quit        ///< ends the channel in order
    };
    Kind kind = Kind::quit;
    double at = 0;         ///< s
    double duration = 0.1; ///< s that mouse button or keys are held; a drag's takes as long
    std::string text;      ///< on the button; to type; name of the picture
    std::vector<int> keys; ///< `ig::KeyCode`s in the order in which they go down
    float x = 0, y = 0;    ///< way of a drag, pixels to the right and downwards
    int button = 0;        ///< of a drag: 0 left, 1 right
    int notches = 0;       ///< of the wheel, positive when rolled up
    int line = 0;          ///< in the file, from 1

    bool usesMouse() const {
        return kind == Kind::click || kind == Kind::drag || kind == Kind::wheel;
    }
};

/// Timed operator commands, as docs/operator.md describes their file.
struct Script {
    std::string path; ///< for messages
    /// Times count from the channel's start instead of from the first record that it applies.
    bool from_start = false;
    std::vector<ScriptCommand> commands; ///< in the order of their times
};

/// Reads a script. False, with `message`, at its first fault: "path:line:column: what is wrong".
bool readScript(const std::string& path, Script& script, std::string& message);

/// The same from text; `path` is only for messages.
bool parseScript(const std::string& content, const std::string& path, Script& script,
                 std::string& message);
