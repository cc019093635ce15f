// SPDX-License-Identifier: MIT
#include "ig/scene/NodeReader.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/scene/Material.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <sstream>

namespace ig {

using enum NodeKeys::Kind;

namespace {

const char* const READER = "World::LoadNode";

void describeKeys(const NodeKeys& keys, std::ostream& out) {
    constexpr const char* KINDS[] = {"text", "texts",  "material", "flag",   "number", "whole",
                                     "pair", "triple", "table",    "map of", "list of"};
    for (const std::string& name : keys.names) {
        out << "    " << name << ": " << KINDS[static_cast<int>(keys.kind)];
        if (keys.maps) out << ' ' << keys.maps->name;
        if (std::isfinite(keys.least)) out << " from " << keys.least;
        if (std::isfinite(keys.most)) out << " to " << keys.most;
        out << '\n';
    }
}

} // namespace

const NodeSchema::Type* NodeSchema::findType(const Package& map) const {
    const jString& wanted = map.getString("type");
    if (wanted.empty() || types.size() == 1) return &types.front();
    const auto found = std::ranges::find(types, wanted.view(), &Type::name);
    return found == types.end() ? nullptr : &*found;
}

std::string NodeSchema::describe() const {
    std::ostringstream out;
    std::vector<const NodeSchema*> schemas{this};
    for (std::size_t i = 0; i < schemas.size(); i++) {
        out << schemas[i]->name << ":\n";
        for (const Type& type : schemas[i]->types) {
            out << "  " << type.name << ":\n";
            for (const NodeKeys& keys : type.keys) {
                describeKeys(keys, out);
                if (keys.maps && std::ranges::count(schemas, keys.maps) == 0)
                    schemas.push_back(keys.maps);
            }
        }
    }
    return out.str();
}

NodeReader::NodeReader(const Package& map, const NodeSchema& schema)
    : m_map(map), m_schema(schema), m_type(schema.findType(map)) {}

const std::vector<NodeKeys>& NodeReader::getKeys() const {
    return m_type ? m_type->keys : m_schema.types.front().keys;
}

NodeReader::Entry NodeReader::find(const char* key, NodeKeys::Kind kind) const {
    for (const NodeKeys& keys : getKeys())
        if (keys.kind == kind && std::ranges::count(keys.names, key) > 0)
            return {m_map.getItem(key), &keys};
    assert(false && "the key is declared");
    return {};
}

bool NodeReader::has(const char* key) const { return m_map.getItem(key) != nullptr; }

const jString& NodeReader::getText(const char* key) const {
    static const jString NONE;
    const Item* item = find(key, text).item;
    return item ? item->getString() : NONE;
}

std::vector<jString> NodeReader::getTexts(const char* key) const {
    std::vector<jString> found;
    const Item* item = find(key, texts).item;
    if (!item) return found;
    const auto take = [&](const Item& each) {
        if (!each.getString().empty())
            found.push_back(each.getString());
        else
            jLog::error("%s: %s:%d: a text is needed in \"%s\"", READER, m_map.getPath().c_str(),
                        each.getLine(), key);
    };
    if (item->getKind() != Item::Kind::list) take(*item);
    for (int i = 0; i < item->getCount(); i++)
        take(item->getElement(i));
    return found;
}

bool NodeReader::getFlag(const char* key, bool otherwise) const {
    const Item* item = find(key, flag).item;
    return item ? item->getBool() : otherwise;
}

float NodeReader::getNumber(const char* key, float otherwise) const {
    const Item* item = find(key, number).item;
    if (!item) return otherwise;
    float value = 0;
    if (item->getKind() != Item::Kind::value)
        report("a number is needed in", key, key);
    else if (item->getFloats(&value, 1) == 1) // tells what is no number itself
        return value;
    return otherwise;
}

int NodeReader::getWhole(const char* key) const {
    const auto [item, limits] = find(key, whole);
    if (!item) return 0;
    return static_cast<int>(std::clamp<double>(item->getInt(), limits->least, limits->most));
}

Material* NodeReader::getMaterial() const {
    const Item* item = find("material", material).item;
    return item && !item->getString().empty() ? MaterialManager::get(item->getString()) : nullptr;
}

bool NodeReader::readNumbers(const char* key, NodeKeys::Kind kind, double* values,
                             const char* what) const {
    const auto [item, limits] = find(key, kind);
    if (!item) return true;
    const int count = kind == pair ? 2 : 3;
    bool good = item->getDoubles(values, count) == count && item->getCount() == count;
    for (int i = 0; i < count; i++)
        good = good && std::isfinite(values[i]) && values[i] >= limits->least &&
               values[i] <= limits->most;
    if (!good) report(what, key, key);
    return good;
}

bool NodeReader::readPair(const char* key, vec2& out) const {
    double v[] = {out.x, out.y};
    if (!readNumbers(key, pair, v, "two numbers within limits are needed in")) return false;
    out = {static_cast<float>(v[0]), static_cast<float>(v[1])};
    return true;
}

bool NodeReader::readTriple(const char* key, dvec3& out) const {
    double v[] = {out.x, out.y, out.z};
    if (!readNumbers(key, triple, v, "three numbers are needed in")) return false;
    out = {v[0], v[1], v[2]};
    return true;
}

const Package* NodeReader::getPackage(const char* key, const Item* item) const {
    if (!item) return nullptr;
    const bool is_absent = item->getKind() == Item::Kind::value && item->getString().empty();
    if (!item->getPackage() && !is_absent) report("a map is needed in", key, key);
    return item->getPackage();
}

const Package* NodeReader::getTable(const char* key) const {
    return getPackage(key, find(key, table).item);
}

std::optional<NodeReader> NodeReader::getMap(const char* key) const {
    const auto [item, keys] = find(key, map);
    const Package* package = getPackage(key, item);
    if (!package) return {};
    return NodeReader(*package, *keys->maps);
}

std::vector<NodeReader> NodeReader::getMaps(const char* key) const {
    std::vector<NodeReader> maps;
    if (const auto [item, keys] = find(key, list); item)
        for (const Package* each : m_map.getPackages(key, READER))
            maps.emplace_back(*each, *keys->maps);
    return maps;
}

void NodeReader::report(const char* what, const jString& subject, const char* key) const {
    const Item* item = key ? m_map.getItem(key) : nullptr;
    jLog::error("%s: %s:%d: %s \"%s\"", READER, m_map.getPath().c_str(),
                item ? item->getLine() : m_map.getLine(), what, subject.c_str());
}

void NodeReader::reportUnknownKeys() const {
    if (!m_type) return; // its own message says more
    std::vector<std::string> known;
    for (const NodeKeys& keys : m_type->keys)
        known.insert(known.end(), keys.names.begin(), keys.names.end());
    m_map.warnUnknownKeys(READER, known);
    for (const NodeKeys& keys : m_type->keys)
        for (const std::string& name : keys.names)
            if (keys.maps && keys.maps != &m_schema)
                for (const Package* each : m_map.getPackages(name))
                    NodeReader(*each, *keys.maps).reportUnknownKeys();
}

} // namespace ig
