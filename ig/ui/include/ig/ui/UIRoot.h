// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/base/jVector.h"
#include "ig/ui/UIElement.h"

#include <functional>

namespace ig {

class UISpriteViewport;
class Widget;

/// The user interface of one window: it owns the elements, gives them the input, lays them out and
/// says what is to be drawn. The application owns it, hands it input before anybody else gets it,
/// calls `update` once per frame after the logic's update, and destroys it before the world.
///
/// Focus: one element at most. Pressing the left mouse button on an edit line gives it the focus
/// until the mouse is pressed elsewhere or Return, Escape or Tab leaves it. A button has the focus
/// only while the mouse button is down on it.
class UIRoot {
public:
    UIRoot() = default;
    UIRoot(const UIRoot&) = delete;
    UIRoot& operator=(const UIRoot&) = delete;
    ~UIRoot();

    // --- set-up

    /// Takes the element over; `index` −1 puts it on top.
    void addChild(UIElement* element, UI_EXPAND_TYPE expand = UI_EXPAND_NONE, int index = -1);
    /// The picture's size, and the pixels per unit of what elements set.
    void resize(int width, int height, float scale = 1);
    int getWidth() const { return m_width; }
    int getHeight() const { return m_height; }
    int pixels(int length) const;
    /// How wide a text of that size is, in pixels, whether it is drawn or not.
    float getTextWidth(float size, std::string_view utf8) const;
    /// Changes with everything that widths of texts depend on.
    int getTextRevision() const { return m_text_revision; }
    void setClipboard(std::function<jString()> read, std::function<void(const jString&)> write);
    jString readClipboard() const;
    void writeClipboard(const jString& text) const;

    /// Where the operator gets to see what needs no answer; whoever shows texts sets it. Of a text
    /// that a field refused it is the application that knows the words.
    void setNotices(std::function<void(std::string_view notice)> tell,
                    std::function<void(std::string_view text)> tell_refused);
    void tell(std::string_view notice) const;
    void tellRefused(std::string_view text) const;
    /// From the bottom up.
    const jVector<UIElement*>& getChildren() const { return m_children; }

    // --- input, between frames; each tells whether the user interface took it

    bool mouseMove(float x, float y);
    bool mouseDown(const UIEventMouse& event);
    bool mouseUp(const UIEventMouse& event);
    /// Positive when rolled up.
    bool wheel(float notches, const UIEventKey& modifiers = {});
    /// Also for the repeats of a held key. A field with the focus takes everything but function and
    /// modifier keys, a modal widget everything but modifier keys.
    bool keyDown(const UIEventKey& event);
    bool text(std::string_view utf8);
    /// The window lost the focus: whatever is pressed is let go without a click. A field keeps the
    /// focus, and its text, until the operator is back.
    void cancelPress();

    // --- frame

    /// Fields follow what they show, everything is laid out, and what is under the mouse is found
    /// again. Seconds.
    void update(float dt);
    /// Replaces the content of the list.
    void draw(UiDrawList& list) const;
    /// The viewports, hidden ones too, in the order of creation.
    const jVector<UISpriteViewport*>& getViewports() const { return m_viewports; }
    double getTime() const { return m_time; } ///< sum of all updates, s
    /// What takes the mouse at a place of the picture, as laid out last; null: nothing does.
    UIElement* getElementAt(float x, float y) const;

    // --- focus

    UIElement* getFocus() const { return m_focus; }
    /// Null: nobody. The one that loses it hears of it first.
    void setFocus(UIElement* element);
    UIElement* getHover() const { return m_hover; }

    // --- modal widgets

    /// What runs one frame of the application while a modal widget waits; false when the
    /// application is ending.
    void setModalFrame(std::function<bool()> frame) { m_modal_frame = std::move(frame); }
    /// Shows the widget above everything, alone with the input, until it closes. Without a modal
    /// frame it is closed at once.
    void runModal(Widget* widget);

private:
    friend class UIElement;
    friend class UISpriteViewport;

    void forget(UIElement* element);  ///< it is being destroyed
    void release(UIElement* element); ///< it may no longer hold focus or mouse
    void arrange();
    void updateHover();
    bool nextField(bool backwards);

    jVector<UIElement*> m_children; ///< owned, bottom first
    jVector<UISpriteViewport*> m_viewports;
    jVector<Widget*> m_modal; ///< the last one has the input
    UIElement* m_hover = nullptr;
    UIElement* m_pressed = nullptr; ///< the left button went down on it
    UIElement* m_focus = nullptr;
    int m_width = 0, m_height = 0;
    float m_scale = 1;
    float m_mouse_x = -1, m_mouse_y = -1;
    int m_text_revision = 1;
    int m_next_viewport = 1;
    double m_time = 0;
    std::function<jString()> m_read_clipboard;
    std::function<void(const jString&)> m_write_clipboard;
    std::function<void(std::string_view)> m_tell, m_tell_refused;
    std::function<bool()> m_modal_frame;
};

} // namespace ig
