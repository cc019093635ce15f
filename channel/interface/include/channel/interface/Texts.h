// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace ig {
class Package;
} // namespace ig

/// What the application itself says to the operator in the picture (boxes, overlays, statistics,
/// hints), in his language: flat `key: text` files, config/texts.zh.yaml and config/texts.en.yaml,
/// of which each is read at its first use. Log and console are not translated. Main thread only.
class Texts {
public:
    /// Chooses the language, "zh" or "en", of everything asked for from now on; "zh" until the
    /// first call. False, with one log line, when its file can't be read: keys are then shown.
    static bool load(const std::string& language);
    static const std::string& getLanguage();

    /// The text of that key in the chosen language; valid as long as the process. A key that the
    /// file doesn't have is logged once and answered with the key itself.
    static const char* get(const char* key);
    /// The same in a language of the caller's choice, for what is shown in both.
    static const char* get(const char* key, const std::string& language);
    /// The text under a key of the logic's file, which has one for all languages or one for each;
    /// better another's than none.
    static const char* choose(const ig::Package& line, const char* key,
                              const std::string& language);
    /// The text of that key with `{1}`, `{2}`, ... replaced by the values: the order of the words
    /// is the language's.
    static std::string fill(const char* key, std::initializer_list<std::string> values);
    /// The same for a text that is at hand.
    static std::string fillIn(std::string text, const std::vector<std::string>& values);
    /// A number to fill in.
    static std::string decimal(double value, int places);
};
