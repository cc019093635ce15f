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

    /// Starts the server and makes it the display of the process. `dpi` is what the desktop is set
    /// to, 0: nothing.
    explicit VirtualScreen(int dpi = 0);
    VirtualScreen(const VirtualScreen&) = delete;
    ~VirtualScreen();

    /// Whether there is such a server on this machine.
    static bool isInstalled();
    bool isOpen() const { return m_display != nullptr; }
    /// Everything from now on is done to the window of this title. False when there is none.
    bool watch(const std::string& title);

    void move(float x, float y);
    void button(int number, bool down); ///< 1 left, 3 right, 4 wheel up, 5 wheel down
    void roll(bool up) {
        button(up ? 4 : 5, true);
        button(up ? 4 : 5, false);
    }
    void key(unsigned long symbol, bool down); ///< X's name for a key: a character, or XK_…
    void stroke(unsigned long symbol) {
        key(symbol, true);
        key(symbol, false);
    }
    void type(std::string_view characters);

    // What a desktop does.

    void resize(int width, int height);
    void focus(bool on_the_window);
    void pressCloseButton();
    /// How fast a held key repeats, milliseconds.
    void setRepeat(unsigned delay, unsigned interval);

    // The clipboard, as another program reads it: ask, let the owner run, take.

    void askForClipboard();
    std::string takeClipboard();

private:
    unsigned long find(unsigned long parent, const std::string& title);
    void sync();

    pid_t m_server = -1;
    _XDisplay* m_display = nullptr;
    unsigned long m_window = 0, m_own_window = 0;
};
