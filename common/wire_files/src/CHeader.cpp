// SPDX-License-Identifier: MIT
#include "Texts.h"
#include "Writers.h"

namespace {

using Type = WireField::Type;
using Use = WireField::Use;

const char* const HEAD = R"(/* SPDX-License-Identifier: MIT
 *
 * The two datagrams between a flight simulation and the visual channel, for C99 and C++11. Made by
 * wire_files from the tables in common/wire: don't edit it, edit them. docs/connect.md tells more.
 *
 *   vc_record record;
 *   uint8_t bytes[VC_RECORD_SIZE];
 *   vc_record_init(&record);
 *   record.latitude = 19.72; ...
 *   vc_record_encode(&record, bytes);         then send all of them as one datagram
 *
 *   vc_feedback feedback;                     from one datagram received
 *   if (vc_feedback_decode(&feedback, bytes, size)) ... feedback.height_above_ground
 *
 * On the wire the fields are little-endian, lie without padding, and several of them unaligned.
 * The structs here are not that layout: they are ordinary ones, and every field is put into its
 * bytes, or taken from them, one byte at a time. So no compiler extension and no alignment is
 * needed, and it works on machines of either byte order. float and double must be IEEE 754.
 */
#ifndef VISUAL_CHANNEL_WIRE_H
#define VISUAL_CHANNEL_WIRE_H

#include <stdint.h>

)";

const char* const HELPERS =
    R"(/* Bytes. */

typedef char vc_check_float_is_32_bits[sizeof(float) == 4 ? 1 : -1];
typedef char vc_check_double_is_64_bits[sizeof(double) == 8 ? 1 : -1];

static inline void vc_put(uint8_t* to, uint64_t bits, int size) {
    int i;
    for (i = 0; i < size; i++)
        to[i] = (uint8_t)(bits >> (8 * i));
}

static inline uint64_t vc_get(const uint8_t* from, int size) {
    uint64_t bits = 0;
    int i;
    for (i = 0; i < size; i++)
        bits |= (uint64_t)from[i] << (8 * i);
    return bits;
}

/* Bytes of one object as those of another of the same size: no aliasing, no memcpy. */
static inline void vc_copy(void* to, const void* from, int size) {
    int i;
    for (i = 0; i < size; i++)
        ((unsigned char*)to)[i] = ((const unsigned char*)from)[i];
}

static inline void vc_put_float(uint8_t* to, float value) {
    uint32_t bits;
    vc_copy(&bits, &value, 4);
    vc_put(to, bits, 4);
}

static inline void vc_put_double(uint8_t* to, double value) {
    uint64_t bits;
    vc_copy(&bits, &value, 8);
    vc_put(to, bits, 8);
}

static inline float vc_get_float(const uint8_t* from) {
    uint32_t bits = (uint32_t)vc_get(from, 4);
    float value;
    vc_copy(&value, &bits, 4);
    return value;
}

static inline double vc_get_double(const uint8_t* from) {
    uint64_t bits = vc_get(from, 8);
    double value;
    vc_copy(&value, &bits, 8);
    return value;
}

)";

std::string cType(const WireField& field) {
    if (field.type == Type::F32) return "float";
    if (field.type == Type::F64) return "double";
    return std::string(field.getTypeName()) + "_t";
}

std::string offsetName(const std::string& prefix, const WireField& field) {
    return prefix + "_AT_" + upperCase(field.name);
}

/// An enumeration of sizes, offsets and the names of codes.
std::string constants(std::span<const WireField> fields, const std::string& prefix) {
    std::string text = "enum {\n    " + prefix + "_SIZE = " + std::to_string(sizeOf(fields)) +
                       ", /* bytes */\n\n    /* Where the fields begin, bytes. */\n";
    for (const WireField& field : fields)
        if (field.use != Use::RESERVED)
            text +=
                "    " + offsetName(prefix, field) + " = " + std::to_string(field.offset) + ",\n";
    std::string codes;
    for (const WireField& field : fields)
        for (const WireCode& code : field.codes)
            codes += "    VC_" + upperCase(field.name) + '_' + upperCase(code.name) + " = " +
                     std::to_string(code.value) + ",\n";
    if (!codes.empty()) text += "\n    /* Codes. */\n" + codes;
    text.erase(text.size() - 2, 1); // the last comma
    return text + "};\n\n";
}

std::string comment(const WireField& field) {
    std::string text = measureText(field);
    text += std::string(text.empty() ? "" : "; ") + "0: " + std::string(field.zero) + ". " +
            std::string(field.meaning) + '.';
    return "    /* " + wrapped(text, "     * ", 97).substr(7) + " */\n";
}

std::string structure(std::span<const WireField> fields, const std::string& name) {
    std::string text = "typedef struct " + name + " {\n";
    for (const WireField& field : fields)
        if (field.use != Use::RESERVED)
            text += comment(field) + "    " + cType(field) + ' ' + std::string(field.name) + ";\n";
    return text + "} " + name + ";\n\n";
}

std::string initialiser(std::span<const WireField> fields) {
    std::string text =
        "/* Fills a record with what a simulation sends that has nothing to say: calm, "
        "clear weather, a\n * light sea, rotors turning. The position is left for the "
        "caller, at 0. */\nstatic inline void vc_record_init(vc_record* record) {\n";
    for (const WireField& field : fields)
        if (field.use != Use::RESERVED)
            text += "    record->" + std::string(field.name) + " = " +
                    numberText(field.unused.value_or(0)) + ";\n";
    return text + "}\n\n";
}

std::string encoder(std::span<const WireField> fields) {
    std::string text = "/* Writes the record's bytes, the reserved ones as 0. */\n"
                       "static inline void vc_record_encode(const vc_record* record, "
                       "uint8_t bytes[VC_RECORD_SIZE]) {\n    int i;\n"
                       "    for (i = 0; i < VC_RECORD_SIZE; i++)\n        bytes[i] = 0;\n";
    for (const WireField& field : fields) {
        if (field.use == Use::RESERVED) continue;
        const std::string at = "(bytes + " + offsetName("VC_RECORD", field) + ", ";
        const std::string value = "record->" + std::string(field.name);
        if (field.isInteger())
            text += "    vc_put" + at + "(uint64_t)" + value + ", " + std::to_string(field.size);
        else
            text += "    vc_put_" + cType(field) + at + value;
        text += ");\n";
    }
    return text + "}\n\n";
}

std::string decoder(std::span<const WireField> fields) {
    std::string text =
        "/* Reads a datagram of `size` bytes. 0, with nothing written, when it is no feedback by "
        "its\n"
        " * size; else 1. */\n"
        "static inline int vc_feedback_decode(vc_feedback* feedback, const uint8_t* bytes, "
        "long size) {\n    if (size != VC_FEEDBACK_SIZE) return 0;\n";
    for (const WireField& field : fields) {
        if (field.use == Use::RESERVED) continue;
        const std::string at = "(bytes + " + offsetName("VC_FEEDBACK", field);
        text += "    feedback->" + std::string(field.name) + " = ";
        if (field.isInteger())
            text += '(' + cType(field) + ")vc_get" + at + ", " + std::to_string(field.size);
        else
            text += "vc_get_" + cType(field) + at;
        text += ");\n";
    }
    return text + "    return 1;\n}\n\n";
}

} // namespace

std::string cHeader() {
    const auto record = recordFields(), feedback = feedbackFields();
    return HEAD + std::string("/* The record, to the channel. */\n\n") +
           constants(record, "VC_RECORD") + structure(record, "vc_record") +
           "/* The feedback, from the channel. */\n\n" + constants(feedback, "VC_FEEDBACK") +
           structure(feedback, "vc_feedback") + HELPERS + initialiser(record) + encoder(record) +
           decoder(feedback) + "#endif\n";
}
