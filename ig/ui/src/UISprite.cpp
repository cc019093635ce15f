// SPDX-License-Identifier: MIT
#include "ig/ui/UISprite.h"

#include "ig/ui/UIRoot.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"

namespace ig {

void UISprite::measure(int& width, int& height) const { width = height = pixels(32); }

void UISprite::draw(UiDrawList& list) const {
    list.addImage(static_cast<float>(m_x), static_cast<float>(m_y), static_cast<float>(m_width),
                  static_cast<float>(m_height), m_path);
}

UISpriteViewport::UISpriteViewport(UIRoot* root, int width, int height)
    : UIElement(root), m_id(root->m_next_viewport++), m_natural_width(width),
      m_natural_height(height) {
    root->m_viewports.append(this);
}

UISpriteViewport::~UISpriteViewport() {
    jVector<UISpriteViewport*>& viewports = getRoot()->m_viewports;
    viewports.remove(viewports.find(this));
}

void UISpriteViewport::measure(int& width, int& height) const {
    width = pixels(m_natural_width);
    height = pixels(m_natural_height);
}

void UISpriteViewport::draw(UiDrawList& list) const {
    list.addImage(static_cast<float>(m_x), static_cast<float>(m_y), static_cast<float>(m_width),
                  static_cast<float>(m_height), m_id);
}

} // namespace ig
