// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

struct GLFWmonitor;
struct GLFWwindow;
class WindowListener;

/// A rectangle of the desktop.
struct DesktopArea {
    int x = 0, y = 0, width = 0, height = 0;
};

/// Index of the area that has most of the window; 0 when none has any of it.
std::size_t findMostCovered(const DesktopArea& window, const std::vector<DesktopArea>& areas);

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
    /// False, with one log line, when the window can't be opened. `monitor`: its name, or its
    /// number from 1; empty: as the window manager likes.
    bool open(int width, int height, const std::string& monitor = "");
    /// Whether pictures wait for the display, as they do after `open`, or may tear.
    void setVerticalSync(bool wait);
    void close();
    bool isOpen() const { return m_window != nullptr; }
    /// Delivers what has happened.
    void poll();
    /// Shows the frame that was drawn; waits for the display.
    void swap();
    /// To the whole of the monitor that has most of the window, and back. The picture stays there
    /// when another window takes the focus.
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
    bool moveTo(const std::string& monitor);
    void setCallbacks();
    void setInputCallbacks();
    void tellKey(int key, int scancode, int action, int mods);
    void tellModifiers(int mods);
    void tellButton(int button, bool down);
    void tellSize();
    float toPixels(double length) const;

    WindowListener& m_listener;
    GLFWwindow* m_window = nullptr;
    int m_width = 0, m_height = 0;
    DesktopArea m_restore; ///< before full screen
};
