// SPDX-License-Identifier: MIT
#pragma once

#include "channel/library/Library.h"
#include "channel/world/WorldCommands.h"
#include "ig/app/ControlApp.h"
#include "ig/app/IApp.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"
#include "ig/scene/World.h"
#include "ig/ui/UIRoot.h"

#include <memory>
#include <string>
#include <vector>

class LogicBase;

namespace world_commands {

/// Libraries, world and logic, begun as a flight begins but for pictures, link and frames: what the
/// engine has to say of the files comes as its log lines. One at a time in a process.
class TrialStart : public ig::IApp {
public:
    TrialStart() = default;
    TrialStart(const TrialStart&) = delete;
    TrialStart& operator=(const TrialStart&) = delete;
    ~TrialStart() override;

    /// False, with one log line, when a library can't be loaded or makes no logic.
    bool loadLibraries(const Setup& setup);
    /// Reads the world and lets the logic begin in it. False, having logged why, when that fails.
    bool begin(const std::string& world);

    ig::World& getWorld() { return m_world; }
    LogicBase& getLogic() { return *m_logic; } ///< after `loadLibraries`
    /// By which files that belong to the logic are found.
    std::string getLogicName() const { return m_library.getName(); }

    int getWidth() const override { return 1280; }
    int getHeight() const override { return 720; }
    ig::ControlApp* getControl() override { return &m_control; }
    ig::UIRoot* getUIRoot() const override { return m_ui.get(); }

private:
    std::vector<std::unique_ptr<Library>> m_plugins; ///< unloaded after the logic
    Library m_library;
    ig::ControlApp m_control;
    std::unique_ptr<ig::UIRoot> m_ui = std::make_unique<ig::UIRoot>();
    ig::World m_world;
    ig::Camera m_camera;
    ig::CameraControl m_camera_control{&m_camera};
    LogicBase* m_logic = nullptr; ///< owned
};

} // namespace world_commands
