// SPDX-License-Identifier: MIT
#include "ModelLevels.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cctype>
#include <map>

namespace ig {

LevelName readLevelName(const aiNode& node) {
    const std::string_view name(node.mName.data, node.mName.length);
    constexpr std::string_view MARK = "_lod";
    if (name.size() < MARK.size() + 2 || !std::isdigit(static_cast<unsigned char>(name.back())))
        return {};
    const std::string_view stem = name.substr(0, name.size() - MARK.size() - 1);
    const std::string_view mark = name.substr(stem.size(), MARK.size());
    if (!std::ranges::equal(mark, MARK, [](unsigned char a, unsigned char b) {
            return std::tolower(a) == b; // exporters' spellings differ
        }))
        return {};
    return {stem, name.back() - '0'};
}

std::vector<const aiNode*> chooseLevel(const std::vector<const aiNode*>& nodes, int level) {
    std::map<std::string_view, int> best; // of each group
    for (const aiNode* node : nodes) {
        const LevelName name = readLevelName(*node);
        const auto [entry, is_new] = best.try_emplace(name.stem, name.level);
        int& shown = entry->second;
        // Coarser as long as that isn't too coarse, else finer.
        if (shown > level ? name.level < shown : name.level > shown && name.level <= level)
            shown = name.level;
    }
    std::vector<const aiNode*> chosen;
    for (const aiNode* node : nodes) {
        const LevelName name = readLevelName(*node);
        if (name.stem.empty() || best[name.stem] == name.level) chosen.push_back(node);
    }
    return chosen;
}

std::vector<const aiNode*> getChildren(const aiNode& node) {
    return {node.mChildren, node.mChildren + node.mNumChildren};
}

int findCoarsestLevel(const std::vector<const aiNode*>& nodes) {
    int coarsest = 0;
    for (const aiNode* node : nodes)
        coarsest =
            std::max({coarsest, readLevelName(*node).level, findCoarsestLevel(getChildren(*node))});
    return coarsest;
}

std::vector<const aiNode*> findLevels(const aiNode& root, std::string_view part) {
    std::vector<const aiNode*> levels;
    for (const aiNode* child : getChildren(root))
        if (readLevelName(*child).stem == part) levels.push_back(child);
    for (unsigned i = 0; i < root.mNumChildren && levels.empty(); i++)
        levels = findLevels(*root.mChildren[i], part);
    return levels;
}

} // namespace ig
