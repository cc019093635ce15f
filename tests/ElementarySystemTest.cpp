// SPDX-License-Identifier: MIT

// The process must not reckon with the C library's elementary functions, whose bits depend on the
// processor: ig/math has its own for every caller.

#include "ChannelRun.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace {

/// What has one right answer, whatever the processor: roundings, roots, rests, parts of a number.
const std::set<std::string> EXACT = {
    "ceil",  "fabs",      "floor",  "fmax",       "fmaxf",      "fmin",   "fminf",
    "fmod",  "fmodf",     "frexp",  "ldexp",      "llround",    "lround", "modf",
    "round", "remainder", "roundf", "remainderf", "lroundf",    "rintf",  "sqrt",
    "sqrtf", "trunc",     "rint",   "nextafter",  "nextafterf", "remquo"};

TEST(Elementary, NoCallOfTheSceneGoesToTheCLibrary) {
    ChannelRun run;
    const std::string bindings = (run.folder.path() / "bindings").string();
    // The loader tells, of every library that comes, where each of its calls goes.
    ASSERT_EQ(Program("/usr/bin/env", "LD_BIND_NOW=1 LD_DEBUG=bindings LD_DEBUG_OUTPUT='" +
                                          bindings +
                                          "' " CHANNEL " --null --frames 2 "
                                          "--directory '" +
                                          run.folder.path().string() + "'")
                  .finish(),
              0);
    const std::regex call("binding file (\\S+) .* to \\S*/libm\\.so\\S* .*symbol `(\\w+)'.*");
    const std::regex of_the_scene(".*/"
                                  "(visual_channel|libig|Logic_\\w+|Plugin-\\w+|lib(Bullet\\w+|"
                                  "LinearMath|assimp|gdal|proj)\\b.*)(\\.so.*)?");
    std::set<std::string> callers, wrong;
    for (const auto& entry : std::filesystem::directory_iterator(run.folder.path())) {
        if (!entry.path().string().starts_with(bindings)) continue;
        std::ifstream file(entry.path());
        std::smatch parts;
        for (std::string line; std::getline(file, line);) {
            if (line.find("libm.so") == std::string::npos ||
                !std::regex_search(line, parts, call) ||
                !std::regex_match(parts[1].first, parts[1].second, of_the_scene))
                continue;
            callers.insert(parts[1]);
            if (!EXACT.contains(parts[2])) wrong.insert(parts[1].str() + ": " + parts[2].str());
        }
    }
    EXPECT_GE(callers.size(), 7u); // they all take roots from it
    EXPECT_EQ(wrong, std::set<std::string>{});
}

} // namespace
