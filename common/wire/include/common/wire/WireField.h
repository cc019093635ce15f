// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The table of the two datagrams: what lies where, and what it means. The tables of `recordFields`
/// and `feedbackFields` are the only place that says so of a field. The packed structs are held
/// against them when they are compiled, whoever reads or writes a field by its name does it through
/// them, and what tells others of the datagrams is made from them (common/wire_files). Both live as
/// long as the program.

/// A value that has a name of its own, as 6 is a reset.
struct WireCode {
    std::int64_t value;
    std::string_view name; ///< one word, lower case
};

struct WireRange {
    double low = -std::numeric_limits<double>::infinity();
    double high = std::numeric_limits<double>::infinity();

    constexpr bool has(double value) const { return value >= low && value <= high; } // no NaN
    /// Not the whole line.
    constexpr bool isBounded() const { return *this != WireRange{}; }
    constexpr bool operator==(const WireRange&) const = default;
};

/// One entry of a datagram: a field, or a range of bytes that hold nothing. The entries of a
/// datagram follow each other without gaps and account for every byte.
struct WireField {
    enum class Type { U16, I16, U32, I32, F32, F64, BYTES };
    enum class Use {
        SHOWN,     ///< of the record: the logic shows it itself
        ANNOUNCED, ///< of the record: the logic hands it on, and the application shows it
        NOT_SHOWN, ///< of the record: handed on, but nothing comes of it
        TOLD,      ///< of the feedback: the channel fills it
        RESERVED,  ///< holds nothing
    };

    std::string_view name; ///< unique within its datagram
    std::size_t offset = 0;
    Type type = Type::BYTES;
    std::size_t size = 0; ///< bytes
    Use use = Use::RESERVED;
    bool is_code = false;       ///< values with nothing in between; the others are quantities
    std::string_view unit = {}; ///< "deg", "m", ...; empty where there is none
    /// Values that mean something. What comes of others `meaning` says.
    WireRange range = {};
    /// A whole record with a value beyond this, or with one that is not finite, is warned of;
    /// bounded where that is looked at.
    WireRange plausible = {};
    /// What a host puts in that has nothing to say of it; nothing where it has to say something.
    std::optional<double> unused = 0;
    std::string_view sense = {};          ///< which way is positive, where from
    std::string_view zero = {};           ///< what 0 does
    std::string_view meaning = {};        ///< in a sentence without its full stop
    std::span<const WireCode> codes = {}; ///< in ascending order

    std::string_view getTypeName() const; ///< "uint16", "float32", "bytes", ...
    bool isInteger() const;
    /// The type's own limits; 0 for bytes.
    double getLeast() const;
    double getGreatest() const;
    /// The name of a value among `codes`; empty when it has none.
    std::string_view getCodeName(double value) const;

    /// The field's value in the datagram's bytes; nothing for bytes without a meaning, or when the
    /// datagram ends before the field does.
    std::optional<double> read(std::span<const std::uint8_t> datagram) const;
    /// The value as text that `parse` reads back to the same bits, bytes as pairs of hexadecimal
    /// digits; empty when the datagram ends before.
    std::string getText(std::span<const std::uint8_t> datagram) const;
    /// Whether the type can hold the value as it is, but for the rounding of a float32.
    bool holds(double value) const;
    /// The number in a text, or the value of a code's name; nothing when it is neither, or not a
    /// value that the field holds.
    std::optional<double> parse(std::string_view text) const;
    /// False, with nothing written, when the field can't hold the value or the datagram ends
    /// before.
    bool write(std::span<std::uint8_t> datagram, double value) const;
};

/// Of the host data record, `UdpRecvData`, in the order of their offsets.
std::span<const WireField> recordFields();
/// Of the feedback datagram, `UdpSendData`, likewise; a wheel's are named "wheel_front_h" and so
/// on.
std::span<const WireField> feedbackFields();
/// The field of that name; null when there is none.
const WireField* findField(std::span<const WireField> fields, std::string_view name);

/// The bytes of one of the two structs, for `WireField::read` and `write`; good while it lives.
template <class T>
std::span<std::uint8_t> bytesOf(T& datagram) {
    return {reinterpret_cast<std::uint8_t*>(&datagram), sizeof datagram};
}
