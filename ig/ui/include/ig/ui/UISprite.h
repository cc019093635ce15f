// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/ui/UIElement.h"

namespace ig {

/// A picture from a file, scaled to the element's size: 32 × 32 unless it is set. The renderer
/// reads the file; one that can't be read is not drawn.
class UISprite : public UIElement {
public:
    /// There are no flags so far: 0.
    UISprite(UIRoot* root, const jString& path, int) : UIElement(root), m_path(path) {}

    void draw(UiDrawList& list) const override;

protected:
    void measure(int& width, int& height) const override;

private:
    jString m_path;
};

} // namespace ig
