// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/ui/UILayout.h"

/// Base of the editors that bind fields of a panel to a value of the scene. An editor is made for a
/// layout, adds its fields to it, and is registered with it by `UIVLayout::addWrap`: from then on
/// the layout owns it and refreshes it every frame. An editor owns none of its fields.
///
/// All editors are derived singly, so that an editor has one address: layouts know it by that.
class UIWrap {
public:
    UIWrap() = default;
    UIWrap(const UIWrap&) = delete;
    UIWrap& operator=(const UIWrap&) = delete;

    /// Sent after the operator has changed the value; −1 sends nothing.
    virtual int getMsgId() const { return m_msg_id; }
    virtual void setMsgId(int id) { m_msg_id = id; }
    /// What that message carries; not owned.
    virtual void* getMsgPtr() const { return m_msg_ptr; }
    virtual void setMsgPtr(void* ptr) { m_msg_ptr = ptr; }
    /// The layout that it is registered with.
    virtual ig::UIVLayout* getLayout() const { return m_layout; }
    virtual void setLayout(ig::UIVLayout* layout) { m_layout = layout; }
    virtual ~UIWrap() = default;

    /// Brings the fields up to date with the value. True when that changed them.
    virtual bool refresh() { return false; }
    /// Takes the editor out of its layout; the caller owns it again.
    virtual void detach();
    virtual void setExpand(ig::UI_EXPAND_TYPE) {}
    virtual void setHidden(bool) {}
    virtual void setEditable(bool) {}

    /// Sends the message.
    void notify() const;

    /// Editors come from the engine allocator; the layout's `delete` takes them out of the memory
    /// tracker.
    static void* operator new(std::size_t size) { return ig::jObject::operator new(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory) noexcept { ig::jObject::operator delete(memory); }

private:
    int m_msg_id = -1;
    void* m_msg_ptr = nullptr;
    ig::UIVLayout* m_layout = nullptr;
};
