// SPDX-License-Identifier: MIT
#pragma once

#include <string>

struct GLFWwindow;

/// Hears what happens in the window, during `Window::poll`.
class WindowListener {
public:
    virtual ~WindowListener() = default;
    /// Keys are `ig::KeyCode`s; `repeat`: the key is being held.
    virtual void onKey(int key, bool down, bool repeat) = 0;
    virtual void onText(const char* utf8) = 0;
    /// 0 left, 1 right, 2 middle; pixels of the picture from the top left corner.
    virtual void onButton(int button, bool down, float x, float y) = 0;
    virtual void onMove(float x, float y) = 0;
    virtual void onWheel(float notches) = 0; ///< positive when rolled up
    virtual void onFocusLost() = 0;
    /// Size of the picture, pixels, and how many of them a unit of 1/96 inch has: the window was
    /// resized, or went to another monitor.
    virtual void onResized(int width, int height, float density) = 0;
};

/// The window that shows the picture, with an OpenGL 3.3 core context that is current as long as
/// the window is open.
class Window {
public:
    explicit Window(WindowListener& listener) : m_listener(listener) {}
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { close(); }

    /// Whether there is a display to open a window on.
    static bool hasDisplay();
    /// False, with one log line, when the window can't be opened.
    bool open(int width, int height);
    /// Whether pictures wait for the display, as they do after `open`, or may tear.
    void setVerticalSync(bool wait);
    void close();
    bool isOpen() const { return m_window != nullptr; }
    /// Delivers what has happened. False when the user wants the window closed.
    bool poll();
    /// Shows the frame that was drawn; waits for the display.
    void swap();
    void toggleFullScreen();

    int getWidth() const { return m_width; } ///< of the picture, pixels
    int getHeight() const { return m_height; }
    /// Pixels of the picture per unit of 1/96 inch, as the desktop is set for its monitor.
    float getDensity() const;

    /// The text that another program, or this one, offers; empty when there is none.
    std::string readClipboard() const;
    void writeClipboard(const std::string& text) const;

private:
    static Window& from(GLFWwindow* window);
    void setCallbacks();
    void setInputCallbacks();
    void tellButton(int button, bool down);
    void tellSize();
    float toPixels(double length) const;

    WindowListener& m_listener;
    GLFWwindow* m_window = nullptr;
    int m_width = 0, m_height = 0;
    int m_restore[4] = {}; ///< place and size before full screen
};
