// SPDX-License-Identifier: MIT
#include "ig/package/Item.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>

namespace ig {

namespace {

// YAML writes what is no finite number as .inf, -.inf and .nan; the standard library's own
// spellings
// ("inf", "nan") are plain words here.
template <class T>
bool parseSpecial(std::string_view text, T& value) {
    if (text == ".inf" || text == "+.inf")
        value = std::numeric_limits<T>::infinity();
    else if (text == "-.inf")
        value = -std::numeric_limits<T>::infinity();
    else if (text == ".nan")
        value = std::numeric_limits<T>::quiet_NaN();
    else
        return false;
    return true;
}

template <class T>
bool parseNumber(std::string_view text, T& value) {
    if constexpr (std::is_floating_point_v<T>)
        if (parseSpecial(text, value)) return true;
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
    if (digits.empty() || std::string_view("0123456789.").find(digits[0]) == std::string_view::npos)
        return false;
    const char* end = text.data() + text.size();
    T parsed{};
    const auto result = std::from_chars(text.data(), end, parsed);
    if (result.ec != std::errc() || result.ptr != end) return false;
    value = parsed;
    return true;
}

bool equalIgnoringCase(std::string_view text, std::string_view lower) {
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [text](std::string_view word) { return equalIgnoringCase(text, word); });
}

} // namespace

Item::Item() = default;
Item::Item(Item&&) noexcept = default;
Item::~Item() = default;

Item::Item(const Item& other)
    : m_name(other.m_name), m_text(other.m_text), m_elements(other.m_elements),
      m_package(other.m_package ? std::make_unique<Package>(*other.m_package) : nullptr),
      m_path(other.m_path), m_kind(other.m_kind), m_line(other.m_line) {}

Item& Item::operator=(Item other) noexcept {
    std::swap(m_name, other.m_name);
    std::swap(m_text, other.m_text);
    std::swap(m_elements, other.m_elements);
    std::swap(m_package, other.m_package);
    std::swap(m_path, other.m_path);
    m_kind = other.m_kind;
    m_line = other.m_line;
    m_warned = other.m_warned;
    return *this;
}

int Item::getInt() const {
    int value = 0;
    return readNumber(value, "Item::getInt") ? value : 0;
}

float Item::getFloat() const {
    float value = 0;
    return readNumber(value, "Item::getFloat") ? value : 0;
}

double Item::getDouble() const {
    double value = 0;
    return readNumber(value, "Item::getDouble") ? value : 0;
}

bool Item::getBool() const {
    if (m_kind == Kind::value) {
        if (isOneOf(m_text, {"true", "yes", "on", "1"})) return true;
        if (isOneOf(m_text, {"", "false", "no", "off", "0"})) return false;
    }
    warn("Item::getBool", "true or false");
    return false;
}

int Item::getFloats(float* values, int n) const {
    return readNumbers(values, n, "Item::getFloats");
}

int Item::getDoubles(double* values, int n) const {
    return readNumbers(values, n, "Item::getDoubles");
}

jVector<jString> Item::getStrings() const {
    jVector<jString> texts;
    if (m_kind == Kind::value && !m_text.empty()) texts.append(m_text);
    for (const Item& element : m_elements)
        texts.append(element.m_text);
    return texts;
}

jVector<const Package*> Item::getPackages() const {
    jVector<const Package*> packages;
    if (m_package) packages.append(m_package.get());
    for (const Item& element : m_elements)
        if (element.m_package) packages.append(element.m_package.get());
    return packages;
}

template <class T>
bool Item::readNumber(T& value, const char* operation) const {
    if (m_kind == Kind::value) {
        if (m_text.empty()) return false;
        if (parseNumber(m_text.view(), value)) return true;
    }
    warn(operation,
         std::is_integral_v<T> ? "a whole number within range" : "a number within range");
    return false;
}

template <class T>
int Item::readNumbers(T* values, int n, const char* operation) const {
    int count = 0;
    flattenNumbers(values, n, count, operation);
    std::fill(values + count, values + std::max(n, count), T(0));
    return count;
}

// False ends the reading: the room in `values` is used up, or an element is not a number.
template <class T>
bool Item::flattenNumbers(T* values, int n, int& count, const char* operation) const {
    if (count >= n) return false;
    if (m_kind == Kind::list) {
        for (const Item& element : m_elements)
            if (!element.flattenNumbers(values, n, count, operation)) return false;
        return true;
    }
    T value{};
    if (!readNumber(value, operation)) return false;
    values[count++] = value;
    return true;
}

void Item::warn(const char* operation, const char* expected) const {
    if (std::exchange(m_warned, true)) return;
    const jString subject = m_name.empty() ? jString() : m_name + ": ";
    const jString found = m_kind == Kind::value  ? "\"" + m_text + "\""
                          : m_kind == Kind::list ? "a list"
                                                 : "a group";
    jLog::warning("%s: %s:%d: %s%.80s is not %s", operation, m_path ? m_path->c_str() : "(no file)",
                  m_line, subject.c_str(), found.c_str(), expected);
}

void Item::becomeValue(jString text) {
    m_elements.destroy();
    m_package.reset();
    m_kind = Kind::value;
    m_text = std::move(text);
    m_warned = false;
}

void Item::becomeList() {
    becomeValue({});
    m_kind = Kind::list;
}

Package& Item::becomePackage() {
    becomeValue({});
    m_kind = Kind::package;
    m_package = std::make_unique<Package>();
    m_package->m_name = m_name;
    m_package->m_path = m_path;
    m_package->m_line = m_line;
    return *m_package;
}

bool operator==(const Item& a, const Item& b) {
    if (a.m_kind != b.m_kind || a.m_name != b.m_name || a.m_text != b.m_text) return false;
    if (a.m_package && !(*a.m_package == *b.m_package)) return false;
    return std::equal(a.m_elements.begin(), a.m_elements.end(), b.m_elements.begin(),
                      b.m_elements.end());
}

} // namespace ig
