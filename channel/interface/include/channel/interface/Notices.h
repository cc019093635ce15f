// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace ig {
class UILabel;
class UIRoot;
} // namespace ig

/// What the operator is told in passing, over the picture: why something did nothing, where a
/// picture was written, at the beginning where the key map is. It takes no input and goes by
/// itself.
class Notices {
public:
    /// Adds them, hidden, to the user interface, which owns them and tells them what its elements
    /// have to say.
    void open(ig::UIRoot* root);
    /// Lines of text, for some seconds, in place of those that stand there.
    void tell(std::string_view text);
    /// The beginning's hint, until `hideHint` or for some seconds.
    void showHint();
    void hideHint();
    /// Once per frame: scene time, s.
    void advance(float dt);
    /// Keeps them in their places; before the layout.
    void place();

private:
    ig::UIRoot* m_root = nullptr;
    ig::UILabel* m_notice = nullptr; ///< the root's, as the hint
    ig::UILabel* m_hint = nullptr;
    float m_notice_left = 0, m_hint_left = 0; ///< s until they go
};
