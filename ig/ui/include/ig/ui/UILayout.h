// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jVector.h"
#include "ig/ui/UIElement.h"

namespace ig {

/// A column of elements, as large as its content. It owns the elements, and the wraps: editors that
/// bind elements of the layout to a value and follow it once per frame.
class UIVLayout : public UIElement {
public:
    /// Pixels between the elements and around them, in units of the set-up.
    UIVLayout(UIRoot* root, int between, int around) : UIVLayout(root, between, around, false) {}
    ~UIVLayout() override;

    /// Takes the element over; `index` −1 puts it at the end.
    void addChild(UIElement* element, UI_EXPAND_TYPE expand = UI_EXPAND_NONE, int index = -1);
    void setSpace(int between, int around);
    /// `UI_ALIGN` bits: where elements smaller than the layout lie across its direction.
    void setContentAligns(int aligns) { m_aligns = aligns; }

    int getChildCount() const { return m_children.size(); }
    /// Child `i` in [0, getChildCount()).
    UIElement* getChild(int i) const { return m_children[i].element; }

    /// Takes over a wrap whose elements are in this layout: `refresh` is called every frame, and it
    /// is destroyed with the layout, before the elements. `Wrap` is any class with `refresh()`,
    /// `setExpand(UI_EXPAND_TYPE)`, `setLayout(UIVLayout*)` and a virtual destructor. Once only.
    template <class Wrap>
    void addWrap(Wrap* wrap, UI_EXPAND_TYPE expand = UI_EXPAND_NONE, int = -1) {
        wrap->setLayout(this);
        wrap->setExpand(expand);
        m_wraps.append({wrap, [](void* w) { static_cast<Wrap*>(w)->refresh(); },
                        [](void* w) { delete static_cast<Wrap*>(w); }});
    }
    /// Gives the wrap at this address back to the caller. Nothing for one that is not here.
    void removeWrap(const void* wrap);

    void arrange(int x, int y, int width, int height) override;
    void refresh() override;
    void draw(UiDrawList& list) const override;
    UIElement* find(float x, float y) override;
    void collectFields(jVector<UIElement*>& fields) override;

protected:
    UIVLayout(UIRoot* root, int between, int around, bool horizontal)
        : UIElement(root), m_between(between), m_around(around), m_horizontal(horizontal) {}
    void measure(int& width, int& height) const override;
    bool takesMouse() const override { return m_show_background; }

private:
    struct Child {
        UIElement* element; ///< owned
        UI_EXPAND_TYPE expand;
    };
    struct Wrap {
        void* wrap; ///< owned
        void (*refresh)(void*);
        void (*destroy)(void*);
    };

    jVector<Child> m_children;
    jVector<Wrap> m_wraps;
    int m_between, m_around;
    int m_aligns = 0;
    bool m_horizontal;
};

/// A row of elements.
class UIHLayout : public UIVLayout {
public:
    UIHLayout(UIRoot* root, int between, int around) : UIVLayout(root, between, around, true) {}
};

} // namespace ig
