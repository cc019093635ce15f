// SPDX-License-Identifier: MIT
#include "Window.h"

#include "channel/interface/WindowListener.h"
#include "ig/base/jLog.h"
#include "ig/ui/KeyCode.h"
#include "program/Clock.h"
#include "render/driver/driverUse.h"

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace ig;
using program::steadyNow;

namespace {

/// The key at a place of the keypad while Num Lock is off; negative: none.
int toCursorKey(int key) {
    switch (key) {
    case GLFW_KEY_KP_2:
        return KEY_DOWN;
    case GLFW_KEY_KP_8:
        return KEY_UP;
    case GLFW_KEY_KP_4:
        return KEY_LEFT;
    case GLFW_KEY_KP_6:
        return KEY_RIGHT;
    case GLFW_KEY_KP_7:
        return KEY_HOME;
    case GLFW_KEY_KP_1:
        return KEY_END;
    case GLFW_KEY_KP_DECIMAL:
        return KEY_DELETE;
    default:
        return -1;
    }
}

/// A printable key as the keyboard's layout labels it. Digits go by their place: on some layouts
/// they need Shift. So do keys whose label is no ASCII character.
int toPrintable(int key, int scancode) {
    const bool digit = key >= GLFW_KEY_0 && key <= GLFW_KEY_9;
    const char* name = digit ? nullptr : glfwGetKeyName(key, scancode);
    if (name && name[0] > ' ' && name[0] <= '~' && !name[1]) return std::tolower(name[0]);
    return key >= GLFW_KEY_A && key <= GLFW_KEY_Z ? key - GLFW_KEY_A + 'a' : key;
}

/// A GLFW key as a `KeyCode`; negative: none.
int toKeyCode(int key, int scancode, bool num_lock) {
    if (key >= GLFW_KEY_KP_0 && key <= GLFW_KEY_KP_DECIMAL && !num_lock) return toCursorKey(key);
    if (key >= GLFW_KEY_KP_0 && key <= GLFW_KEY_KP_9) return key - GLFW_KEY_KP_0 + '0';
    if (key >= GLFW_KEY_F1 && key <= GLFW_KEY_F12) return key - GLFW_KEY_F1 + KEY_F1;
    if (key >= GLFW_KEY_SPACE && key <= GLFW_KEY_GRAVE_ACCENT) return toPrintable(key, scancode);
    switch (key) {
    case GLFW_KEY_ESCAPE:
        return KEY_ESCAPE;
    case GLFW_KEY_TAB:
        return KEY_TAB;
    case GLFW_KEY_BACKSPACE:
        return KEY_BACKSPACE;
    case GLFW_KEY_ENTER:
    case GLFW_KEY_KP_ENTER:
        return KEY_RETURN;
    case GLFW_KEY_DELETE:
        return KEY_DELETE;
    case GLFW_KEY_HOME:
        return KEY_HOME;
    case GLFW_KEY_END:
        return KEY_END;
    case GLFW_KEY_LEFT:
        return KEY_LEFT;
    case GLFW_KEY_RIGHT:
        return KEY_RIGHT;
    case GLFW_KEY_UP:
        return KEY_UP;
    case GLFW_KEY_DOWN:
        return KEY_DOWN;
    case GLFW_KEY_LEFT_SHIFT:
    case GLFW_KEY_RIGHT_SHIFT:
        return KEY_SHIFT;
    case GLFW_KEY_LEFT_CONTROL:
    case GLFW_KEY_RIGHT_CONTROL:
        return KEY_CTRL;
    case GLFW_KEY_LEFT_ALT:
    case GLFW_KEY_RIGHT_ALT:
        return KEY_ALT;
    default:
        return -1;
    }
}

std::string toUtf8(unsigned character) {
    const auto tail = [character](int shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3f));
    };
    if (character < 0x80) return {static_cast<char>(character)};
    if (character < 0x800) return {static_cast<char>(0xc0 | character >> 6), tail(0)};
    if (character < 0x10000) return {static_cast<char>(0xe0 | character >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xf0 | character >> 18), tail(12), tail(6), tail(0)};
}

DesktopArea areaOf(GLFWmonitor* monitor) {
    DesktopArea area;
    glfwGetMonitorPos(monitor, &area.x, &area.y);
    if (const GLFWvidmode* mode = glfwGetVideoMode(monitor)) {
        area.width = mode->width;
        area.height = mode->height;
    }
    return area;
}

std::vector<GLFWmonitor*> listMonitors() {
    int count = 0;
    GLFWmonitor** monitors = glfwGetMonitors(&count);
    return {monitors, monitors + count};
}

/// The one of that name or number, or null.
GLFWmonitor* findMonitor(const std::string& wanted) {
    const std::vector<GLFWmonitor*> monitors = listMonitors();
    for (std::size_t i = 0; i < monitors.size(); i++)
        if (wanted == glfwGetMonitorName(monitors[i]) || wanted == std::to_string(i + 1))
            return monitors[i];
    return nullptr;
}

/// Those that there are, for a message: 1 "HDMI-1" 1920x1080, ...
std::string describeMonitors() {
    std::string text;
    int number = 1;
    for (GLFWmonitor* monitor : listMonitors()) {
        const DesktopArea area = areaOf(monitor);
        text += (number > 1 ? ", " : "") + std::to_string(number) + " \"" +
                glfwGetMonitorName(monitor) + "\" " + std::to_string(area.width) + "x" +
                std::to_string(area.height);
        number++;
    }
    return text.empty() ? "no monitor" : text;
}

template <class Function>
Function findFunction(const char* name) {
    return reinterpret_cast<Function>(glfwGetProcAddress(name));
}

/// Waits until the display has taken everything that this thread's window handed over, where the
/// window system can say so: many drivers queue pictures, and return from swaps meanwhile. Empty
/// where it can't.
std::function<void()> findAwaitShown() {
    using Wait = int (*)(void* display, unsigned long drawable, std::int64_t target,
                         std::int64_t* time, std::int64_t* blanks, std::int64_t* swaps);
    if (!glfwExtensionSupported("GLX_OML_sync_control")) return {};
    const auto display = findFunction<void* (*)()>("glXGetCurrentDisplay");
    const auto drawable = findFunction<unsigned long (*)()>("glXGetCurrentDrawable");
    const auto wait = findFunction<Wait>("glXWaitForSbcOML");
    if (!display || !drawable || !wait) return {};
    return [=] {
        std::int64_t time = 0, blanks = 0, swaps = 0;
        wait(display(), drawable(), 0, &time, &blanks, &swaps); // 0: all that were asked for
    };
}

} // namespace

std::size_t findMostCovered(const DesktopArea& window, const std::vector<DesktopArea>& areas) {
    const auto common = [](int begin, int size, int other, int other_size) {
        return std::max(0, std::min(begin + size, other + other_size) - std::max(begin, other));
    };
    std::size_t best = 0;
    long long most = 0;
    for (std::size_t i = 0; i < areas.size(); i++) {
        const DesktopArea& area = areas[i];
        const long long covered =
            static_cast<long long>(common(window.x, window.width, area.x, area.width)) *
            common(window.y, window.height, area.y, area.height);
        if (covered > most) {
            most = covered;
            best = i;
        }
    }
    return best;
}

bool Window::hasDisplay() {
    const auto set = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value;
    };
    return set("DISPLAY") || set("WAYLAND_DISPLAY");
}

bool Window::open(int width, int height, const std::string& monitor) {
    const auto fail = [this] {
        const char* why = nullptr;
        glfwGetError(&why);
        jLog::error("Window::open: no window with OpenGL 3.3 here: %s",
                    why ? why : "no window system");
        close();
        return false;
    };
    useDriver();
    if (!glfwInit()) return fail();
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    glfwWindowHint(GLFW_DEPTH_BITS, 0);            // only a finished picture is copied in
    glfwWindowHint(GLFW_AUTO_ICONIFY, GLFW_FALSE); // a projector stays lit
    m_window = glfwCreateWindow(width, height, "Visual channel", nullptr, nullptr);
    if (!m_window) return fail();
    if (!monitor.empty() && !moveTo(monitor)) {
        close();
        return false;
    }
    glfwMakeContextCurrent(m_window);
    m_finish = findFunction<void (*)()>("glFinish");
    m_await_shown = findAwaitShown();
    if (!m_await_shown) m_await_shown = m_finish;
    glfwSwapInterval(m_interval);
    glfwGetFramebufferSize(m_window, &m_width, &m_height);
    glfwSetWindowUserPointer(m_window, this);
    setCallbacks();
    setInputCallbacks();
    return true;
}

void Window::place(int x, int y) { glfwSetWindowPos(m_window, x, y); }

/// To the middle of a monitor. False, with one log line, when there is none of that name or number.
bool Window::moveTo(const std::string& monitor) {
    GLFWmonitor* there = findMonitor(monitor);
    if (!there) {
        jLog::error("Window::open: there is no monitor \"%s\"; there is %s", monitor.c_str(),
                    describeMonitors().c_str());
        return false;
    }
    const DesktopArea area = areaOf(there);
    int width = 0, height = 0;
    glfwGetWindowSize(m_window, &width, &height);
    glfwSetWindowPos(m_window, area.x + (area.width - width) / 2,
                     area.y + (area.height - height) / 2);
    return true;
}

void Window::setVerticalSync(VerticalSync sync) {
    m_sync = sync;
    if (sync != VerticalSync::late || glfwExtensionSupported("GLX_EXT_swap_control_tear")) return;
    m_sync = VerticalSync::on;
    jLog::message("visual_channel: this display can't show late pictures at once: --vsync late is "
                  "as on");
}

void Window::close() {
    if (m_window) glfwDestroyWindow(m_window);
    m_window = nullptr;
    glfwTerminate();
}

Window& Window::from(GLFWwindow* window) {
    return *static_cast<Window*>(glfwGetWindowUserPointer(window));
}

void Window::setCallbacks() {
    glfwSetWindowFocusCallback(m_window, [](GLFWwindow* w, int focused) {
        if (focused)
            from(w).noteSign();
        else
            from(w).m_listener.onFocusLost();
    });
    glfwSetWindowIconifyCallback(m_window, [](GLFWwindow* w, int iconified) {
        from(w).m_iconified = iconified;
        from(w).noteSign();
    });
    glfwSetWindowPosCallback(m_window, [](GLFWwindow* w, int, int) { from(w).noteSign(); });
    glfwSetWindowCloseCallback(m_window, [](GLFWwindow* w) {
        glfwSetWindowShouldClose(w, GLFW_FALSE); // told once; the operator may say no
        from(w).m_listener.onClose();
    });
    glfwSetCursorEnterCallback(m_window, [](GLFWwindow* w, int entered) {
        if (entered)
            from(w).noteSign();
        else
            from(w).m_listener.onLeft();
    });
    glfwSetFramebufferSizeCallback(m_window, [](GLFWwindow* w, int, int) { from(w).tellSize(); });
    glfwSetWindowContentScaleCallback(m_window,
                                      [](GLFWwindow* w, float, float) { from(w).tellSize(); });
}

void Window::setInputCallbacks() {
    glfwSetInputMode(m_window, GLFW_LOCK_KEY_MODS, GLFW_TRUE); // for Num Lock
    glfwSetKeyCallback(m_window, [](GLFWwindow* w, int key, int scancode, int action, int mods) {
        from(w).tellKey(key, scancode, action, mods);
    });
    glfwSetCharCallback(m_window, [](GLFWwindow* w, unsigned character) {
        from(w).m_listener.onText(toUtf8(character).c_str());
    });
    glfwSetMouseButtonCallback(m_window, [](GLFWwindow* w, int button, int action, int mods) {
        from(w).tellModifiers(mods);
        if (button <= GLFW_MOUSE_BUTTON_MIDDLE) from(w).tellButton(button, action == GLFW_PRESS);
    });
    glfwSetCursorPosCallback(m_window, [](GLFWwindow* w, double x, double y) {
        Window& window = from(w);
        window.m_listener.onMove(window.toPixels(x), window.toPixels(y));
    });
    glfwSetScrollCallback(m_window, [](GLFWwindow* w, double, double y) {
        from(w).m_listener.onWheel(static_cast<float>(y));
    });
}

/// What goes with a modifier key itself is its state before, or after, as the window system likes.
void Window::tellKey(int key, int scancode, int action, int mods) {
    const int code = toKeyCode(key, scancode, (mods & GLFW_MOD_NUM_LOCK) != 0);
    if (code < KEY_SHIFT || code > KEY_ALT) tellModifiers(mods);
    if (code >= 0) m_listener.onKey(code, action != GLFW_RELEASE, action == GLFW_REPEAT);
}

void Window::tellModifiers(int mods) {
    m_listener.onModifiers((mods & GLFW_MOD_SHIFT) != 0, (mods & GLFW_MOD_CONTROL) != 0,
                           (mods & GLFW_MOD_ALT) != 0);
}

void Window::tellButton(int button, bool down) {
    double x = 0, y = 0;
    glfwGetCursorPos(m_window, &x, &y);
    m_listener.onButton(button, down, toPixels(x), toPixels(y));
}

void Window::tellSize() {
    int width = 0, height = 0;
    glfwGetFramebufferSize(m_window, &width, &height);
    if (width <= 0 || height <= 0) return; // iconified
    noteSign();
    m_width = width;
    m_height = height;
    m_listener.onResized(width, height, getDensity());
}

/// Somebody may see the window again, or see it on another monitor.
void Window::noteSign() {
    m_watch.noteSign();
    m_refresh_rate = -1;
}

/// Some window systems measure windows, and places in them, in units of several pixels.
float Window::toPixels(double length) const {
    int width = 0, height = 0;
    glfwGetWindowSize(m_window, &width, &height);
    return static_cast<float>(width > 0 ? length * m_width / width : length);
}

float Window::getDensity() const {
    float x = 1, y = 1;
    if (m_window) glfwGetWindowContentScale(m_window, &x, &y);
    return y > 0 ? y : 1;
}

std::string Window::readClipboard() const {
    const char* text = m_window ? glfwGetClipboardString(m_window) : nullptr;
    return text ? text : "";
}

void Window::writeClipboard(const std::string& text) const {
    if (m_window) glfwSetClipboardString(m_window, text.c_str());
}

void Window::poll() { glfwPollEvents(); }

bool Window::mayWait(double now) const {
    return m_sync != VerticalSync::off && !m_iconified && m_watch.mayWait(now);
}

Shown Window::swap(const std::function<void()>& await) {
    const bool waits = mayWait(steadyNow());
    const int interval = !waits ? 0 : m_sync == VerticalSync::late ? -1 : 1;
    if (interval != m_interval) glfwSwapInterval(interval);
    m_interval = interval;
    if (waits || await) m_finish();
    if (await) await();
    const double finished = steadyNow();
    if (!m_iconified) glfwSwapBuffers(m_window);
    if (waits) m_await_shown();
    const double back = steadyNow();
    if (!waits) return {back, back};
    m_watch.addSwap(back - finished, back);
    tellHeld(back - finished);
    return {finished, back};
}

/// Once when it begins, and once when it ends.
void Window::tellHeld(double took) {
    const bool held = took > SwapWatch::PATIENCE;
    if (held == m_held) return;
    m_held = held;
    if (held)
        jLog::message("visual_channel: the window system held a picture back for %.1f s: until the "
                      "window is seen again pictures don't wait for the display",
                      took);
    else
        jLog::message("visual_channel: pictures wait for the display again");
}

double Window::getRefreshRate() {
    if (!m_window || !mayWait(steadyNow())) return 0;
    if (m_refresh_rate < 0) {
        GLFWmonitor* monitor = findOwnMonitor();
        const GLFWvidmode* mode = monitor ? glfwGetVideoMode(monitor) : nullptr;
        m_refresh_rate = mode ? std::max(mode->refreshRate, 0) : 0;
    }
    return m_refresh_rate;
}

/// The one that has most of the window; null when there is none.
GLFWmonitor* Window::findOwnMonitor() const {
    if (GLFWmonitor* monitor = glfwGetWindowMonitor(m_window)) return monitor;
    const std::vector<GLFWmonitor*> monitors = listMonitors();
    if (monitors.empty()) return nullptr;
    DesktopArea window;
    glfwGetWindowPos(m_window, &window.x, &window.y);
    glfwGetWindowSize(m_window, &window.width, &window.height);
    std::vector<DesktopArea> areas(monitors.size());
    std::ranges::transform(monitors, areas.begin(), areaOf);
    return monitors[findMostCovered(window, areas)];
}

void Window::toggleFullScreen() {
    if (!m_window) return; // a script's key, without a window
    if (glfwGetWindowMonitor(m_window)) {
        glfwSetWindowMonitor(m_window, nullptr, m_restore.x, m_restore.y, m_restore.width,
                             m_restore.height, GLFW_DONT_CARE);
        return;
    }
    GLFWmonitor* monitor = findOwnMonitor();
    const GLFWvidmode* mode = monitor ? glfwGetVideoMode(monitor) : nullptr;
    if (!mode) return;
    glfwGetWindowPos(m_window, &m_restore.x, &m_restore.y);
    glfwGetWindowSize(m_window, &m_restore.width, &m_restore.height);
    glfwSetWindowMonitor(m_window, monitor, 0, 0, mode->width, mode->height, mode->refreshRate);
}
