// SPDX-License-Identifier: MIT
#include "testkit/CountingDriver.h"

#include <epoxy/gl.h>
#include <type_traits>

namespace {

using Counts = CountingDriver::Counts;

template <class R, class... A>
R countCall(A...) {
    CountingDriver::counts().calls++;
    if constexpr (!std::is_void_v<R>) return R();
}

GLuint g_program = 0; ///< in use

void countDraw(GLsizei instances) {
    Counts& c = CountingDriver::counts();
    c.programs.insert(g_program);
    c.calls++;
    c.draws++;
    c.instances += instances;
}

void countBytes(GLsizeiptr bytes) {
    CountingDriver::counts().calls++;
    CountingDriver::counts().bytes += bytes;
}

void makeNames(GLsizei count, GLuint* names) {
    static GLuint last = 0;
    CountingDriver::counts().calls++;
    for (GLsizei i = 0; i < count; i++)
        names[i] = ++last;
}

const GLubyte* tellString(GLenum) { return reinterpret_cast<const GLubyte*>("4.6 counting"); }

/// The library's pointers to the driver's functions, each put back at the end.
template <class F>
void replace(std::vector<std::function<void()>>& restore, F*& entry, std::type_identity_t<F>* by) {
    restore.push_back([&entry, before = entry] { entry = before; });
    entry = by;
}
template <class R, class... A>
void countCalls(std::vector<std::function<void()>>& restore, R (*&entry)(A...)) {
    replace(restore, entry, &countCall<R, A...>);
}

} // namespace

CountingDriver::Counts& CountingDriver::counts() {
    static Counts counts;
    return counts;
}

CountingDriver::CountingDriver() {
#define GL_CALL(name) countCalls(m_restore, name);
#include "GlCalls.inc"
#undef GL_CALL
    const auto set = [this](auto& entry, auto by) {
        replace<std::remove_pointer_t<std::remove_reference_t<decltype(entry)>>>(m_restore, entry,
                                                                                 by);
    };
    set(glGetString, tellString);
    set(glGetIntegerv, [](GLenum name, GLint* value) {
        *value = name == GL_MAX_TEXTURE_SIZE ? 16384 : 0; // no extension either
    });
    for (auto* entry : {&glGenBuffers, &glGenTextures, &glGenVertexArrays, &glGenFramebuffers})
        set(*entry, makeNames);
    for (auto* entry : {&glGetShaderiv, &glGetProgramiv})
        set(*entry, [](GLuint, GLenum, GLint* value) { *value = GL_TRUE; });
    set(glCreateShader, [](GLenum) -> GLuint { return 1; });
    set(glCreateProgram, []() -> GLuint {
        static GLuint last = 0;
        return ++last;
    });
    set(glUseProgram, [](GLuint program) { g_program = program; });
    set(glCheckFramebufferStatus, [](GLenum) -> GLenum { return GL_FRAMEBUFFER_COMPLETE; });
    set(glBufferData, [](GLenum, GLsizeiptr size, const void*, GLenum) { countBytes(size); });
    set(glBufferSubData, [](GLenum, GLintptr, GLsizeiptr size, const void*) { countBytes(size); });
    set(glDrawArrays, [](GLenum, GLint, GLsizei) { countDraw(1); });
    set(glDrawElements, [](GLenum, GLsizei, GLenum, const void*) { countDraw(1); });
    set(glDrawArraysInstanced,
        [](GLenum, GLint, GLsizei, GLsizei instances) { countDraw(instances); });
    set(glDrawElementsInstanced,
        [](GLenum, GLsizei, GLenum, const void*, GLsizei instances) { countDraw(instances); });
    set(glDrawElementsInstancedBaseInstance,
        [](GLenum, GLsizei, GLenum, const void*, GLsizei instances, GLuint) {
            countDraw(instances);
        });
}

CountingDriver::~CountingDriver() {
    for (auto restore = m_restore.rbegin(); restore != m_restore.rend(); ++restore)
        (*restore)();
}
