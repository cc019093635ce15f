// SPDX-License-Identifier: MIT

// The list of the names that the logic looks up, by which worlds are checked, against the code.

#include "ig/package/Package.h"
#include "ig/package/mjl.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

namespace {

using namespace ig;

std::string readFile(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

const char* const LIST = "config/Logic_Nerith_Heli_Final.world.yaml";

TEST(Lookup, EveryNameInTheCodeStandsInTheListThatWorldsAreCheckedBy) {
    const std::string list = readFile(LIST);
    const std::regex lookup("get(?:Node|Child)ByName\\(\"([^\"]+)\"");
    int found = 0;
    for (const char* room : {"heli/logic/src", "heli/kit/src", "common/ship/src"})
        for (const auto& entry : std::filesystem::directory_iterator(room)) {
            const std::string code = readFile(entry.path());
            for (std::sregex_iterator hit(code.begin(), code.end(), lookup), end; hit != end;
                 ++hit, found++) {
                const std::regex named("\\b" + (*hit)[1].str() + "\\b");
                EXPECT_TRUE(std::regex_search(list, named)) << (*hit)[1] << " of " << entry.path();
            }
        }
    EXPECT_GT(found, 40);
}

TEST(Lookup, EveryNameOfTheWorldIsInTheDocumentation) {
    Package file;
    ASSERT_TRUE(mjl::open(LIST, &file));
    const std::string page = readFile("docs/worlds.md");
    const std::size_t begin = page.find("## What the logic looks up");
    ASSERT_NE(begin, std::string::npos);
    const std::string part = page.substr(begin, page.find("\n## ", begin + 1) - begin);
    for (const Package* row : file.getPackages("world"))
        EXPECT_NE(part.find('`' + std::string(row->getString("name").c_str()) + '`'),
                  std::string::npos)
            << row->getString("name").c_str();
}

} // namespace
