// SPDX-License-Identifier: MIT
#include "channel/interface/Texts.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"

#include <cstdio>
#include <map>
#include <set>

using namespace ig;

namespace {

struct Table {
    explicit Table(const std::string& language) : path("config/texts." + language + ".yaml") {
        loaded = mjl::open(path, &texts);
        if (!loaded)
            jLog::error("Texts::load: can't read \"%s\": the picture shows the names of its texts",
                        path.c_str());
    }
    jString path;
    Package texts;
    bool loaded = false;
    std::set<std::string> missed; ///< keys that were logged
};

std::string g_language = "zh";

Table& tableOf(const std::string& language) {
    static std::map<std::string, Table> tables;
    return tables.try_emplace(language, language).first->second;
}

} // namespace

bool Texts::load(const std::string& language) {
    g_language = language;
    return tableOf(language).loaded;
}

const std::string& Texts::getLanguage() { return g_language; }

const char* Texts::get(const char* key) { return get(key, g_language); }

const char* Texts::get(const char* key, const std::string& language) {
    Table& table = tableOf(language);
    if (const Item* item = table.texts.getItem(key)) return item->getString().c_str();
    if (table.loaded && table.missed.insert(key).second)
        jLog::error("Texts::get: \"%s\" has no text \"%s\"", table.path.c_str(), key);
    return key;
}

const char* Texts::choose(const Package& line, const char* key, const std::string& language) {
    const Package* texts = line.getPackage(key);
    if (!texts) return line.getString(key).c_str();
    const char* const other = language == "zh" ? "en" : "zh";
    return texts->getString(texts->getString(language).empty() ? other : language).c_str();
}

std::string Texts::fill(const char* key, std::initializer_list<std::string> values) {
    return fillIn(get(key), values);
}

std::string Texts::fillIn(std::string text, const std::vector<std::string>& values) {
    int number = 0;
    for (const std::string& value : values) {
        const std::string place = '{' + std::to_string(++number) + '}';
        if (const auto at = text.find(place); at != std::string::npos)
            text.replace(at, place.size(), value);
    }
    return text;
}

std::string Texts::decimal(double value, int places) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", places, value);
    return text;
}
