// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/WireField.h"

#include <type_traits>
#include <utility>

/// How the tables are held against the packed structs: a row that says another offset, type or size
/// than its member has doesn't compile, nor does a table with a gap.

template <class T>
consteval WireField::Type wireTypeOf() {
    using Type = WireField::Type;
    if (std::is_same_v<T, std::uint16_t>) return Type::U16;
    if (std::is_same_v<T, std::int16_t>) return Type::I16;
    if (std::is_same_v<T, std::uint32_t>) return Type::U32;
    if (std::is_same_v<T, std::int32_t>) return Type::I32;
    if (std::is_same_v<T, float>) return Type::F32;
    if (std::is_same_v<T, double>) return Type::F64;
    return Type::BYTES;
}

/// The row with its size filled in, `T` and `offset` being the member's.
template <class T>
consteval WireField checkedRow(std::size_t offset, WireField row) {
    if (row.offset != offset) throw "the member has another offset than its row says";
    if (row.type != wireTypeOf<T>()) throw "the member has another type than its row says";
    if (row.type == WireField::Type::BYTES && row.use != WireField::Use::RESERVED)
        throw "bytes without a type can't mean anything";
    row.size = sizeof(T);
    return row;
}

/// A row for a member of a packed struct: its name in the table, then the rest of the row.
#define WIRE_ROW(STRUCT, MEMBER, NAME, ...)                                                        \
    checkedRow<decltype(std::declval<STRUCT&>().MEMBER)>(offsetof(STRUCT, MEMBER),                 \
                                                         {.name = NAME, __VA_ARGS__})

/// Whether the rows follow each other without gap or overlap, from the first byte to the last.
template <std::size_t N>
consteval bool coversAll(const WireField (&rows)[N], std::size_t size) {
    std::size_t end = 0;
    for (const WireField& row : rows) {
        if (row.offset != end) return false;
        end += row.size;
    }
    return end == size;
}
