// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/math/vec.h"

#include <string_view>

namespace ig {

class UIElement;
class UIRoot;
class UiDrawList;
template <class T>
class jVector;

/// How much of the room that a layout has across its direction an element takes.
enum UI_EXPAND_TYPE {
    UI_EXPAND_NONE = 0, ///< its own size
    UI_EXPAND_FILL = 1, ///< all
};

/// Where the content lies in an element or layout that is larger; left and top without a bit.
enum UI_ALIGN {
    UI_ALIGN_RIGHT = 1,
    UI_ALIGN_CENTER_X = 2,
    UI_ALIGN_BOTTOM = 4,
    UI_ALIGN_CENTER_Y = 8,
};

/// Pixels from the top left corner of the picture; button 0 left, 1 right, 2 middle.
struct UIEventMouse {
    int button = 0;
    float x = 0, y = 0;
};

struct UIEventFocus {
    bool gained = false;
};

struct UIEventKey {
    int key = 0; ///< a `KeyCode`
    bool shift = false, ctrl = false;
};

/// Anything that the user interface shows. Whoever creates an element owns it until it adds it to a
/// layout or to the root, which then destroy it with themselves.
///
/// Sizes that are set are in units of 1/96 inch and grow with `UIRoot::setScale`; positions, and
/// sizes that are asked for, are picture pixels.
class UIElement : public jObject {
public:
    explicit UIElement(UIRoot* root);
    UIElement(const UIElement&) = delete;
    UIElement& operator=(const UIElement&) = delete;
    ~UIElement() override;

    UIRoot* getRoot() const { return m_root; }
    /// Of an align-free element that is the root's: its top left corner from now on.
    void setPosition(int x, int y);
    /// Where it was laid out last.
    int getX() const { return m_x; }
    int getY() const { return m_y; }
    /// The size that it needs now, computed on demand.
    int getWidth() const;
    int getHeight() const;
    /// This size whatever the content; 0 × 0 lifts it.
    void setFixSize(int width, int height);
    void setMinWidth(int width) { m_min_width = width; }
    /// Whether the element stands where `setPosition` puts it; otherwise its parent places it.
    void setAlignFree(bool free) { m_align_free = free; }
    bool isAlignFree() const { return m_align_free; }
    /// A hidden element takes no room, no input and no focus.
    void setHidden(bool hidden);
    bool isHidden() const { return m_hidden; }
    void setShowBackground(bool show) { m_show_background = show; }
    void setBackgroundColor(const vec4& rgba) { m_background = rgba; }
    /// Whether it has the input focus: an edit line that takes the keyboard's text, or a button
    /// while the left mouse button is down on it.
    bool isFocused() const;

    /// Whether it is that element or somewhere below it.
    bool isWithin(const UIElement* ancestor) const;

    // What the root and the layouts call.

    void setParent(UIElement* parent) { m_parent = parent; }

    /// Takes its place for now.
    virtual void arrange(int x, int y, int width, int height);
    /// Once per frame, before the layout.
    virtual void refresh() {}
    virtual void draw(UiDrawList& list) const;
    /// The element that takes the mouse at this place, or null.
    virtual UIElement* find(float x, float y);
    /// Appends those that can take the keyboard, in the order in which Tab reaches them.
    virtual void collectFields(jVector<UIElement*>&) {}
    /// Whether it takes the keyboard when the mouse is pressed on it.
    virtual bool isField() const { return false; }
    /// Whether it has the focus while the mouse is pressed on it.
    virtual bool isFocusedByPress() const { return false; }

    virtual void onMouseDown(const UIEventMouse&) {}
    virtual void onMouseDrag(const UIEventMouse&) {} ///< moved with the left button down on it
    virtual void onClick(const UIEventMouse&) {}     ///< pressed and released on it
    virtual bool onWheel(float notches, const UIEventKey& modifiers); ///< whether it was used
    virtual bool onKey(const UIEventKey&) { return false; }           ///< whether it was used
    virtual void onText(std::string_view) {}                          ///< UTF-8
    virtual void onFocus(bool) {}                                     ///< gained or lost

protected:
    /// Natural size in pixels.
    virtual void measure(int& width, int& height) const = 0;
    virtual bool takesMouse() const { return true; }
    /// A length of the set-up in pixels.
    int pixels(int length) const;
    bool contains(float x, float y) const;
    void drawBackground(UiDrawList& list, const vec4& rgba) const;

    bool m_show_background = true;
    vec4 m_background{0.10f, 0.13f, 0.17f, 0.80f};
    int m_x = 0, m_y = 0, m_width = 0, m_height = 0; ///< as laid out last

private:
    UIRoot* m_root;
    UIElement* m_parent = nullptr; ///< the layout that it is in
    int m_fix_width = 0, m_fix_height = 0, m_min_width = 0;
    bool m_align_free = false;
    bool m_hidden = false;
};

} // namespace ig
