// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"
#include "ig/math/mat.h"

#include <epoxy/gl.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ig::gl {

/// How many objects of each kind this process holds, for the check that all are freed.
RenderResources& resources();
/// How many it has made so far.
RenderResources& made();

enum class Kind { buffer, texture, vertex_array, framebuffer };

/// Owns one name of OpenGL; empty until `create`. Needs the context that made it to be current when
/// it goes.
template <Kind kind>
class Object {
public:
    Object() = default;
    Object(Object&& other) noexcept : m_id(std::exchange(other.m_id, 0)) {}
    Object& operator=(Object&& other) noexcept {
        std::swap(m_id, other.m_id);
        return *this;
    }
    ~Object() { destroy(); }

    void create(); ///< destroys what it held
    void destroy();
    GLuint getId() const { return m_id; }
    explicit operator bool() const { return m_id != 0; }

private:
    GLuint m_id = 0;
};
using Buffer = Object<Kind::buffer>;
using Texture = Object<Kind::texture>;
using VertexArray = Object<Kind::vertex_array>;
using Framebuffer = Object<Kind::framebuffer>;

struct TextureFormat {
    GLint internal = GL_RGBA8;
    GLenum format = GL_RGBA, type = GL_UNSIGNED_BYTE;
    GLint wrap = GL_CLAMP_TO_EDGE;
    GLint filter = GL_LINEAR; ///< for minification; magnification is linear unless this is nearest
};
/// A texture of level 0 with `pixels`, which may be null. One that there is already gets another
/// size and content.
void makeTexture(Texture& texture, int width, int height, const TextureFormat& format,
                 const void* pixels = nullptr);
void bindTexture(int unit, const Texture& texture);
/// Makes the framebuffer anew, with nothing but that texture, and leaves it bound.
void attach(Framebuffer& target, const Texture& texture, GLenum point = GL_COLOR_ATTACHMENT0);
/// Gives the buffer what is drawn from it in this frame, and leaves both bound.
void stream(const VertexArray& array, const Buffer& buffer, std::span<const std::byte> data);

/// A vertex array with vertices and indices that never change, all made here; left bound, for the
/// caller to tell the attributes.
void makeVertexArray(VertexArray& array, Buffer& vertices, std::span<const std::byte> vertex_data,
                     Buffer& indices, std::span<const std::byte> index_data);

/// Whether the library has a shader file of that name.
bool hasShader(std::string_view name);

/// A sampler of a program's text, and the texture unit that it reads from.
struct Sampler {
    const char* name;
    int unit;
};

/// A linked pair of shaders.
class Program {
public:
    Program() = default;
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() { destroy(); }

    /// Has it made from shader files of the library, and returns before it is: a driver may work on
    /// several at a time. Nothing else may be done with it before `finish`. Each name may list
    /// several files, separated by blanks, whose texts follow one another. `words`, too, are
    /// separated by blanks: both shaders find them defined, so that one text serves several
    /// programs, and none pays for what it isn't asked for: some drivers run all branches whatever
    /// holds.
    void start(std::string_view vertex_files, std::string_view fragment_files,
               std::string_view words = {}, std::vector<Sampler> samplers = {});
    /// Waits until it is made. False, having logged files and driver's message.
    bool finish();
    void destroy();
    void use() const { glUseProgram(m_id); }
    explicit operator bool() const { return m_id != 0; }

    // Uniforms of the program in use; one that the shader doesn't use is ignored.
    void set(const char* name, int value);
    void set(const char* name, float value);
    void set(const char* name, vec2 value);
    void set(const char* name, const vec3& value);
    void set(const char* name, const vec4& value);
    void set(const char* name, const vec4* values, int count);
    /// Looked up anew: for names that the program doesn't outlive. −1 for one that isn't used.
    GLint find(const char* name) const { return glGetUniformLocation(m_id, name); }

private:
    GLint locate(const char* name);
    void dropShaders();

    GLuint m_id = 0, m_vertex = 0, m_fragment = 0; ///< the shaders until `finish`
    std::string m_vertex_files, m_fragment_files;
    std::vector<Sampler> m_samplers; ///< until `finish`
    std::vector<std::pair<const char*, GLint>> m_locations;
};

/// Finishes all programs that have been started. False when one of them failed.
bool finishPrograms();

/// Binding points of the blocks `Frame` and `Lights`.
constexpr GLuint FRAME_BLOCK = 0, LIGHT_BLOCK = 1;

/// Texture units, the same in every pass.
enum Unit {
    UNIT_SKY,
    UNIT_SKY_CLEAR,
    UNIT_CLOUDS,
    UNIT_SHADOW,
    UNIT_HILLS,
    UNIT_NOISE,
    UNIT_LIGHTS,
    UNIT_FIRST_OWN
};

/// Whether depth can be clipped to 0..1 (`glClipControl`); the shaders' common head and the
/// projection follow it.
bool hasClipControl();

} // namespace ig::gl
