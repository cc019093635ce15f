// SPDX-License-Identifier: MIT
#include "VirtualScreen.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Starts the server on a display of its own choice. The display's name, empty when that failed.
std::string startServer(pid_t* server) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    *server = fork();
    if (*server == 0) {
        const std::string descriptor = std::to_string(ends[1]);
        const std::string size = std::to_string(VirtualScreen::WIDTH) + "x" +
                                 std::to_string(VirtualScreen::HEIGHT) + "x24";
        close(ends[0]);
        prctl(PR_SET_PDEATHSIG, SIGTERM); // it goes with the test, however that ends
        execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", size.c_str(),
               "-noreset", "-nolisten", "tcp", nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::string number;
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
        number += c;
    close(ends[0]);
    return number.empty() ? number : ":" + number;
}

} // namespace

bool VirtualScreen::isInstalled() { return std::system("command -v Xvfb >/dev/null") == 0; }

VirtualScreen::VirtualScreen(int dpi) {
    const std::string name = startServer(&m_server);
    if (name.empty()) return;
    setenv("DISPLAY", name.c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    m_display = XOpenDisplay(name.c_str());
    if (!m_display) return;
    const std::string setting = dpi > 0 ? "Xft.dpi: " + std::to_string(dpi) + "\n" : "";
    const Window root = DefaultRootWindow(m_display);
    if (dpi > 0)
        XChangeProperty(m_display, root, XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(setting.data()),
                        static_cast<int>(setting.size()));
    m_own_window = XCreateSimpleWindow(m_display, root, WIDTH - 10, HEIGHT - 10, 10, 10, 0, 0, 0);
    XMapWindow(m_display, m_own_window);
    sync();
}

VirtualScreen::~VirtualScreen() {
    if (m_display) XCloseDisplay(m_display);
    unsetenv("DISPLAY");
    if (m_server <= 0) return;
    kill(m_server, SIGTERM);
    waitpid(m_server, nullptr, 0);
}

bool VirtualScreen::watch(const std::string& title) {
    m_window = find(DefaultRootWindow(m_display), title);
    return m_window != 0;
}

unsigned long VirtualScreen::find(unsigned long parent, const std::string& title) {
    char* name = nullptr;
    const bool found = XFetchName(m_display, parent, &name) && title == name;
    if (name) XFree(name);
    if (found) return parent;
    Window root = 0, above = 0, *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(m_display, parent, &root, &above, &children, &count)) return 0;
    unsigned long window = 0;
    for (unsigned i = 0; i < count && !window; i++)
        window = find(children[i], title);
    if (children) XFree(children);
    return window;
}

/// The server's second answer comes when what the first request caused has gone to all its clients.
void VirtualScreen::sync() {
    XSync(m_display, False);
    XSync(m_display, False);
}

// ------------------------------------------------------------------ mouse and keyboard

void VirtualScreen::move(float x, float y) {
    int left = 0, top = 0;
    Window child = 0;
    XTranslateCoordinates(m_display, m_window, DefaultRootWindow(m_display), 0, 0, &left, &top,
                          &child);
    XTestFakeMotionEvent(m_display, -1, left + static_cast<int>(x), top + static_cast<int>(y), 0);
    sync();
}

void VirtualScreen::button(int number, bool down) {
    XTestFakeButtonEvent(m_display, static_cast<unsigned>(number), down, 0);
    sync();
}

void VirtualScreen::key(unsigned long symbol, bool down) {
    XTestFakeKeyEvent(m_display, XKeysymToKeycode(m_display, symbol), down, 0);
    sync();
}

/// Characters that need no Shift.
void VirtualScreen::type(std::string_view characters) {
    for (const char c : characters)
        stroke(static_cast<unsigned char>(c));
}

void VirtualScreen::setRepeat(unsigned delay, unsigned interval) {
    XkbSetAutoRepeatRate(m_display, XkbUseCoreKbd, delay, interval);
    sync();
}

// ------------------------------------------------------------------ desktop

void VirtualScreen::resize(int width, int height) {
    XResizeWindow(m_display, m_window, static_cast<unsigned>(width), static_cast<unsigned>(height));
    sync();
}

void VirtualScreen::focus(bool on_the_window) {
    XSetInputFocus(m_display, on_the_window ? m_window : m_own_window, RevertToParent, CurrentTime);
    sync();
}

/// The message by which a window manager asks a window to close.
void VirtualScreen::pressCloseButton() {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = m_window;
    event.xclient.message_type = XInternAtom(m_display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(m_display, "WM_DELETE_WINDOW", False));
    XSendEvent(m_display, m_window, False, NoEventMask, &event);
    sync();
}

void VirtualScreen::askForClipboard() {
    XConvertSelection(m_display, XInternAtom(m_display, "CLIPBOARD", False),
                      XInternAtom(m_display, "UTF8_STRING", False),
                      XInternAtom(m_display, "TAKEN", False), m_own_window, CurrentTime);
    sync();
}

std::string VirtualScreen::takeClipboard() {
    Atom type = 0;
    int format = 0;
    unsigned long length = 0, rest = 0;
    unsigned char* bytes = nullptr;
    sync();
    XGetWindowProperty(m_display, m_own_window, XInternAtom(m_display, "TAKEN", False), 0, 1024,
                       True, AnyPropertyType, &type, &format, &length, &rest, &bytes);
    std::string text;
    if (bytes) text.assign(reinterpret_cast<const char*>(bytes), length);
    if (bytes) XFree(bytes);
    return text;
}
