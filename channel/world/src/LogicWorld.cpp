// SPDX-License-Identifier: MIT
#include "LogicWorld.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"

#include <filesystem>

using namespace ig;

namespace world_commands {

namespace {

const char* const READER = "LogicWorld::read";

std::vector<LogicWorld::Name> readNames(const Package& map, const jString& key) {
    std::vector<LogicWorld::Name> names;
    for (const Package* row : map.getPackages(key, READER)) {
        row->warnUnknownKeys(READER, {"name", "type", "needed", "for", "holds"});
        LogicWorld::Name name;
        name.name = row->getString("name").c_str();
        name.type = row->getString("type").c_str();
        name.needed = row->getItem("needed") && row->getBool("needed");
        if (const Item* holds = row->getItem("holds"))
            for (const jString& held : holds->getStrings())
                name.holds.emplace_back(held.c_str());
        names.push_back(std::move(name));
    }
    return names;
}

} // namespace

std::string LogicWorld::findFile(const std::string& logic_name) {
    return "config/" + logic_name + ".world.yaml";
}

bool LogicWorld::read(const std::string& logic_name) {
    const std::string path = findFile(logic_name);
    Package file;
    if (!mjl::open(path, &file)) { // which says what is malformed, but not what is missing
        if (std::error_code error; !std::filesystem::exists(path, error))
            jLog::error("%s: there is no \"%s\", which tells what worlds the logic asks for",
                        READER, path.c_str());
        return false;
    }
    file.warnUnknownKeys(READER, {"template", "world", "prefabs"});
    template_folder = file.getString("template").c_str();
    names = readNames(file, "world");
    if (const Package* map = file.getPackage("prefabs"))
        for (int i = 0; i < map->getItemCount(); i++) {
            const jString& prefab = map->getItemAt(i).getName();
            prefabs.push_back({prefab.c_str(), readNames(*map, prefab)});
        }
    return true;
}

} // namespace world_commands
