// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/Function.h"
#include "ig/base/jString.h"
#include "ig/ui/UIElement.h"

namespace ig {

class Camera;
class World;

/// Which picture a viewport shows.
enum VISION_MODE {
    VISION_PLAIN = 0,
    /// What a weather radar sees: echoes of land, ships, sea clutter and precipitation, their
    /// strength scaled by the engine's `ENVIRONMENT_SENSOR_GAIN` while the picture is drawn.
    VISION_RADAR = 3,
};

/// A second view of a world, drawn into the user interface. The renderer finds the viewports in
/// `UIRoot::getViewports`, draws those that are not hidden, at a rate of its choice and between
/// `beginUpdate` and `endUpdate`, into a picture of its own, and shows it where the draw list says.
///
/// World and camera are not owned; they must outlive the viewport or be set to null.
class UISpriteViewport : public UIElement {
public:
    UISpriteViewport(UIRoot* root, int width, int height);
    ~UISpriteViewport() override;

    /// Unique in the root, from 1.
    int getId() const { return m_id; }
    void setWorld(const World* world) { m_world = world; }
    const World* getWorld() const { return m_world; }
    void setCamera(const Camera* camera) { m_camera = camera; }
    const Camera* getCamera() const { return m_camera; }
    /// A `VISION_MODE`.
    void setVisionMode(int mode) { m_vision_mode = mode; }
    int getVisionMode() const { return m_vision_mode; }
    /// Name of the post-process material that the picture passes through (`RPost`); empty: none.
    void setPostMaterials(const jString& names) { m_post_materials = names; }
    const jString& getPostMaterials() const { return m_post_materials; }

    void beginUpdate() { emit(m_sig_update_begin, this); }
    void endUpdate() { emit(m_sig_update_end, this); }

    SignalList<UISpriteViewport*> m_sig_update_begin; ///< its picture is about to be drawn
    SignalList<UISpriteViewport*> m_sig_update_end;   ///< its picture has been drawn

    void draw(UiDrawList& list) const override;

protected:
    void measure(int& width, int& height) const override;

private:
    int m_id;
    int m_natural_width, m_natural_height; ///< units of the set-up
    int m_vision_mode = VISION_PLAIN;
    const World* m_world = nullptr;
    const Camera* m_camera = nullptr;
    jString m_post_materials;
};

} // namespace ig
