// SPDX-License-Identifier: MIT
#include "Window.h"

#include "ig/base/jLog.h"
#include "ig/ui/KeyCode.h"

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <cstdlib>
#include <string>

using namespace ig;

namespace {

/// A GLFW key as a `KeyCode`; negative: none.
int toKeyCode(int key) {
    if (key >= GLFW_KEY_A && key <= GLFW_KEY_Z) return key - GLFW_KEY_A + 'a';
    if (key >= GLFW_KEY_F1 && key <= GLFW_KEY_F12) return key - GLFW_KEY_F1 + KEY_F1;
    if (key >= GLFW_KEY_SPACE && key <= GLFW_KEY_GRAVE_ACCENT) return key; // printable: itself
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

} // namespace

bool Window::hasDisplay() {
    const auto set = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value;
    };
    return set("DISPLAY") || set("WAYLAND_DISPLAY");
}

bool Window::open(int width, int height) {
    const auto fail = [this] {
        const char* why = nullptr;
        glfwGetError(&why);
        jLog::error("Window::open: no window with OpenGL 3.3 here: %s",
                    why ? why : "no window system");
        close();
        return false;
    };
    if (!glfwInit()) return fail();
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    glfwWindowHint(GLFW_DEPTH_BITS, 0); // only a finished picture is copied in
    m_window = glfwCreateWindow(width, height, "Visual channel", nullptr, nullptr);
    if (!m_window) return fail();
    glfwMakeContextCurrent(m_window);
    glfwSwapInterval(1);
    glfwGetFramebufferSize(m_window, &m_width, &m_height);
    glfwSetWindowUserPointer(m_window, this);
    setCallbacks();
    setInputCallbacks();
    return true;
}

void Window::setVerticalSync(bool wait) { glfwSwapInterval(wait ? 1 : 0); }

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
        if (!focused) from(w).m_listener.onFocusLost();
    });
    glfwSetFramebufferSizeCallback(m_window, [](GLFWwindow* w, int, int) { from(w).tellSize(); });
    glfwSetWindowContentScaleCallback(m_window,
                                      [](GLFWwindow* w, float, float) { from(w).tellSize(); });
}

void Window::setInputCallbacks() {
    glfwSetKeyCallback(m_window, [](GLFWwindow* w, int key, int, int action, int) {
        const int code = toKeyCode(key);
        if (code >= 0)
            from(w).m_listener.onKey(code, action != GLFW_RELEASE, action == GLFW_REPEAT);
    });
    glfwSetCharCallback(m_window, [](GLFWwindow* w, unsigned character) {
        from(w).m_listener.onText(toUtf8(character).c_str());
    });
    glfwSetMouseButtonCallback(m_window, [](GLFWwindow* w, int button, int action, int) {
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

void Window::tellButton(int button, bool down) {
    double x = 0, y = 0;
    glfwGetCursorPos(m_window, &x, &y);
    m_listener.onButton(button, down, toPixels(x), toPixels(y));
}

void Window::tellSize() {
    int width = 0, height = 0;
    glfwGetFramebufferSize(m_window, &width, &height);
    if (width <= 0 || height <= 0) return; // iconified
    m_width = width;
    m_height = height;
    m_listener.onResized(width, height, getDensity());
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

bool Window::poll() {
    glfwPollEvents();
    const bool close = glfwWindowShouldClose(m_window);
    glfwSetWindowShouldClose(m_window, GLFW_FALSE); // told once; the operator may say no
    return !close;
}

void Window::swap() { glfwSwapBuffers(m_window); }

void Window::toggleFullScreen() {
    if (glfwGetWindowMonitor(m_window)) {
        glfwSetWindowMonitor(m_window, nullptr, m_restore[0], m_restore[1], m_restore[2],
                             m_restore[3], GLFW_DONT_CARE);
        return;
    }
    GLFWmonitor* monitor = glfwGetPrimaryMonitor();
    const GLFWvidmode* mode = monitor ? glfwGetVideoMode(monitor) : nullptr;
    if (!mode) return;
    glfwGetWindowPos(m_window, &m_restore[0], &m_restore[1]);
    glfwGetWindowSize(m_window, &m_restore[2], &m_restore[3]);
    glfwSetWindowMonitor(m_window, monitor, 0, 0, mode->width, mode->height, mode->refreshRate);
}
