// SPDX-License-Identifier: MIT
#pragma once

/// Hears what happens in the window, between frames.
class WindowListener {
public:
    virtual ~WindowListener() = default;
    /// Keys are `ig::KeyCode`s; `repeat`: the key is being held.
    virtual void onKey(int key, bool down, bool repeat) = 0;
    /// Before what a key or a mouse button does: which modifiers the window system knows to be
    /// down. Window managers keep presses and releases for themselves.
    virtual void onModifiers(bool shift, bool ctrl, bool alt) = 0;
    virtual void onText(const char* utf8) = 0;
    /// 0 left, 1 right, 2 middle; pixels of the picture from the top left corner.
    virtual void onButton(int button, bool down, float x, float y) = 0;
    virtual void onMove(float x, float y) = 0;
    virtual void onWheel(float notches) = 0; ///< positive when rolled up
    virtual void onFocusLost() = 0;
    /// The mouse left the window, perhaps for the frame around it.
    virtual void onLeft() = 0;
    /// The operator wants the window closed.
    virtual void onClose() = 0;
    /// Size of the picture, pixels, and how many of them a unit of 1/96 inch has: the window was
    /// resized, or went to another monitor.
    virtual void onResized(int width, int height, float density) = 0;
};

/// What only the window's owner, the application, can do of what those events ask for.
class WindowOwner {
public:
    virtual ~WindowOwner() = default;
    virtual void toggleFullScreen() = 0;
    virtual void takePicture() = 0;
    /// As `WindowListener::onResized`; the owner tells the interface too.
    virtual void resize(int width, int height, float density) = 0;
};
