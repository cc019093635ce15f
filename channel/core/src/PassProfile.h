// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Milliseconds that each of the renderer's passes took, over a whole run: the mean of all frames
/// and the worst. A pass that some frames lack counts as nothing in them.
class PassProfile {
public:
    /// The last frame's passes (`Renderer::getPassTimes`); none: the frame isn't counted.
    void addFrame(std::span<const ig::PassTime> passes) {
        if (passes.empty()) return;
        m_frames++;
        for (const ig::PassTime& pass : passes) {
            auto entry = std::ranges::find(m_passes, std::string_view(pass.name), &Pass::name);
            if (entry == m_passes.end())
                entry = m_passes.insert(entry, {std::string_view(pass.name), 0, 0});
            entry->sum += pass.milliseconds;
            entry->worst = std::max(entry->worst, pass.milliseconds);
        }
    }

    /// A line for each pass, in the order in which they came; empty when none was measured.
    std::string getSummary() const {
        std::string text;
        char line[80];
        for (const Pass& pass : m_passes) {
            std::snprintf(line, sizeof line, "  %-12.*s %7.2f ms mean, %7.2f ms worst\n",
                          static_cast<int>(pass.name.size()), pass.name.data(), pass.sum / m_frames,
                          pass.worst);
            text += line;
        }
        return text;
    }

private:
    struct Pass {
        std::string_view name; ///< a literal of the renderer
        double sum, worst;     ///< ms
    };
    std::vector<Pass> m_passes;
    int m_frames = 0;
};
