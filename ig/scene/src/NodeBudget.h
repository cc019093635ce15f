// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

/// Lives while nodes are loaded. A world, or a prefab that is loaded alone, has at most MOST nodes:
/// a few small prefabs that hold one another could ask for any number.
class NodeBudget {
public:
    static constexpr int MOST = 200'000;

    NodeBudget();
    ~NodeBudget();
    NodeBudget(const NodeBudget&) = delete;
    NodeBudget& operator=(const NodeBudget&) = delete;
};

} // namespace ig
