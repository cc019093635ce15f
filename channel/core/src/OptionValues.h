// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/nearest.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

/// Checks of the values of options, for the command line and the settings file alike. Their
/// messages say what is allowed and what was given.
namespace option_values {

template <class T>
bool read(const std::string& text, T& value) {
    return !text.empty() && CLI::detail::lexical_cast(text, value);
}

/// What a number may be.
struct Range {
    double least = 0;
    double greatest = std::numeric_limits<double>::infinity();
    bool whole = false;
    const char* name = ""; ///< of one value of several
    const char* word = ""; ///< that may stand in its place; empty: none
};

inline std::string describe(const Range& range) {
    char text[64];
    if (std::isinf(range.greatest))
        std::snprintf(text, sizeof text, "%.12g or more", range.least);
    else
        std::snprintf(text, sizeof text, "%.12g to %.12g", range.least, range.greatest);
    return std::string(text) + (*range.word ? " or " : "") + range.word;
}

inline CLI::Validator number(const Range& range) {
    return {[range](std::string& text) {
                double value = 0;
                int integer = 0;
                const bool reads = read(text, value) && (!range.whole || read(text, integer));
                if (reads && std::isfinite(value) && value >= range.least &&
                    value <= range.greatest)
                    return std::string();
                if (*range.word && text == range.word) return std::string();
                return std::string(range.name) + (*range.name ? " " : "") + "must be a " +
                       (range.whole ? "whole " : "") + "number, " + describe(range) + ", not \"" +
                       text + '"';
            },
            *range.name ? "" : describe(range)};
}
inline CLI::Validator number(double least, double greatest) { return number({least, greatest}); }
inline CLI::Validator whole(int least, int greatest) {
    return number({static_cast<double>(least), static_cast<double>(greatest), true});
}

/// One of these words.
inline CLI::Validator word(const std::vector<std::string>& words) {
    const std::string allowed = CLI::detail::join(words, ", ");
    return {[=](std::string& text) {
                if (std::find(words.begin(), words.end(), text) != words.end())
                    return std::string();
                return "must be one of " + allowed + ", not \"" + text + '"' +
                       ig::nearest(text, words);
            },
            CLI::detail::join(words, "|")};
}

/// Where `word` found it in its list.
inline int indexOf(const std::string& text, const std::vector<std::string>& words) {
    return static_cast<int>(std::find(words.begin(), words.end(), text) - words.begin());
}

} // namespace option_values
