// SPDX-License-Identifier: MIT
#include "HeadlessContext.h"

#include "ig/base/jLog.h"
#include "render/driver/driverUse.h"

#include <epoxy/egl.h>

namespace ig {

/// The platform without surfaces first; where a driver lacks it, the first device that works.
bool HeadlessContext::create() {
    useDriver();
    if (epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless") &&
        open(eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)))
        return true;
    if (epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_platform_device")) {
        EGLDeviceEXT devices[16];
        EGLint count = 0;
        if (eglQueryDevicesEXT(16, devices, &count))
            for (EGLint i = 0; i < count; i++)
                if (open(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr)))
                    return true;
    }
    jLog::error("RendererGL: no OpenGL 3.3 without a display here (EGL offers no surfaceless "
                "platform and no device that has it)");
    return false;
}

bool HeadlessContext::open(void* display) {
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr)) return false;
    const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                 3,
                                 EGL_CONTEXT_MINOR_VERSION,
                                 3,
                                 EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                 EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                 EGL_NONE};
    EGLContext context = EGL_NO_CONTEXT;
    if (eglBindAPI(EGL_OPENGL_API))
        context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes);
    if (context != EGL_NO_CONTEXT &&
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context)) {
        m_display = display;
        m_context = context;
        return true;
    }
    if (context != EGL_NO_CONTEXT) eglDestroyContext(display, context);
    eglTerminate(display);
    return false;
}

void HeadlessContext::destroy() {
    if (!m_context) return;
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(m_display, m_context);
    eglTerminate(m_display);
    m_context = m_display = nullptr;
}

} // namespace ig
