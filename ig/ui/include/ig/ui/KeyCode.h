// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

/// Key codes: printable keys are their character code (lower case), special keys start at 256.
enum KeyCode {
    KEY_SPACE = 32,
    KEY_ESCAPE = 256,
    KEY_TAB = 257,
    KEY_BACKSPACE = 258,
    KEY_RETURN = 259,
    KEY_DELETE = 261,
    KEY_HOME = 262,
    KEY_END = 263,
    KEY_LEFT = 266,
    KEY_RIGHT = 267,
    KEY_UP = 268,
    KEY_DOWN = 269,
    KEY_SHIFT = 270,
    KEY_CTRL = 271,
    KEY_ALT = 272,
    KEY_F1 = 277, ///< F2 to F12 follow
    KEY_F2 = 278,
    KEY_F3 = 279,
    KEY_F4 = 280,
    KEY_F5 = 281,
    KEY_F6 = 282,
    KEY_F7 = 283,
    KEY_F8 = 284,
    KEY_F9 = 285,
    KEY_F10 = 286,
    KEY_F11 = 287,
    KEY_F12 = 288,
    KEY_COUNT = 512,
};

} // namespace ig
