// SPDX-License-Identifier: MIT
#include "ig/package/mjl.h"

#include "PackageBuilder.h"
#include "Utf8.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "program/InputFile.h"
#include "readPackage.h"

#include <algorithm>
#include <cassert>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <yaml-cpp/emitter.h>
#include <yaml-cpp/emittermanip.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

namespace ig {

namespace {

namespace fs = std::filesystem;

ReadResult malformed(const jString& path, const std::string& what) {
    jLog::error("mjl::open: %s: %s", path.c_str(), what.c_str());
    return ReadResult::malformed;
}

// Lines and columns count from 1.
ReadResult malformedAt(const jString& path, int line, int column, const std::string& what) {
    jLog::error("mjl::open: %s:%d:%d: %s", path.c_str(), line, column, what.c_str());
    return ReadResult::malformed;
}

ReadResult loadText(const jString& path, std::string& text) {
    std::error_code error;
    if (!fs::exists(path.c_str(), error) && !error) return ReadResult::missing;
    const std::string why = program::whyUnreadable(path.c_str());
    if (!why.empty()) return malformed(path, why);
    std::ifstream file(path.c_str(), std::ios::binary | std::ios::ate);
    if (!file) return malformed(path, "cannot be opened");
    const auto size = static_cast<std::streamoff>(file.tellg());
    if (size > mjl::MAX_BYTES) return malformed(path, "the file is too large");
    text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    file.seekg(0);
    if (!file.read(text.data(), static_cast<std::streamsize>(text.size())))
        return malformed(path, "cannot be read to its end");
    return ReadResult::ok;
}

// Position of the first byte that no text file holds: broken UTF-8 or a control character.
std::size_t findBinary(std::string_view text) {
    const std::size_t invalid = findInvalidUtf8(text);
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(invalid);
    const auto control = std::find_if(text.begin(), end, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
    });
    return static_cast<std::size_t>(control - text.begin());
}

ReadResult checkText(const jString& path, std::string_view text) {
    const std::size_t at = findBinary(text);
    if (at == text.size()) return ReadResult::ok;
    const std::string_view before = text.substr(0, at);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t line_start = before.rfind('\n') + 1; // 0 when there is no line end
    return malformedAt(path, static_cast<int>(line), static_cast<int>(at - line_start) + 1,
                       "not a text file in UTF-8");
}

// What the parser says of the commonest slips, in words of the text instead of its own.
std::string explain(const std::string& what) {
    using namespace YAML;
    const std::pair<const char*, const char*> plain[] = {
        {ErrorMsg::DOC_IN_SCALAR, "a quoted text is not closed before this line"},
        {ErrorMsg::END_OF_SEQ_FLOW, "a list is not closed with ] before this place"},
        {ErrorMsg::END_OF_MAP_FLOW, "a map is not closed with } before this place"},
        {ErrorMsg::END_OF_SEQ, "neither a list's next \"- \" nor its end"},
        {ErrorMsg::END_OF_MAP, "neither a \"key: value\" of the map above nor its end"},
        {ErrorMsg::MAP_VALUE, "a \":\" where there can't be one (is the line above complete, and "
                              "indented as it should be?)"},
    };
    for (const auto& [own, words] : plain)
        if (what == own) return words;
    return what;
}

// The parser takes the end of the file for the end of a quoted text, so that a file cut off there
// would pass. Ahead of the marker that ends a document it does complain.
ReadResult parseText(const jString& path, std::string text, Package& package) try {
    text += text.ends_with('\n') ? "...\n" : "\n...\n";
    std::istringstream stream(std::move(text));
    YAML::Parser parser(stream);
    PackageBuilder builder(path);
    while (parser.HandleNextDocument(builder)) {
    }
    package = builder.take();
    return ReadResult::ok;
} catch (const YAML::Exception& e) {
    return malformedAt(path, e.mark.line + 1, e.mark.column + 1, explain(e.msg));
} catch (const std::exception& e) {
    return malformed(path, e.what()); // out of memory
}

// Why the tree could not be read back, or null.
const char* findUnsavable(const Item& item, int depth, long& items) {
    if (++items > mjl::MAX_ITEMS) return "too many items";
    if (item.getKind() != Item::Kind::value && depth > mjl::MAX_DEPTH) return "nested too deep";
    const auto broken = [](const jString& text) {
        return findInvalidUtf8(text.view()) != text.view().size();
    };
    if (broken(item.getName()) || broken(item.getString())) return "a text is not UTF-8";
    const char* why = nullptr;
    for (int i = 0; !why && i < item.getCount(); i++)
        why = findUnsavable(item.getElement(i), depth + 1, items);
    if (const Package* package = item.getPackage())
        for (int i = 0; !why && i < package->getItemCount(); i++)
            why = findUnsavable(package->getItemAt(i), depth + 1, items);
    return why;
}

const char* findUnsavable(const Package& package) {
    const char* why = nullptr;
    long items = 1;
    for (int i = 0; !why && i < package.getItemCount(); i++)
        why = findUnsavable(package.getItemAt(i), 2, items);
    return why;
}

// The emitter puts texts into quotes where they need it, except that it lets a carriage return at
// the end stand bare, where no reader sees it.
void emitText(YAML::Emitter& out, const jString& text) {
    if (text.view().find('\r') != std::string_view::npos) out << YAML::DoubleQuoted;
    out << std::string(text.view());
}

void emitPackage(YAML::Emitter& out, const Package& package);

// Lists without packages inside go on one line: vectors and rows of numbers read best that way.
bool fitsOneLine(const Item& item) {
    if (item.getKind() == Item::Kind::package) return false;
    for (int i = 0; i < item.getCount(); i++)
        if (!fitsOneLine(item.getElement(i))) return false;
    return true;
}

void emitItem(YAML::Emitter& out, const Item& item) {
    switch (item.getKind()) {
    case Item::Kind::value:
        emitText(out, item.getString());
        break;
    case Item::Kind::package:
        emitPackage(out, *item.getPackage());
        break;
    case Item::Kind::list:
        out << (fitsOneLine(item) ? YAML::Flow : YAML::Block) << YAML::BeginSeq;
        for (int i = 0; i < item.getCount(); i++)
            emitItem(out, item.getElement(i));
        out << YAML::EndSeq;
        break;
    }
}

void emitPackage(YAML::Emitter& out, const Package& package) {
    out << YAML::Block << YAML::BeginMap;
    for (int i = 0; i < package.getItemCount(); i++) {
        const Item& item = package.getItemAt(i);
        out << YAML::Key;
        emitText(out, item.getName());
        out << YAML::Value;
        emitItem(out, item);
    }
    out << YAML::EndMap;
}

// Why the file could not be written, or an empty text.
std::string writeFile(const jString& path, const Package& package) try {
    if (const char* why = findUnsavable(package)) return why;
    YAML::Emitter out;
    emitPackage(out, package);
    if (!out.good()) return out.GetLastError();

    const std::string temporary = std::string(path.view()) + ".tmp";
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    if (!file) return "cannot create " + temporary;
    file.write(out.c_str(), static_cast<std::streamsize>(out.size())) << '\n';
    file.close();
    std::error_code error;
    if (file) fs::rename(temporary, path.c_str(), error);
    if (file && !error) return {};
    std::error_code ignored;
    fs::remove(temporary, ignored);
    return error ? error.message() : "cannot write " + temporary;
} catch (const std::exception& e) {
    return e.what(); // out of memory
}

} // namespace

ReadResult readPackage(const jString& path, Package& package) {
    package.release();
    std::string text;
    ReadResult result = loadText(path, text);
    if (result == ReadResult::ok) result = checkText(path, text);
    if (result == ReadResult::ok) result = parseText(path, std::move(text), package);
    return result;
}

bool mjl::open(const jString& path, Package* package, bool encrypted) {
    assert(package);
    if (encrypted) {
        package->release();
        malformed(path, "encrypted packages are not supported");
        return false;
    }
    return readPackage(path, *package) == ReadResult::ok;
}

bool mjl::save(const jString& path, const Package* package, bool encrypted) {
    assert(package);
    const std::string why =
        encrypted ? "encrypted packages are not supported" : writeFile(path, *package);
    if (why.empty()) return true;
    jLog::error("mjl::save: %s: %s", path.c_str(), why.c_str());
    return false;
}

} // namespace ig
