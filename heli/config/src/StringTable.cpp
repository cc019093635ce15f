// SPDX-License-Identifier: MIT
#include "heli/config/StringTable.h"

#include "ig/app/MsgBox.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"

using namespace ig;

namespace {
const char* const TABLE_PATH = "config/string.txt";
Package g_table;
bool g_loaded = false;

/// Keeps the key that was not found until the next miss.
const jString& miss(const char* key) {
    static jString missing;
    missing = key;
    return missing;
}
} // namespace

bool load_string_table() { return mjl::open(TABLE_PATH, &g_table, false); }

const jString& tr(const char* key) {
    if (!g_loaded) g_loaded = load_string_table();
    if (!g_loaded) {
        jLog::error("%s:string file not found:%s", "tr", TABLE_PATH);
        return miss(key);
    }
    const Item* item = g_table.getItem(key, false);
    if (!item) {
        jLog::error("%s:key[%s] not found in string file", "tr", key);
        return miss(key);
    }
    return item->getString();
}

const jString& tr(const jString& key) { return tr(key.c_str()); }

bool show_message(const jString& title, const jString& text, const IApp* app, bool cancel) {
    MsgBox box(app, title, text);
    box.getOkButton()->setText(tr("OK"));
    box.getCancelButton()->setText(tr("Cancel"));
    box.hideCancelButton(!cancel);
    box.center();
    return box.modality();
}
