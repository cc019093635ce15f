// SPDX-License-Identifier: MIT
#pragma once

#include "SwapWatch.h"

#include <functional>
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

/// How pictures go with the display's blanks.
enum class VerticalSync {
    on,  ///< each waits for one
    off, ///< none waits, and what is on the screen may be torn
    late ///< those that come too late for theirs are shown at once, torn
};

/// When a picture was shown, seconds on the steady clock.
struct Shown {
    double finished = 0; ///< drawn, and handed over
    double back = 0;     ///< control came back from there
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
    /// False, with one log line, when the window can't be opened. `monitor`: its name, or its
    /// number from 1; empty: as the window manager likes.
    bool open(int width, int height, const std::string& monitor = "");
    /// To that place of the desktop, pixels.
    void place(int x, int y);
    /// `on` until it is called. With one log line where the display has no `late`: then it is `on`.
    void setVerticalSync(VerticalSync sync);
    void close();
    bool isOpen() const { return m_window != nullptr; }
    /// Delivers what has happened.
    void poll();
    /// Shows the frame that was drawn. Where it waits for the display, and the display says when it
    /// took the picture, nothing waits in a queue when it returns. Nothing is shown while the
    /// window is iconified; a window system that holds the pictures of a window back is not waited
    /// for. `await`, if any, is called when the frame has been drawn, before it is shown.
    Shown swap(const std::function<void()>& await = {});
    /// What the window system says of the display that has most of the window, 1/s; 0: it doesn't
    /// say, or pictures don't wait for it now.
    double getRefreshRate();
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
    void noteSign();
    bool mayWait(double now) const;
    void tellHeld(double took);
    GLFWmonitor* findOwnMonitor() const;
    float toPixels(double length) const;

    WindowListener& m_listener;
    GLFWwindow* m_window = nullptr;
    int m_width = 0, m_height = 0;
    DesktopArea m_restore; ///< before full screen
    VerticalSync m_sync = VerticalSync::on;
    SwapWatch m_watch;
    bool m_held = false; ///< it was told that swaps are held back
    bool m_iconified = false;
    int m_interval = 0;                  ///< of swaps, as the window system has been told
    double m_refresh_rate = -1;          ///< 1/s; negative: to be asked for
    std::function<void()> m_finish;      ///< waits until the device has drawn everything
    std::function<void()> m_await_shown; ///< and until the display has taken it
};
