// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

namespace ig {
class IApp;
}

/// Reads "config/string.txt", a map from text to translation, into the table of the process. False
/// when it can't be read.
bool load_string_table();

/// The translation of a user-interface text. The table is loaded on first use. A missing file or
/// key is logged and answered with the key itself, so that the user always sees something. The
/// reference holds until the next miss, or for good when the key was found.
const ig::jString& tr(const char* key);
const ig::jString& tr(const ig::jString& key);

/// Shows a message in the middle of the window, with translated buttons, and waits for the
/// operator's answer, which is whether it was accepted. Without `cancel` only OK is offered.
bool show_message(const ig::jString& title, const ig::jString& text, const ig::IApp* app,
                  bool cancel);
