// SPDX-License-Identifier: MIT
#include "ig/package/Package.h"

#include "ig/base/jLog.h"
#include "ig/base/nearest.h"

#include <algorithm>
#include <utility>

namespace ig {

namespace {

const jString& emptyText() {
    static const jString NONE;
    return NONE;
}

/// What an item of that key answers; nothing without one.
template <class T>
T read(const Package& package, const jString& key, T (Item::*get)() const) {
    const Item* item = package.getItem(key);
    return item ? (item->*get)() : T();
}

} // namespace

Package& Package::operator=(Package other) noexcept {
    std::swap(m_name, other.m_name);
    std::swap(m_items, other.m_items);
    std::swap(m_path, other.m_path);
    m_line = other.m_line;
    m_has_warned = other.m_has_warned;
    return *this;
}

void Package::release() { *this = Package(); }

const jString& Package::getPath() const { return m_path ? *m_path : emptyText(); }

const Item* Package::getItem(const jString& key, bool warn) const {
    for (const Item& item : m_items)
        if (item.m_name == key) return &item;
    if (warn)
        jLog::warning("Package::getItem: %s:%d: no key \"%s\"",
                      m_path ? m_path->c_str() : "(no file)", m_line, key.c_str());
    return nullptr;
}

Item* Package::getItem(const jString& key, bool warn) {
    return const_cast<Item*>(std::as_const(*this).getItem(key, warn));
}

void Package::warnUnknownKeys(const char* user, const std::vector<std::string>& known) const {
    if (std::exchange(m_has_warned, true)) return;
    for (const Item& item : m_items)
        if (std::find(known.begin(), known.end(), item.m_name.view()) == known.end())
            jLog::warning("%s: %s:%d: unknown key \"%s\"%s", user, getPath().c_str(), item.m_line,
                          item.m_name.c_str(), nearest(item.m_name.view(), known).c_str());
}

const jString& Package::getString(const jString& key) const {
    const Item* item = getItem(key);
    return item ? item->getString() : emptyText();
}

int Package::getInt(const jString& key) const { return read(*this, key, &Item::getInt); }
float Package::getFloat(const jString& key) const { return read(*this, key, &Item::getFloat); }
double Package::getDouble(const jString& key) const { return read(*this, key, &Item::getDouble); }
bool Package::getBool(const jString& key) const { return read(*this, key, &Item::getBool); }

int Package::getFloats(const jString& key, float* values, int n) const {
    if (const Item* item = getItem(key)) return item->getFloats(values, n);
    std::fill_n(values, n, 0.0f);
    return 0;
}

const Package* Package::getPackage(const jString& key) const {
    const Item* item = getItem(key);
    return item ? item->getPackage() : nullptr;
}

Package* Package::getPackage(const jString& key) {
    Item* item = getItem(key);
    return item ? item->getPackage() : nullptr;
}

jVector<const Package*> Package::getPackages(const jString& key) const {
    return read(*this, key, &Item::getPackages);
}

jVector<const Package*> Package::getPackages(const jString& key, const char* user) const {
    const Item* list = getItem(key);
    const auto report = [&](const Item& item) {
        jLog::error("%s: %s:%d: a map is needed in the list \"%s\"", user, getPath().c_str(),
                    item.m_line, key.c_str());
    };
    if (list && list->m_kind == Item::Kind::list) {
        for (const Item& element : list->m_elements)
            if (!element.m_package) report(element);
        return list->getPackages();
    }
    if (list && (list->m_package || !list->m_text.empty())) report(*list);
    return {};
}

void Package::setString(const jString& key, const jString& value) {
    jString text = value; // `value` may lie inside the item that is replaced
    Item* item = getItem(key);
    if (!item) {
        item = &m_items.append(Item());
        item->m_name = key;
        item->m_path = m_path;
    }
    item->becomeValue(std::move(text));
}

void Package::setInt(const jString& key, int value) { setString(key, ToString(value)); }

bool operator==(const Package& a, const Package& b) {
    return std::equal(a.m_items.begin(), a.m_items.end(), b.m_items.begin(), b.m_items.end());
}

} // namespace ig
