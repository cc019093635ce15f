// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "OceanTiles.h"
#include "render/scene/PictureRect.h"

#include <cmath>
#include <vector>

namespace ig {

class GlintList;
class LightList;
class Targets;
class WakePass;
struct OceanFrame;

/// Draws the sea from the very arrays that queries read, so that what floats sits in the water
/// that one sees: a fan of small triangles finds which water a pixel shows, and then each pixel is
/// shaded once.
class OceanPass {
public:
    /// `quick`: fewer triangles and looks, for a renderer without a graphics processor.
    void init(bool quick);

    /// Brings the waves to the device when they have changed.
    void upload(const OceanFrame& frame) { m_tiles.upload(frame); }
    /// The next sea is again the first.
    void forget() { m_tiles.forget(); }
    struct Drawing {
        const FrameView& view;
        const OceanFrame& frame;
        const std::vector<vec4>& downdraughts; ///< as the `SceneList` has them; the nearest show
        PictureRect shadows;                   ///< where shadows may lie on the water
        const LightList& lights;
        const GlintList& glints;
        const WakePass& wakes;
        const Targets& targets;
        float land; ///< m around the eye where it hides all water
    };
    /// Finds the water that one sees and marks its pixels. What is drawn opaque from now on until
    /// `shade` takes the mark away where it lies before water: so that of what water hides, the bed
    /// of all shallow sea, no pixel is shaded.
    void cover(const Drawing& drawing);
    /// Shades where the mark has remained. Both leave the targets' scene bound.
    void shade(const Drawing& drawing);

private:
    /// Programs that shade; what a word leaves out costs nothing.
    enum Shade {
        LIT,
        SHADOWED,
        SHADED, // where no downwash is
        BLOWN,
        WITH_WAKES,
        OPEN,
        STORM_LIT,
        STORM_SHADOWED,
        STORM,
        NUM_SHADES
    };
    struct Fan { ///< part of the sea around the eye that the view can see
        float azimuth, azimuth_range, steepest, flattest, row_height;
        int first_band;                   ///< that shows; nearer ones lie below land
        float getRange(float row) const { ///< m; `row`: 0 to 1 of all
            return row_height / std::tan(std::lerp(steepest, flattest, row));
        }
    };

    void makeGrid();
    static Fan fitFan(const FrameView& view, const OceanFrame& frame);
    float getBandStart(int band) const;
    void leaveOutLand(Fan& fan, const Drawing& drawing) const;
    PictureRect findSea(const Fan& fan, const Drawing& drawing) const;
    static void setPlane(gl::Program& program, const FrameView& view, const OceanFrame& frame);
    void drawFan(const Fan& fan, const Drawing& drawing);
    static vec2 findStorm(const OceanFrame& frame);
    void setSurface(gl::Program& program, const FrameView& view, const OceanFrame& frame);
    static void setEffects(gl::Program& program, const std::vector<vec4>& downdraughts,
                           const WakePass& wakes);
    static PictureRect findDownwash(const FrameView& view, const OceanFrame& frame,
                                    const std::vector<vec4>& downdraughts);
    void findLit(const Drawing& drawing);
    static void setGlints(gl::Program& program, const GlintList& list);
    void shade(Shade which, PictureRect rect, const Drawing& drawing);
    void shadeAll(const Drawing& drawing);

    int m_columns = 0, m_rows = 0;
    std::vector<int> m_bands; ///< first index of each band of rows, near ones first, and the end
    PictureRect m_sea;        ///< outside it the frame's fan leaves no mark
    gl::Program m_fan, m_raised_fan, m_shades[NUM_SHADES];
    gl::VertexArray m_vertex_array, m_empty;
    gl::Buffer m_vertices, m_indices;
    OceanTiles m_tiles;
    PictureParts m_lit; ///< where lamps or fires light the water, or it mirrors them
};

} // namespace ig
