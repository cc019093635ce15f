// SPDX-License-Identifier: MIT
#pragma once

#include "ig/package/Item.h"

#include <string>
#include <vector>

namespace ig {

/// A tree of named values: configuration, string table, worlds, prefabs, tracks and materials are
/// packages. `mjl` reads one from a file and writes it to one; `PackageManager` keeps those that
/// are read often. Keys are any text (spaces, paths, any script), unique in their package, and keep
/// the order of the file.
///
/// The typed getters answer 0, false or empty for a key that is missing, and convert as `Item`
/// does. Pointers and references to items hold until their package changes; pointers to nested
/// packages hold as long as the nested package's entry. Copies are deep.
class Package {
public:
    Package() = default;
    Package(const Package&) = default;
    Package(Package&&) noexcept = default;
    Package& operator=(Package other) noexcept; // by value: the source may lie inside this package
    /// Empties the package and forgets the file it came from.
    void release();

    /// The key under which this package stands in its parent; empty at the top and in a list.
    const jString& getName() const { return m_name; }
    /// The file that the package was read from, for messages; empty when there is none.
    const jString& getPath() const;
    /// Line in that file where the package begins, from 1; 0 when there is none.
    int getLine() const { return m_line; }

    bool empty() const { return m_items.empty(); }
    int getItemCount() const { return m_items.size(); }
    /// Item `i` in [0, getItemCount()), in the order of the file.
    const Item& getItemAt(int i) const { return m_items[i]; }
    /// The item of that key or null; with `warn`, a missing one is logged.
    const Item* getItem(const jString& key, bool warn = false) const;
    Item* getItem(const jString& key, bool warn = false);

    /// One warning, on behalf of `user`, for every key that is not `known` and that therefore
    /// nothing reads: with file, line and the known key that it is most like. Only the first time:
    /// the scene reads a package as often as it makes something of it.
    void warnUnknownKeys(const char* user, const std::vector<std::string>& known) const;

    const jString& getString(const jString& key) const;
    int getInt(const jString& key) const;
    float getFloat(const jString& key) const;
    double getDouble(const jString& key) const;
    bool getBool(const jString& key) const;
    /// See `Item::getFloats`; a missing key reads nothing and sets all `n` to 0.
    int getFloats(const jString& key, float* values, int n) const;
    /// The nested package of that key; null when missing or of another kind.
    const Package* getPackage(const jString& key) const;
    Package* getPackage(const jString& key);
    /// The packages in the list of that key.
    jVector<const Package*> getPackages(const jString& key) const;
    /// The same for a list of nothing else: whatever else stands there, or in its place, is
    /// reported with its line, on behalf of `user`, and left out.
    jVector<const Package*> getPackages(const jString& key, const char* user) const;

    /// The setters replace what the key held, in its place, or add the key at the end.
    void setString(const jString& key, const jString& value);
    void setInt(const jString& key, int value);

    friend bool operator==(const Package& a, const Package& b);

private:
    friend class Item;
    friend class PackageBuilder;

    jString m_name;
    jVector<Item> m_items;
    std::shared_ptr<const jString> m_path;
    int m_line = 0;
    mutable bool m_has_warned = false; ///< of unknown keys
};

} // namespace ig
