// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

#include <map>
#include <string>

namespace ig {

class jString;
class Material;

/// Sends a finished picture through a post-process material (`RPost`). The material NAME goes
/// with the fragment shader NAME.frag; each of the material's sliders and values is the uniform
/// `vec4` of its tag, each of its states the `int` of its name. A shader also gets
///
///     uniform sampler2D uPicture; uniform vec2 uSize; // of the result, pixels
///     uniform float uSceneTime;                       // seconds
///
/// A material may say what it needs of the incoming picture, which then need not be drawn whole:
/// the value "reads" is the part of it (left, bottom, right, top, 0 to 1) that makes a square
/// result, wider ones needing more to the sides; the slider "detail" its texels per pixel of the
/// result, along an edge.
class PostPass {
public:
    struct Input { ///< what a material needs
        vec4 part{0, 0, 1, 1};
        float detail = 1;
    };
    void init();
    /// For a result of that width over height; all, as it is, without such a material.
    Input getInput(const jString& name, float aspect) const;
    /// From `picture` onto the bound framebuffer of that size. False when there is no such
    /// material or shader, having logged that once; nothing is drawn then.
    bool draw(const jString& name, const gl::Texture& picture, int width, int height, double time);

private:
    gl::Program* find(const jString& name);
    static void setParameters(const gl::Program& program, const Material& material);

    gl::VertexArray m_empty;
    std::map<std::string, gl::Program, std::less<>> m_programs; ///< empty ones: there is no such
};

} // namespace ig
