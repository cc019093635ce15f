// SPDX-License-Identifier: MIT

// The smallest scene logic that shows what the application asks of one: a world, something that the
// picture is about, a camera, a key and a button. It knows no helicopter and has no link.

#include "common/logic/LogicBase.h"
#include "ig/app/Engine.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UIRoot.h"

#include <cmath>

using namespace ig;

namespace {

constexpr double RADIUS = 12, HEIGHT = 3; ///< m; of the camera's way about the buoy, and above it
constexpr double TURN = 20;               ///< degrees per second
constexpr double DRIFT = 2;               ///< m/s, eastwards

class SecondLogic final : public LogicBase {
public:
    using LogicBase::LogicBase;

    jString getWorldPath() override { return "second/second.world"; }
    jString getStartNode() override { return "harbour"; }

    bool init() override {
        const Node* start = m_world->getNodeByName(getStartNode());
        if (!start) return false;
        m_frame = start->getWorldTransform();
        m_buoy = new ObjectPrefab("second/buoy.prefab");
        m_world->addNode(m_buoy);
        m_buoy->setWorldTransform(m_frame);
        emit(m_sig_prefab_added, m_buoy, true);
        if (UIRoot* ui = Engine::get()->getApp()->getUIRoot()) {
            auto* anchor = new UIButton(ui, "Anchor");
            anchor->m_sig_click.append({this, &SecondLogic::onAnchor});
            ui->addChild(anchor);
        }
        return true;
    }
    void update(float dt) override {
        m_angle += m_way * TURN * static_cast<double>(dt);
        if (!m_anchored) m_east += DRIFT * static_cast<double>(dt);
        m_buoy->setWorldPosition(m_frame * dvec3(m_east, 0, 0));
    }
    void swap() override {
        const double angle = m_angle * DEG_TO_RAD<double>;
        const dvec3 buoy = m_buoy->getWorldPosition();
        const dvec3 eye =
            m_frame * dvec3(m_east + RADIUS * std::sin(angle), -RADIUS * std::cos(angle), HEIGHT);
        const dvec3 z = normalize(eye - buoy), x = normalize(cross(m_frame.getZ(), z));
        m_camera_control->m_position = eye;
        m_camera_control->m_rotation = dmat3(x, cross(z, x), z).getQuat();
        m_camera_control->updateView();
    }
    void onKeyPress(const GUIEventKey& event, IApp*) override {
        if (event.key == 'r') m_way = -m_way;
    }

private:
    void onAnchor(const UIEventMouse*, UIElement*) { m_anchored = !m_anchored; }

    ObjectPrefab* m_buoy = nullptr; ///< the world's
    dmat4 m_frame;                  ///< east, north, up at the start
    double m_angle = 0, m_way = 1;
    double m_east = 0; ///< m from the start
    bool m_anchored = false;
};

} // namespace

extern "C" LOGIC_API LogicBase* CreateLogic(World* world, CameraControl* camera) {
    return new SecondLogic(world, camera);
}
