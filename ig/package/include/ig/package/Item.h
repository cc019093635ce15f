// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/base/jVector.h"

#include <memory>

namespace ig {

class Package;

/// One named entry of a `Package`: a value, a list of further items, or a nested package. A value
/// keeps the text that stands in the file and is converted when it is asked for.
///
/// Conversions answer 0, false or an empty result for what cannot be converted: the first such
/// question to an item logs one warning with path and line. An entry without text counts as absent
/// and is not warned about. A lone value or package counts as a list of one.
///
/// Items are owned by their package or list; copies are deep.
class Item {
public:
    enum class Kind { value, list, package };

    Item();
    Item(const Item& other);
    Item(Item&& other) noexcept;
    Item& operator=(Item other) noexcept; // by value: the source may lie inside this item
    ~Item();

    /// The key; empty for an element of a list.
    const jString& getName() const { return m_name; }
    Kind getKind() const { return m_kind; }
    /// Line of the key (of the element, in a list) in the file, from 1; 0 when it comes from none.
    int getLine() const { return m_line; }

    /// The text of a value; empty for a list or a package. Never warns.
    const jString& getString() const { return m_text; }
    /// A decimal whole number in the range of `int`.
    int getInt() const;
    /// Decimal numbers, with or without exponent; `.inf`, `-.inf` and `.nan` are numbers too.
    float getFloat() const;
    double getDouble() const;
    /// "true", "yes", "on" and "1" are true, "false", "no", "off" and "0" false, in any case of
    /// letters.
    bool getBool() const;

    /// Reads up to `n` numbers; lists inside the list are read as if their brackets were not there.
    /// Stops at the first element that is not a number. The rest of `values` is set to 0. Answers
    /// how many were read, so that anything but `n` tells that numbers are missing.
    int getFloats(float* values, int n) const;
    int getDoubles(double* values, int n) const;
    /// The texts of the elements, in order; lists and packages inside give empty texts.
    jVector<jString> getStrings() const;

    /// Elements of a list: a list of rows of numbers is read row by row,
    /// `item.getElement(i).getDoubles(row, n)`. A value or a package has none.
    int getCount() const { return m_elements.size(); }
    /// Element `i` in [0, getCount()).
    const Item& getElement(int i) const { return m_elements[i]; }
    Item& getElement(int i) { return m_elements[i]; }

    /// The nested package; null unless this is one.
    const Package* getPackage() const { return m_package.get(); }
    Package* getPackage() { return m_package.get(); }
    /// The packages of a list, in order; other elements are skipped.
    jVector<const Package*> getPackages() const;

    /// Equal names, kinds and texts all the way down; lines and paths don't count.
    friend bool operator==(const Item& a, const Item& b);

private:
    friend class Package;
    friend class PackageBuilder;

    void becomeValue(jString text);
    void becomeList();
    Package& becomePackage();
    void warn(const char* operation, const char* expected) const;
    template <class T>
    bool readNumber(T& value, const char* operation) const;
    template <class T>
    int readNumbers(T* values, int n, const char* operation) const;
    template <class T>
    bool flattenNumbers(T* values, int n, int& count, const char* operation) const;

    jString m_name;
    jString m_text;
    jVector<Item> m_elements;
    std::unique_ptr<Package> m_package;
    std::shared_ptr<const jString> m_path; ///< of the file; null when it comes from none
    Kind m_kind = Kind::value;
    int m_line = 0;
    mutable bool m_warned = false;
};

} // namespace ig
