// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>

struct _XDisplay;

/// A screen without a monitor, and somebody who sits before it: an X server of the test's own, and
/// mouse and keyboard events that its clients can't tell from real ones. What is done here has
/// reached the clients' connections when the operation returns. Places are pixels of the window
/// that `watch` found.
class VirtualScreen {
public:
    static constexpr int WIDTH = 1024, HEIGHT = 800;

    /// How the desktop is set up.
    struct Desktop {
        int dpi = 0;               ///< 0: it says nothing
        const char* layout = "us"; ///< of the keyboard
        bool managed = false;      ///< by a window manager, openbox
    };

    /// Starts the server and makes it the display of the process; throws when it can't.
    VirtualScreen() : VirtualScreen(Desktop()) {}
    explicit VirtualScreen(const Desktop& desktop);
    VirtualScreen(const VirtualScreen&) = delete;
    ~VirtualScreen();

    /// Whether there are such a server and window manager on this machine.
    static bool isInstalled();
    /// Everything from now on is done to the window of this title. False when there is none.
    bool watch(const std::string& title);

    void move(float x, float y);
    void button(int number, bool down); ///< 1 left, 3 right, 4 the wheel's upward notch
    void rollUp() {
        button(4, true);
        button(4, false);
    }
    void key(unsigned long symbol, bool down); ///< X's name for a key: a character, or XK_…
    void stroke(unsigned long symbol);
    void type(std::string_view characters);
    /// Holds a key until the window has been told of it so many times.
    void hold(unsigned long symbol, int times);
    /// Keys between the two reach nobody's window, as while a window manager works with them.
    void grabKeyboard();
    void ungrabKeyboard();

    // What a desktop does.

    void resize(int width, int height);
    void focus(bool on_the_window);
    void pressCloseButton();
    void iconify();
    void restore();
    /// Another program's window comes up and has the keyboard.
    void openOtherProgram();
    /// The window manager has done all that it was asked for.
    void waitForManager();
    /// Whether the window is to be seen, as far as it is not covered.
    bool isWindowShown();
    /// What is to be seen at a place of the window, 0xRRGGBB.
    unsigned readPixel(int x, int y);

private:
    unsigned long find(unsigned long parent, const std::string& title);
    void sync();
    void startManager();
    void stopPrograms() const;
    void waitForProperty(unsigned long window, const char* name);

    pid_t m_server = -1, m_manager = -1;
    _XDisplay* m_display = nullptr;
    unsigned long m_window = 0, m_own_window = 0, m_other_window = 0, m_asking_window = 0;
};
