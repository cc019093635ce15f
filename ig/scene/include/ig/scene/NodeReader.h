// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/math/vec.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace ig {

class Item;
class Material;
class Node;
class NodeReader;
class Package;
struct NodeSchema;

/// Keys of a map in a scene file under which the same kind of value stands.
struct NodeKeys {
    /// A material is the path of one, a flag true or false; pair and triple are lists of two and
    /// three numbers; texts is a list of them; a table is a map whose keys are the file's own; the
    /// last is a list of maps.
    enum class Kind { text, texts, material, flag, number, whole, pair, triple, table, map, list };
    Kind kind;
    std::vector<std::string> names;
    const NodeSchema* maps = nullptr; ///< what a map, or each of a list, may say
    /// Limits of a whole number, which is clamped to them, and of each number of a pair or triple,
    /// which is refused beyond them; a lone number is not held to any.
    double least = -std::numeric_limits<double>::infinity();
    double most = std::numeric_limits<double>::infinity();
};

/// What maps of one purpose (nodes, bodies, shapes) may say in scene files. They may come in types,
/// which their key "type" names; one that names none is of the first.
struct NodeSchema {
    struct Type {
        std::string name;
        std::vector<NodeKeys> keys;
        Node* (*create)(const NodeReader&) = nullptr; ///< of a type of node
    };
    const char* name;
    std::vector<Type> types; ///< at least one; a single one holds for all maps

    /// The type of a map; null when it gives a name that is none.
    const Type* findType(const Package& map) const;
    /// This schema and those of the maps below, as YAML: schema, type, key, and what stands there.
    std::string describe() const;
};

/// Takes the values out of a map of a scene file, by its schema: to ask for a key that is not
/// declared there, or for another kind of value, is a programmer's mistake. What the file has wrong
/// is logged with its path and line. Map and schema live longer than the reader.
class NodeReader {
public:
    explicit NodeReader(const Package& node);
    NodeReader(const Package& map, const NodeSchema& schema);

    const Package& getPackage() const { return m_map; }
    /// Null when the schema has no type of the name that the map gives.
    const NodeSchema::Type* getType() const { return m_type; }

    bool has(const char* key) const;
    const jString& getText(const char* key) const; ///< empty without
    /// Without what is empty or no text, which is reported; a lone text counts as a list of one.
    std::vector<jString> getTexts(const char* key) const;
    bool getFlag(const char* key, bool otherwise = false) const;
    /// `otherwise` also for what is no number.
    float getNumber(const char* key, float otherwise = 0) const;
    int getWhole(const char* key) const; ///< 0 without; clamped to the limits
    Material* getMaterial() const;       ///< under "material"; null without
    /// True when the key is absent (`out` unchanged) or good; else, also beyond the limits,
    /// reported and `out` unchanged.
    bool readPair(const char* key, vec2& out) const;
    bool readTriple(const char* key, dvec3& out) const;
    /// Nothing without, and for what is no map, which is reported.
    const Package* getTable(const char* key) const;
    std::optional<NodeReader> getMap(const char* key) const;
    /// Without what is no map, which is reported.
    std::vector<NodeReader> getMaps(const char* key) const;

    /// Logs that something is wrong with the map, or with what stands under `key`: `what
    /// "subject"`.
    void report(const char* what, const jString& subject, const char* key = nullptr) const;
    /// Warns of every key that the schema does not have, also in the maps below, so that a misspelt
    /// one is noticed; nodes below are left to their own readers.
    void reportUnknownKeys() const;

private:
    struct Entry {
        const Item* item; ///< null when the map has none
        const NodeKeys* keys;
    };
    const std::vector<NodeKeys>& getKeys() const;
    Entry find(const char* key, NodeKeys::Kind kind) const;
    const Package* getPackage(const char* key, const Item* item) const;
    bool readNumbers(const char* key, NodeKeys::Kind kind, double* values, const char* what) const;

    const Package& m_map;
    const NodeSchema& m_schema;
    const NodeSchema::Type* m_type;
};

/// The types of nodes, to which plug-in libraries add theirs when they are loaded.
class NodeFactory {
public:
    using Creator = decltype(NodeSchema::Type::create);
    /// From then on a node of this `type` in a file is made by `create`, which reads `keys`, those
    /// of its own, and returns null, having logged, when they make no sense. The keys of all nodes
    /// are read by the scene. Returns true.
    static bool add(const char* type, Creator create, std::vector<NodeKeys> keys);
    /// What nodes may say in scene files, as `NodeSchema::describe` writes it.
    static std::string describe();
};

} // namespace ig
