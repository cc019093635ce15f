// SPDX-License-Identifier: MIT
#include "channel/interface/Texts.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>

namespace {

using namespace ig;

/// Key by key of a language, the places that the program fills in.
std::map<std::string, std::set<std::string>> placesOf(const char* language) {
    Package texts;
    EXPECT_TRUE(mjl::open(std::string("config/texts.") + language + ".yaml", &texts));
    std::map<std::string, std::set<std::string>> places;
    for (int i = 0; i < texts.getItemCount(); i++) {
        const Item& item = texts.getItemAt(i);
        const std::string text = item.getString().c_str();
        EXPECT_FALSE(text.empty()) << item.getName().c_str();
        auto& found = places[item.getName().c_str()];
        static const std::regex PLACE("\\{[^}]*\\}");
        for (std::sregex_iterator at(text.begin(), text.end(), PLACE), end; at != end; ++at)
            found.insert(at->str());
    }
    return places;
}

/// Every literal of the application's sources that reads as a key: "word.word", no file's name.
std::set<std::string> usedKeys() {
    static const std::regex KEY("\"([a-z]+\\.[a-z_]+)\"");
    static const std::regex FILE_NAME(".*\\.(png|yaml|cfg|csv|txt|so|h)");
    std::set<std::string> keys;
    for (const char* folder : {"channel/core/src", "channel/interface/src"})
        for (const auto& file : std::filesystem::directory_iterator(folder)) {
            std::ifstream stream(file.path());
            for (std::string line; std::getline(stream, line);)
                for (std::sregex_iterator at(line.begin(), line.end(), KEY), end; at != end; ++at)
                    if (!std::regex_match(at->str(1), FILE_NAME)) keys.insert(at->str(1));
        }
    return keys;
}

TEST(Texts, BothLanguagesSayAllThatTheProgramSays) {
    const auto chinese = placesOf("zh");
    EXPECT_EQ(chinese, placesOf("en"));
    std::set<std::string> keys;
    for (const auto& [key, places] : chinese)
        keys.insert(key);
    EXPECT_EQ(keys, usedKeys());
}

TEST(Texts, ComeInTheChosenLanguageAndAsTheirKeyWhereThereIsNone) {
    WorkingFolder folder; // languages of its own, which stay known to the process
    folder.write("config/texts.aa.yaml", "a.swapped: '{2} of {1}'\na.plain: one\n");
    folder.write("config/texts.bb.yaml", "a.plain: two\n");
    LogCapture log;
    EXPECT_TRUE(Texts::load("aa"));
    EXPECT_STREQ(Texts::get("a.plain"), "one");
    EXPECT_STREQ(Texts::get("a.plain", "bb"), "two");
    EXPECT_EQ(Texts::fill("a.swapped", {"7", "x"}), "x of 7");
    EXPECT_TRUE(Texts::load("bb"));
    EXPECT_STREQ(Texts::get("a.plain"), "two");
    EXPECT_TRUE(log.lines.empty());
    EXPECT_EQ(Texts::fill("a.swapped", {"7"}), "a.swapped");
    EXPECT_STREQ(Texts::get("a.swapped"), "a.swapped");
    EXPECT_EQ(log.lines, (std::vector<std::string>{"Texts::get: \"config/texts.bb.yaml\" has no "
                                                   "text \"a.swapped\""}));
    log.lines.clear();
    EXPECT_FALSE(Texts::load("cc"));
    EXPECT_STREQ(Texts::get("a.plain"), "a.plain");
    EXPECT_EQ(log.lines.size(), 1u);
}

} // namespace
