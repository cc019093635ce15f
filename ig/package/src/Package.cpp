// SPDX-License-Identifier: MIT
#include "ig/package/Package.h"

#include "ig/base/jLog.h"
#include "ig/base/nearest.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ig {

namespace {

const jString& emptyText() {
    static const jString text;
    return text;
}

template <class T>
jString numberText(T value) {
    if (std::isnan(value)) return ".nan";
    if (std::isinf(value)) return value > 0 ? ".inf" : "-.inf";
    return ToString(value);
}

} // namespace

Package& Package::operator=(Package other) noexcept {
    std::swap(m_name, other.m_name);
    std::swap(m_items, other.m_items);
    std::swap(m_path, other.m_path);
    m_line = other.m_line;
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
    for (const Item& item : m_items)
        if (std::find(known.begin(), known.end(), item.m_name.view()) == known.end())
            jLog::warning("%s: %s:%d: unknown key \"%s\"%s", user, getPath().c_str(), item.m_line,
                          item.m_name.c_str(), nearest(item.m_name.view(), known).c_str());
}

const jString& Package::getString(const jString& key) const {
    const Item* item = getItem(key);
    return item ? item->getString() : emptyText();
}

int Package::getInt(const jString& key) const {
    const Item* item = getItem(key);
    return item ? item->getInt() : 0;
}

float Package::getFloat(const jString& key) const {
    const Item* item = getItem(key);
    return item ? item->getFloat() : 0;
}

double Package::getDouble(const jString& key) const {
    const Item* item = getItem(key);
    return item ? item->getDouble() : 0;
}

bool Package::getBool(const jString& key) const {
    const Item* item = getItem(key);
    return item && item->getBool();
}

int Package::getFloats(const jString& key, float* values, int n) const {
    if (const Item* item = getItem(key)) return item->getFloats(values, n);
    std::fill_n(values, n, 0.0f);
    return 0;
}

int Package::getDoubles(const jString& key, double* values, int n) const {
    if (const Item* item = getItem(key)) return item->getDoubles(values, n);
    std::fill_n(values, n, 0.0);
    return 0;
}

jVector<jString> Package::getStrings(const jString& key) const {
    const Item* item = getItem(key);
    return item ? item->getStrings() : jVector<jString>();
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
    const Item* item = getItem(key);
    return item ? item->getPackages() : jVector<const Package*>();
}

void Package::setString(const jString& key, const jString& value) {
    jString text = value; // `value` may lie inside the item that is replaced
    itemToSet(key).becomeValue(std::move(text));
}

void Package::setInt(const jString& key, int value) { setString(key, ToString(value)); }
void Package::setFloat(const jString& key, float value) { setString(key, numberText(value)); }
void Package::setDouble(const jString& key, double value) { setString(key, numberText(value)); }
void Package::setBool(const jString& key, bool value) { setString(key, value ? "true" : "false"); }

void Package::setFloats(const jString& key, const float* values, int n) {
    Item& item = itemToSet(key);
    item.becomeList();
    for (int i = 0; i < n; i++)
        item.appendElement().becomeValue(numberText(values[i]));
}

void Package::setStrings(const jString& key, const jVector<jString>& values) {
    Item& item = itemToSet(key);
    item.becomeList();
    for (const jString& value : values)
        item.appendElement().becomeValue(value);
}

Package* Package::addPackage(const jString& key) { return &itemToSet(key).becomePackage(); }

Package* Package::appendPackage(const jString& key) {
    Item& item = itemToSet(key);
    if (item.m_kind != Item::Kind::list) item.becomeList();
    return &item.appendElement().becomePackage();
}

bool Package::removeItem(const jString& key) {
    for (int i = 0; i < m_items.size(); i++) {
        if (m_items[i].m_name != key) continue;
        m_items.remove(i);
        return true;
    }
    return false;
}

Item& Package::itemToSet(const jString& key) {
    if (Item* item = getItem(key)) return *item;
    Item item;
    item.m_name = key;
    item.m_path = m_path;
    return m_items.append(std::move(item));
}

bool operator==(const Package& a, const Package& b) {
    return std::equal(a.m_items.begin(), a.m_items.end(), b.m_items.begin(), b.m_items.end());
}

} // namespace ig
