// SPDX-License-Identifier: MIT
#include "testkit/VirtualScreen.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int STARTS = 10;

/// Starts the server on a display of its own choice. The display's name, empty when that failed.
std::string tryServer(pid_t* server) {
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

/// One that chooses a display just as another server comes there, or goes, gives up: the next finds
/// another.
std::string startServer(pid_t* server) {
    for (int start = 0; start < STARTS; start++) {
        const std::string name = tryServer(server);
        if (!name.empty()) return name;
        if (*server > 0) waitpid(*server, nullptr, 0);
        *server = -1;
    }
    throw std::runtime_error("VirtualScreen: no X server starts");
}

} // namespace

bool VirtualScreen::isInstalled() {
    return std::system("command -v Xvfb >/dev/null && command -v openbox >/dev/null") == 0;
}

VirtualScreen::VirtualScreen(const Desktop& desktop) {
    const std::string name = startServer(&m_server);
    setenv("DISPLAY", name.c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    const std::string layout = "setxkbmap -layout " + std::string(desktop.layout);
    if (std::system(layout.c_str()) == 0) m_display = XOpenDisplay(name.c_str());
    if (!m_display) {
        stopPrograms();
        throw std::runtime_error("VirtualScreen: the X server can't be reached");
    }
    const int dpi = desktop.dpi;
    const std::string setting = dpi > 0 ? "Xft.dpi: " + std::to_string(dpi) + "\n" : "";
    const Window root = DefaultRootWindow(m_display);
    if (dpi > 0)
        XChangeProperty(m_display, root, XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(setting.data()),
                        static_cast<int>(setting.size()));
    m_own_window = XCreateSimpleWindow(m_display, root, WIDTH - 10, HEIGHT - 10, 10, 10, 0, 0, 0);
    XMapWindow(m_display, m_own_window);
    XkbSetAutoRepeatRate(m_display, XkbUseCoreKbd, 100, 10); // milliseconds: nobody waits long
    sync();
    if (desktop.managed) startManager();
}

VirtualScreen::~VirtualScreen() {
    if (m_display) XCloseDisplay(m_display);
    unsetenv("DISPLAY");
    stopPrograms();
}

void VirtualScreen::stopPrograms() const {
    for (const pid_t program : {m_manager, m_server}) {
        if (program <= 0) continue;
        kill(program, SIGTERM);
        waitpid(program, nullptr, 0);
    }
}

/// It has taken over when it names itself on the root window.
void VirtualScreen::startManager() {
    const Window root = DefaultRootWindow(m_display);
    XSelectInput(m_display, root, PropertyChangeMask);
    m_asking_window = XCreateSimpleWindow(m_display, root, 0, 0, 10, 10, 0, 0, 0);
    XSelectInput(m_display, m_asking_window, PropertyChangeMask);
    m_manager = fork();
    if (m_manager == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        // Its own settings, not those of whoever runs the tests.
        execlp("openbox", "openbox", "--sm-disable", "--config-file", "/etc/xdg/openbox/rc.xml",
               nullptr);
        _exit(127);
    }
    waitForProperty(root, "_NET_SUPPORTING_WM_CHECK");
}

void VirtualScreen::waitForProperty(unsigned long window, const char* name) {
    const Atom property = XInternAtom(m_display, name, False);
    for (XEvent event{};;) {
        XWindowEvent(m_display, window, PropertyChangeMask, &event);
        if (event.xproperty.atom == property && event.xproperty.state == PropertyNewValue) return;
    }
}

bool VirtualScreen::watch(const std::string& title) {
    m_window = find(DefaultRootWindow(m_display), title);
    if (m_window) XSelectInput(m_display, m_window, KeyPressMask);
    sync();
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
    XTestFakeButtonEvent(m_display, number, down, 0);
    sync();
}

void VirtualScreen::key(unsigned long symbol, bool down) {
    XTestFakeKeyEvent(m_display, XKeysymToKeycode(m_display, symbol), down, 0);
    sync();
}

/// In one message: between two, a busy machine may pause for so long that the key repeats.
void VirtualScreen::stroke(unsigned long symbol) {
    const KeyCode code = XKeysymToKeycode(m_display, symbol);
    XTestFakeKeyEvent(m_display, code, True, 0);
    XTestFakeKeyEvent(m_display, code, False, 0);
    sync();
}

/// Characters that need no Shift.
void VirtualScreen::type(std::string_view characters) {
    for (const char c : characters)
        stroke(static_cast<unsigned char>(c));
}

void VirtualScreen::hold(unsigned long symbol, int times) {
    XEvent event{};
    while (XCheckWindowEvent(m_display, m_window, KeyPressMask, &event)) {
    }
    key(symbol, true);
    for (int i = 0; i < times; i++)
        XWindowEvent(m_display, m_window, KeyPressMask, &event);
    key(symbol, false);
}

void VirtualScreen::grabKeyboard() {
    XGrabKeyboard(m_display, m_own_window, False, GrabModeAsync, GrabModeAsync, CurrentTime);
    sync();
}

void VirtualScreen::ungrabKeyboard() {
    XUngrabKeyboard(m_display, CurrentTime);
    sync();
}

// ------------------------------------------------------------------ desktop

void VirtualScreen::resize(int width, int height) {
    XResizeWindow(m_display, m_window, width, height);
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
    event.xclient.data.l[0] = XInternAtom(m_display, "WM_DELETE_WINDOW", False);
    XSendEvent(m_display, m_window, False, NoEventMask, &event);
    sync();
}

void VirtualScreen::iconify() {
    XIconifyWindow(m_display, m_window, DefaultScreen(m_display));
    waitForManager();
}

void VirtualScreen::restore() {
    XMapWindow(m_display, m_window);
    waitForManager();
}

void VirtualScreen::openOtherProgram() {
    const Window root = DefaultRootWindow(m_display);
    m_other_window = XCreateSimpleWindow(m_display, root, 0, 0, 200, 100, 0, 0, 0);
    XStoreName(m_display, m_other_window, "Another program");
    XSelectInput(m_display, m_other_window, FocusChangeMask);
    XMapRaised(m_display, m_other_window);
    waitForManager();
    XSetInputFocus(m_display, m_other_window, RevertToParent, CurrentTime);
    for (XEvent event{}; event.type != FocusIn;)
        XWindowEvent(m_display, m_other_window, FocusChangeMask, &event);
    sync();
}

/// It answers what it is asked in the order in which it was asked: about a window that is never
/// shown, of which it has nothing else to say.
void VirtualScreen::waitForManager() {
    const char* const answer = "_NET_FRAME_EXTENTS";
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = m_asking_window;
    event.xclient.message_type = XInternAtom(m_display, "_NET_REQUEST_FRAME_EXTENTS", False);
    event.xclient.format = 32;
    XSendEvent(m_display, DefaultRootWindow(m_display), False,
               SubstructureNotifyMask | SubstructureRedirectMask, &event);
    waitForProperty(m_asking_window, answer);
    sync();
}

unsigned VirtualScreen::readPixel(int x, int y) {
    sync();
    XImage* image = XGetImage(m_display, m_window, x, y, 1, 1, AllPlanes, ZPixmap);
    if (!image) throw std::runtime_error("VirtualScreen: no such pixel");
    const auto pixel = static_cast<unsigned>(XGetPixel(image, 0, 0));
    XDestroyImage(image);
    return pixel & 0xffffff;
}

bool VirtualScreen::isWindowShown() {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(m_display, m_window, &attributes) != 0 &&
           attributes.map_state == IsViewable;
}
