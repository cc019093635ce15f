// SPDX-License-Identifier: MIT

// What pictures of the demo scene cost on this machine's driver, 640 × 360
// pixels, against filling as many pixels from a texture: the least that any
// picture costs. With milliseconds for each pass.

#include "ratio.h"
#include "render/gl/RendererGL.h"
#include "scenes.h"

#include <epoxy/gl.h>
#include <map>
#include <optional>

namespace {

using namespace ig;

constexpr int WIDTH = 640, HEIGHT = 360;

/// Fills a picture of that size from a texture of 256 × 256 texels. Needs the
/// renderer's context.
class TexturedFill {
public:
    TexturedFill() {
        m_program = glCreateProgram();
        attach(GL_VERTEX_SHADER, "#version 330 core\nout vec2 uv;\nvoid main() {\n"
                                 "vec2 p = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 2.0;\n"
                                 "uv = p; gl_Position = vec4(p * 2.0 - 1.0, 0, 1); }\n");
        attach(GL_FRAGMENT_SHADER, "#version 330 core\nin vec2 uv;\nout vec4 color;\n"
                                   "uniform sampler2D uPicture;\n"
                                   "void main() { color = texture(uPicture, uv); }\n");
        glLinkProgram(m_program);
        const std::vector<std::uint8_t> grey(256 * 256 * 4, 128);
        glGenTextures(2, m_textures);
        makeTexture(m_textures[0], 256, 256, grey.data());
        makeTexture(m_textures[1], WIDTH, HEIGHT, nullptr);
        glGenFramebuffers(1, &m_target);
        glBindFramebuffer(GL_FRAMEBUFFER, m_target);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_textures[1],
                               0);
        glGenVertexArrays(1, &m_vertex_array);
    }
    ~TexturedFill() {
        glDeleteVertexArrays(1, &m_vertex_array);
        glDeleteFramebuffers(1, &m_target);
        glDeleteTextures(2, m_textures);
        glDeleteProgram(m_program);
    }
    void draw() const {
        glBindFramebuffer(GL_FRAMEBUFFER, m_target);
        glViewport(0, 0, WIDTH, HEIGHT);
        glDisable(GL_DEPTH_TEST);
        glUseProgram(m_program);
        glBindVertexArray(m_vertex_array);
        glActiveTexture(GL_TEXTURE0);
        GLint before = 0; // the renderer keeps the sky's map there
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &before);
        glBindTexture(GL_TEXTURE_2D, m_textures[0]);
        glDrawArrays(GL_TRIANGLES, 0, 3);
        glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(before));
        glFinish();
    }

private:
    void attach(GLenum stage, const char* source) const {
        const GLuint shader = glCreateShader(stage);
        glShaderSource(shader, 1, &source, nullptr);
        glCompileShader(shader);
        glAttachShader(m_program, shader);
        glDeleteShader(shader);
    }
    static void makeTexture(GLuint texture, int width, int height, const void* pixels) {
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     pixels);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    }
    GLuint m_program = 0, m_textures[2] = {}, m_target = 0, m_vertex_array = 0;
};

/// A show and the renderer that draws it. Skips the benchmark where there is no OpenGL.
struct Stage {
    Stage(benchmark::State& state, bool over_sea) {
        if (over_sea) show.hoverOverSea();
        if (!renderer.init(WIDTH, HEIGHT)) state.SkipWithError("no OpenGL here");
    }
    void draw() { renderer.render(*show.world, show.camera, show.picture); }

    Show show{WIDTH, HEIGHT};
    RendererGL renderer{RendererGL::Surface::none};
};

/// From the beginning of the renderer to the end of its first picture: at most 2 s are allowed,
/// with the driver's caches warm.
void firstPicture(benchmark::State& state) {
    Show show(WIDTH, HEIGHT);
    for (auto _ : state) {
        RendererGL renderer(RendererGL::Surface::none);
        if (!renderer.init(WIDTH, HEIGHT)) state.SkipWithError("no OpenGL here");
        renderer.render(*show.world, show.camera, show.picture);
    }
}
BENCHMARK(firstPicture)->Iterations(3)->Unit(benchmark::kMillisecond);

/// A picture against the fill. On the software renderer at most 100 ms are allowed, with nothing
/// else running on two cores. `cpu_ms`: of all threads together, which other load doesn't change.
void picture(benchmark::State& state, bool over_sea) {
    Stage stage(state, over_sea);
    PairedTimes times;
    CpuTimes cpu(CLOCK_PROCESS_CPUTIME_ID), fill_cpu(CLOCK_PROCESS_CPUTIME_ID);
    std::optional<TexturedFill> fill;
    for (auto _ : state) {
        if (!fill) fill.emplace();
        stage.show.advance();
        times.measure([&] { cpu.measure([&] { stage.draw(); }); },
                      [&] { fill_cpu.measure([&] { fill->draw(); }); });
    }
    if (!fill) return;
    times.report(state);
    state.counters["cpu_ms"] = cpu.getMedian() * 1e3;
    state.counters["floor_cpu_ms"] = fill_cpu.getMedian() * 1e3;
    state.SetLabel(stage.renderer.getDevice().c_str());
}
BENCHMARK_CAPTURE(picture, over_pad, false)->Iterations(60)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(picture, over_sea, true)->Iterations(60)->Unit(benchmark::kMillisecond);

/// What trees and houses add to a picture, in processor time of all threads: at most 1.5 ms are
/// allowed over the pad. Spells with and without them go in turn, so that both see the same
/// machine; in each the first pictures don't count, while shadows are drawn anew.
void scenery(benchmark::State& state, double metres_up) {
    constexpr int SPELL = 24, SETTLING = 8;
    Stage stage(state, false);
    stage.show.advance();
    Camera above; // the pad, looking to the woods
    above.setPerspective(50, static_cast<double>(WIDTH) / HEIGHT, 0.1, 1e7);
    above.setWgsPosition({-155.06251, 19.71246, metres_up});
    above.setWgsHPR({225, 10, 0});
    const Camera& eye = metres_up > 0 ? above : stage.show.camera;
    Node* node = stage.show.world->getNodeByName("scenery");
    CpuTimes with(CLOCK_PROCESS_CPUTIME_ID), without(CLOCK_PROCESS_CPUTIME_ID);
    int number = 0;
    for (auto _ : state) {
        const bool is_shown = number / SPELL % 2 == 0, counts = number % SPELL >= SETTLING;
        number++;
        node->setEnabled(is_shown);
        stage.show.advance();
        const auto draw = [&] {
            stage.renderer.render(*stage.show.world, eye, stage.show.picture);
        };
        counts ? (is_shown ? with : without).measure(draw) : draw();
    }
    state.counters["with_ms"] = with.getMedian() * 1e3;
    state.counters["without_ms"] = without.getMedian() * 1e3;
    state.counters["difference_ms"] = (with.getMedian() - without.getMedian()) * 1e3;
}
BENCHMARK_CAPTURE(scenery, over_pad, 0)->Iterations(480)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scenery, up_50_m, 50)->Iterations(480)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scenery, up_300_m, 300)->Iterations(480)->Unit(benchmark::kMillisecond);

/// Milliseconds of each pass, the median of many pictures; the device is waited for after each.
void passes(benchmark::State& state, bool over_sea) {
    Stage stage(state, over_sea);
    stage.renderer.setProfiling(true);
    std::map<std::string, std::vector<double>> times;
    for (auto _ : state) {
        stage.show.advance();
        stage.draw();
        for (const PassTime& pass : stage.renderer.getPassTimes())
            times[pass.name].push_back(pass.milliseconds);
    }
    for (const auto& [name, values] : times)
        state.counters[name] = median(values);
}
BENCHMARK_CAPTURE(passes, over_pad, false)->Iterations(60)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(passes, over_sea, true)->Iterations(60)->Unit(benchmark::kMillisecond);

} // namespace
