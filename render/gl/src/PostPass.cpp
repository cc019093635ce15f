// SPDX-License-Identifier: MIT
#include "PostPass.h"

#include "ig/base/jLog.h"
#include "ig/scene/Material.h"
#include "ig/scene/RPost.h"
#include "render/scene/SurfaceLook.h"

#include <algorithm>
#include <cmath>

namespace ig {

void PostPass::init() { m_empty.create(); }

/// Null when the library has no such shader.
gl::Program* PostPass::find(const jString& name) {
    const auto [entry, is_new] = m_programs.try_emplace(name.c_str());
    gl::Program& program = entry->second;
    if (is_new) {
        const std::string shader = entry->first + ".frag";
        if (!gl::hasShader(shader))
            jLog::error("PostPass::find: there is no shader for the post-process material \"%s\"",
                        name.c_str());
        else if (program.start("screen.vert", shader); !program.finish())
            program.destroy();
    }
    return program ? &program : nullptr;
}

PostPass::Input PostPass::getInput(const jString& name, float aspect) const {
    Input input;
    Material* material =
        RPost::GetMaterial(name, this, {"render/gl/PostPass", "PostPass::getInput"});
    if (!material) return input;
    const float detail = readSlider(material, "detail", 1);
    if (std::isfinite(detail)) input.detail = std::clamp(detail, 0.25f, 4.0f);
    const vec4 part = readValue(material, "reads", input.part);
    const auto limit = [](float place) { return std::clamp(place, 0.0f, 1.0f); };
    input.part = {limit(0.5f - (0.5f - part.x) * aspect), limit(part.y),
                  limit(0.5f + (part.z - 0.5f) * aspect), limit(part.w)};
    RPost::FreeMaterial(material, this);
    return input;
}

void PostPass::setParameters(const gl::Program& program, const Material& material) {
    for (int i = 0; i < material.getNumParameters(); i++) {
        const vec4 value = material.getParameterValue(i);
        glUniform4fv(program.find(material.getParameterTag(i).c_str()), 1, &value.x);
    }
    for (int i = 0; i < material.getNumStates(); i++)
        glUniform1i(program.find(material.getStateName(i).c_str()), material.getStateValue(i));
}

bool PostPass::draw(const jString& name, const gl::Texture& picture, int width, int height,
                    double time) {
    Material* material = RPost::GetMaterial(name, this, {"render/gl/PostPass", "PostPass::draw"});
    gl::Program* program = material ? find(name) : nullptr;
    if (program) {
        program->use();
        program->set("uPicture", gl::UNIT_FIRST_OWN);
        program->set("uSize", vec2{static_cast<float>(width), static_cast<float>(height)});
        program->set("uSceneTime", static_cast<float>(time));
        setParameters(*program, *material);
        gl::bindTexture(gl::UNIT_FIRST_OWN, picture);
        glViewport(0, 0, width, height);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_BLEND);
        glBindVertexArray(m_empty.getId());
        glDrawArrays(GL_TRIANGLES, 0, 3);
    }
    if (material) RPost::FreeMaterial(material, this);
    return program != nullptr;
}

} // namespace ig
