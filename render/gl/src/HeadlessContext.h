// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

/// An OpenGL 3.3 core context without window or X server, current from `create` to `destroy`.
class HeadlessContext {
public:
    HeadlessContext() = default;
    HeadlessContext(const HeadlessContext&) = delete;
    HeadlessContext& operator=(const HeadlessContext&) = delete;
    ~HeadlessContext() { destroy(); }

    /// False, having logged why, when the machine has no usable EGL.
    bool create();
    void destroy();

private:
    bool open(void* display);

    void* m_display = nullptr; ///< EGLDisplay
    void* m_context = nullptr; ///< EGLContext
};

} // namespace ig
