// SPDX-License-Identifier: MIT
#include "readList.h"

#include "ig/base/jLog.h"

namespace ig {

jVector<const Package*> readList(const Package& package, const char* key, const char* reader) {
    jVector<const Package*> maps;
    const Item* list = package.getItem(key);
    if (!list) return maps;
    const auto report = [&](int line) {
        jLog::error("%s: %s:%d: a map is needed in the list \"%s\"", reader,
                    package.getPath().c_str(), line, key);
    };
    if (list->getKind() != Item::Kind::list) {
        if (list->getKind() == Item::Kind::package || !list->getString().empty())
            report(list->getLine());
        return maps;
    }
    for (int i = 0; i < list->getCount(); i++) {
        if (const Package* map = list->getElement(i).getPackage())
            maps.append(map);
        else
            report(list->getElement(i).getLine());
    }
    return maps;
}

} // namespace ig
