// SPDX-License-Identifier: MIT
#include "common/wire/WireField.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

using Type = WireField::Type;

/// Calls `act` with a value of the field's type; 0 for bytes.
template <class Act>
auto withType(Type type, Act act) -> decltype(act(0.0)) {
    switch (type) {
    case Type::U16:
        return act(std::uint16_t{});
    case Type::I16:
        return act(std::int16_t{});
    case Type::U32:
        return act(std::uint32_t{});
    case Type::I32:
        return act(std::int32_t{});
    case Type::F32:
        return act(float{});
    case Type::F64:
        return act(double{});
    case Type::BYTES:
        break;
    }
    return {};
}

std::string hexadecimal(std::span<const std::uint8_t> bytes) {
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes)
        text += {DIGITS[byte >> 4], DIGITS[byte & 15]};
    return text;
}

} // namespace

std::string_view WireField::getTypeName() const {
    static constexpr std::array<std::string_view, 7> NAMES = {
        "uint16", "int16", "uint32", "int32", "float32", "float64", "bytes"};
    return NAMES[static_cast<std::size_t>(type)];
}

bool WireField::isInteger() const {
    return type == Type::U16 || type == Type::I16 || type == Type::U32 || type == Type::I32;
}

double WireField::getLeast() const {
    return withType(type,
                    [](auto v) { return double(std::numeric_limits<decltype(v)>::lowest()); });
}

double WireField::getGreatest() const {
    return withType(type, [](auto v) { return double(std::numeric_limits<decltype(v)>::max()); });
}

std::string_view WireField::getCodeName(double value) const {
    const auto found = std::ranges::find_if(
        codes, [&](const WireCode& code) { return static_cast<double>(code.value) == value; });
    return found == codes.end() ? std::string_view() : found->name;
}

std::optional<double> WireField::read(std::span<const std::uint8_t> datagram) const {
    if (type == Type::BYTES || datagram.size() < offset + size) return {};
    return withType(type, [&](auto v) {
        std::memcpy(&v, datagram.data() + offset, sizeof v);
        return double(v);
    });
}

std::string WireField::getText(std::span<const std::uint8_t> datagram) const {
    if (datagram.size() < offset + size) return {};
    if (type == Type::BYTES) return hexadecimal(datagram.subspan(offset, size));
    return withType(type, [&](auto v) {
        std::memcpy(&v, datagram.data() + offset, sizeof v);
        char text[32];
        return std::string(text, std::to_chars(std::begin(text), std::end(text), v).ptr);
    });
}

bool WireField::holds(double value) const {
    if (type == Type::BYTES) return false;
    if (isInteger() && value != std::round(value)) return false;
    if (!isInteger() && !std::isfinite(value)) return true;
    return value >= getLeast() && value <= getGreatest();
}

std::optional<double> WireField::parse(std::string_view text) const {
    const auto named = std::ranges::find(codes, text, &WireCode::name);
    if (named != codes.end()) return static_cast<double>(named->value);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !holds(value)) return {};
    return value;
}

bool WireField::write(std::span<std::uint8_t> datagram, double value) const {
    if (!holds(value) || datagram.size() < offset + size) return false;
    return withType(type, [&](auto v) {
        v = static_cast<decltype(v)>(value);
        std::memcpy(datagram.data() + offset, &v, sizeof v);
        return true;
    });
}

const WireField* findField(std::span<const WireField> fields, std::string_view name) {
    const auto found = std::ranges::find(fields, name, &WireField::name);
    return found == fields.end() ? nullptr : &*found;
}
