// SPDX-License-Identifier: MIT
#include "GlObjects.h"

#include "ig/base/jLog.h"

#include <cstring>
#include <string>

namespace ig::gl {

namespace {

struct ShaderSource {
    std::string_view name, text;
};
const ShaderSource SHADERS[] = {
#include "ShaderSources.inc"
};

std::string_view findShader(std::string_view name) {
    for (const ShaderSource& source : SHADERS)
        if (source.name == name) return source.text;
    return {};
}

int& count(RenderResources& r, Kind kind) {
    switch (kind) {
    case Kind::buffer:
        return r.buffers;
    case Kind::texture:
        return r.textures;
    case Kind::vertex_array:
        return r.vertex_arrays;
    case Kind::framebuffer:
        return r.framebuffers;
    }
    return r.buffers;
}

/// Programs that have been started and not finished.
std::vector<Program*>& unfinished() {
    static std::vector<Program*> programs;
    return programs;
}

/// Calls `use` with each of the words that blanks separate.
template <typename Use>
void forEachWord(std::string_view words, const Use& use) {
    for (std::size_t at = 0; at < words.size();) {
        const std::size_t end = std::min(words.find(' ', at), words.size());
        if (end > at) use(words.substr(at, end - at));
        at = end + 1;
    }
}

/// Head of every shader, constants, frame and common declarations, and the files.
GLuint startShader(GLenum stage, std::string_view files, std::string_view words) {
    std::string text = "#version 330 core\n";
    forEachWord(words,
                [&](std::string_view word) { text.append("#define ").append(word) += '\n'; });
    text += hasClipControl() ? "#define CLIP_Z(z) (z)\n" : "#define CLIP_Z(z) ((z) * 2.0 - 1.0)\n";
    for (const char* common : {"constants.glsl", "frame.glsl", "common.glsl"})
        text += findShader(common);
    forEachWord(files, [&](std::string_view file) { text += findShader(file); });
    const GLuint shader = glCreateShader(stage);
    const char* source = text.c_str();
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

/// Waits for it; logs what is wrong with it.
bool isCompiled(GLuint shader, const std::string& files) {
    GLint good = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &good);
    if (good) return true;
    char log[2048] = "";
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    jLog::error("RendererGL: shader \"%s\": %s", files.c_str(), log);
    return false;
}

bool isLinked(GLuint program, const std::string& vertex_files, const std::string& fragment_files) {
    GLint good = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &good);
    if (good) return true;
    char log[2048] = "";
    glGetProgramInfoLog(program, sizeof log, nullptr, log);
    jLog::error("RendererGL: shaders \"%s\" and \"%s\": %s", vertex_files.c_str(),
                fragment_files.c_str(), log);
    return false;
}

} // namespace

RenderResources& resources() {
    static RenderResources counts;
    return counts;
}

RenderResources& made() {
    static RenderResources counts;
    return counts;
}

bool hasClipControl() {
    return epoxy_gl_version() >= 45 || epoxy_has_gl_extension("GL_ARB_clip_control");
}

// ------------------------------------------------------------------ objects

template <Kind kind>
void Object<kind>::create() {
    destroy();
    if constexpr (kind == Kind::buffer) glGenBuffers(1, &m_id);
    if constexpr (kind == Kind::texture) glGenTextures(1, &m_id);
    if constexpr (kind == Kind::vertex_array) glGenVertexArrays(1, &m_id);
    if constexpr (kind == Kind::framebuffer) glGenFramebuffers(1, &m_id);
    count(resources(), kind)++;
    count(made(), kind)++;
}

template <Kind kind>
void Object<kind>::destroy() {
    if (!m_id) return;
    if constexpr (kind == Kind::buffer) glDeleteBuffers(1, &m_id);
    if constexpr (kind == Kind::texture) glDeleteTextures(1, &m_id);
    if constexpr (kind == Kind::vertex_array) glDeleteVertexArrays(1, &m_id);
    if constexpr (kind == Kind::framebuffer) glDeleteFramebuffers(1, &m_id);
    m_id = 0;
    count(resources(), kind)--;
}

template class Object<Kind::buffer>;
template class Object<Kind::texture>;
template class Object<Kind::vertex_array>;
template class Object<Kind::framebuffer>;

void makeTexture(Texture& texture, int width, int height, const TextureFormat& format,
                 const void* pixels) {
    if (!texture) texture.create(); // else it is the same in another size
    glActiveTexture(GL_TEXTURE0 + UNIT_FIRST_OWN);
    glBindTexture(GL_TEXTURE_2D, texture.getId());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, format.internal, width, height, 0, format.format, format.type,
                 pixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, format.wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, format.wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, format.filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
                    format.filter == GL_NEAREST ? GL_NEAREST : GL_LINEAR);
}

void bindTexture(int unit, const Texture& texture) {
    glActiveTexture(GL_TEXTURE0 + unit);
    glBindTexture(GL_TEXTURE_2D, texture.getId());
}

void attach(Framebuffer& target, const Texture& texture, GLenum point) {
    target.create();
    glBindFramebuffer(GL_FRAMEBUFFER, target.getId());
    glFramebufferTexture2D(GL_FRAMEBUFFER, point, GL_TEXTURE_2D, texture.getId(), 0);
}

void stream(const VertexArray& array, const Buffer& buffer, std::span<const std::byte> data) {
    glBindVertexArray(array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, buffer.getId());
    glBufferData(GL_ARRAY_BUFFER, data.size(), data.data(), GL_STREAM_DRAW);
}

void makeVertexArray(VertexArray& array, Buffer& vertices, std::span<const std::byte> vertex_data,
                     Buffer& indices, std::span<const std::byte> index_data) {
    array.create();
    vertices.create();
    indices.create();
    glBindVertexArray(array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, vertices.getId());
    glBufferData(GL_ARRAY_BUFFER, vertex_data.size(), vertex_data.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices.getId());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, index_data.size(), index_data.data(), GL_STATIC_DRAW);
}

// ------------------------------------------------------------------ programs

bool hasShader(std::string_view name) { return !findShader(name).empty(); }

void Program::start(std::string_view vertex_files, std::string_view fragment_files,
                    std::string_view words, std::vector<Sampler> samplers) {
    destroy();
    m_vertex_files = vertex_files;
    m_fragment_files = fragment_files;
    m_samplers = std::move(samplers);
    m_vertex = startShader(GL_VERTEX_SHADER, vertex_files, words);
    m_fragment = startShader(GL_FRAGMENT_SHADER, fragment_files, words);
    m_id = glCreateProgram();
    resources().programs++;
    made().programs++;
    glAttachShader(m_id, m_vertex);
    glAttachShader(m_id, m_fragment);
    glLinkProgram(m_id);
    unfinished().push_back(this);
}

bool Program::finish() {
    std::erase(unfinished(), this);
    const bool good = isCompiled(m_vertex, m_vertex_files) &&
                      isCompiled(m_fragment, m_fragment_files) &&
                      isLinked(m_id, m_vertex_files, m_fragment_files);
    dropShaders();
    if (!good) return false;
    for (const auto& [name, binding] : {std::pair("Frame", FRAME_BLOCK), {"Lights", LIGHT_BLOCK}}) {
        const GLuint block = glGetUniformBlockIndex(m_id, name);
        if (block != GL_INVALID_INDEX) glUniformBlockBinding(m_id, block, binding);
    }
    use();
    set("uSkyMap", UNIT_SKY);
    set("uClearSky", UNIT_SKY_CLEAR);
    set("uCloudField", UNIT_CLOUDS);
    set("uShadowMap", UNIT_SHADOW);
    set("uHillMap", UNIT_HILLS);
    set("uNoise", UNIT_NOISE);
    set("uLightCells", UNIT_LIGHTS);
    for (const Sampler& sampler : std::exchange(m_samplers, {}))
        set(sampler.name, sampler.unit);
    return true;
}

void Program::dropShaders() {
    for (GLuint* shader : {&m_vertex, &m_fragment})
        if (*shader) glDeleteShader(std::exchange(*shader, 0));
}

void Program::destroy() {
    if (!m_id) return;
    std::erase(unfinished(), this);
    dropShaders();
    glDeleteProgram(m_id);
    m_id = 0;
    m_locations.clear();
    resources().programs--;
}

bool finishPrograms() {
    bool good = true;
    while (!unfinished().empty())
        good &= unfinished().front()->finish();
    return good;
}

GLint Program::locate(const char* name) {
    for (const auto& [known, location] : m_locations)
        if (known == name || std::strcmp(known, name) == 0) return location;
    m_locations.emplace_back(name, glGetUniformLocation(m_id, name));
    return m_locations.back().second;
}

void Program::set(const char* name, int value) { glUniform1i(locate(name), value); }
void Program::set(const char* name, float value) { glUniform1f(locate(name), value); }
void Program::set(const char* name, vec2 value) { glUniform2fv(locate(name), 1, &value.x); }
void Program::set(const char* name, const vec3& value) { glUniform3fv(locate(name), 1, &value.x); }
void Program::set(const char* name, const vec4& value) { glUniform4fv(locate(name), 1, &value.x); }
void Program::set(const char* name, const vec4* values, int number) {
    glUniform4fv(locate(name), number, &values->x);
}

} // namespace ig::gl
