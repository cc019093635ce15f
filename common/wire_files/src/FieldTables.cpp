// SPDX-License-Identifier: MIT
#include "Texts.h"
#include "Writers.h"

#include <algorithm>
#include <vector>

namespace {

using Use = WireField::Use;

/// A row of a table in Markdown.
std::string row(const std::vector<std::string>& cells) {
    std::string text = "|";
    for (const std::string& cell : cells)
        text += cell.empty() ? " |" : ' ' + cell + " |";
    return text + '\n';
}

std::string code(std::string_view name) { return '`' + std::string(name) + '`'; }

std::string unitAndSense(const WireField& field) {
    std::string text(field.unit);
    if (!field.sense.empty()) text += (text.empty() ? "" : ", ") + std::string(field.sense);
    return text;
}

std::string typeOf(const WireField& field) {
    return field.type == WireField::Type::BYTES ? std::to_string(field.size) + " bytes"
                                                : std::string(field.getTypeName());
}

/// Of a code, the values that have a meaning.
std::string valuesOf(const WireField& field) {
    if (!field.is_code) return rangeText(field.range);
    std::string text;
    for (const WireCode& code : field.codes)
        text += (text.empty() ? "" : ", ") + std::to_string(code.value);
    return text;
}

std::string recordTable() {
    std::string text = row({"at", "type", "field", "unit, sign", "values", "0 means", "if unused",
                            "shown", "meaning"}) +
                       row({"--:", "---", "---", "---", "---", "---", "---", "---", "---"});
    for (const WireField& field : recordFields()) {
        const std::string at = std::to_string(field.offset);
        if (field.use == Use::RESERVED)
            text += row(
                {at, typeOf(field), code(field.name), "", "", "", "anything", "no", "Not read"});
        else
            text += row({at, typeOf(field), code(field.name), unitAndSense(field), valuesOf(field),
                         std::string(field.zero),
                         field.unused ? numberText(*field.unused) : "must be told",
                         field.use == Use::NOT_SHOWN ? "no" : "yes", std::string(field.meaning)});
    }
    return text;
}

std::string feedbackTable() {
    std::string text = row({"at", "type", "field", "unit, sign", "range", "0 means", "meaning"}) +
                       row({"--:", "---", "---", "---", "---", "---", "---"});
    for (const WireField& field : feedbackFields()) {
        const std::string at = std::to_string(field.offset);
        if (field.use == Use::RESERVED)
            text += row({at, typeOf(field), code(field.name), "", "0", "", "Always 0"});
        else
            text +=
                row({at, typeOf(field), code(field.name), unitAndSense(field),
                     rangeText(field.range), std::string(field.zero), std::string(field.meaning)});
    }
    return text;
}

/// The fields by the limits beyond which a value is warned of.
std::string limitTable() {
    std::vector<WireRange> limits;
    for (const WireField& field : recordFields())
        if (field.plausible.isBounded() &&
            std::find(limits.begin(), limits.end(), field.plausible) == limits.end())
            limits.push_back(field.plausible);
    std::string text = row({"warned of outside", "fields"}) + row({"---", "---"});
    for (const WireRange& limit : limits) {
        std::string names;
        for (const WireField& field : recordFields())
            if (field.plausible == limit) names += (names.empty() ? "" : ", ") + code(field.name);
        text += row({rangeText(limit), names});
    }
    return text;
}

/// Replaces what stands between the lines that begin and end a table; a page without them gets
/// both.
void fillIn(std::string& page, const std::string& name, const std::string& table) {
    const std::string first = "<!-- " + name + ": made by wire_files -->\n";
    const std::string last = "<!-- end of " + name + " -->\n";
    if (page.find(first) == page.npos) page += first;
    const std::size_t begin = page.find(first) + first.size();
    if (page.find(last, begin) == page.npos) page.insert(begin, last);
    page.replace(begin, page.find(last, begin) - begin, table);
}

} // namespace

std::string withFieldTables(std::string page) {
    fillIn(page, "record", recordTable());
    fillIn(page, "limits", limitTable());
    fillIn(page, "feedback", feedbackTable());
    return page;
}
