// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace ig {
class Package;
class UIHLayout;
class UILabel;
class UIRoot;
} // namespace ig

/// The keys, the mouse and the panels' buttons over the picture, each with what it does in Chinese
/// and English side by side: whoever reads one of them finds what the other one calls it. Where
/// that would be too small to read it keeps to the language that was chosen. What belongs to the
/// scene logic stands in a file beside its configuration (`docs/operator.md`).
class KeyMap {
public:
    /// Adds it, hidden, to the user interface, which owns it. `interface`: the logic's file.
    void open(ig::UIRoot* root, const ig::Package& interface);
    void show(bool show);
    bool isShown() const;
    /// Keeps it in the middle of the picture, all of it; before the layout.
    void place();

private:
    void fit();
    bool fitsAt(int smallest);

    ig::UIRoot* m_root = nullptr;
    ig::UIHLayout* m_layout = nullptr; ///< the root's
    /// Keys, their Chinese, their English, buttons, their English.
    static constexpr std::size_t COLUMNS = 5;
    ig::UILabel* m_columns[COLUMNS] = {};
    int m_fitted[3] = {}; ///< width, height and text revision that it was fitted to
};
