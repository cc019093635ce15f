// SPDX-License-Identifier: MIT
#include "Settings.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"

#include <filesystem>

using namespace ig;

bool readSettings(const std::string& path, std::vector<Setting>& settings) {
    Package package;
    if (!mjl::open(path, &package)) { // which says what is malformed, but not what is missing
        if (std::error_code error; !std::filesystem::exists(path, error))
            jLog::error("visual_channel: there is no settings file \"%s\"", path.c_str());
        return false;
    }
    for (int i = 0; i < package.getItemCount(); i++) {
        const Item& item = package.getItemAt(i);
        Setting setting{item.getName().c_str(), {}, path + ':' + std::to_string(item.getLine())};
        if (item.getKind() == Item::Kind::package) {
            jLog::error("visual_channel: %s: \"%s\" takes a value, not further keys",
                        setting.place.c_str(), setting.key.c_str());
            return false;
        }
        for (const jString& value : item.getStrings())
            if (item.getKind() == Item::Kind::list || !value.empty())
                setting.values.push_back(value.c_str());
        settings.push_back(std::move(setting));
    }
    return true;
}
